// Finds the elements of a note.
#include "musicxml/note_text.h"

#include "contract/records.h"
#include "musicxml/tag_names.h"

namespace rovescio::musicxml {

namespace {

void scanPitch(TextWalk& walk, NoteText& note) {
    Element pitch = walk.element();
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        switch (walk.tagNumber()) {
            case tag("step"):
                note.step = walk.whole();
                break;
            case tag("alter"):
                note.alter = walk.whole();
                break;
            case tag("octave"):
                note.octave = walk.whole();
                break;
            default:
                break;
        }
    }
    walk.complete(pitch);
    note.beforeAccidental = pitch;
}

Element addTie(TextWalk& walk, int notations, NoteText& note) {
    const std::string_view type = walk.attribute("type");
    const Element tie = walk.whole();
    if (type == "start") note.ties.push_back({tie, NOTE_TIE_START, notations});
    if (type == "stop") note.ties.push_back({tie, NOTE_TIE_END, notations});
    return tie;
}

void scanNotations(TextWalk& walk, NoteText& note) {
    NotationsElement notations{walk.element(), 0};
    const int index = static_cast<int>(note.notations.size());
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        ++notations.children;
        if (walk.tagNumber() == tag("tied")) addTie(walk, index, note);
        if (walk.tagNumber() != tag("technical")) continue;
        for (const std::size_t inner = walk.enter(); walk.next(inner);) {
            note.tablature |= walk.tagNumber() == tag("string") || walk.tagNumber() == tag("fret");
        }
    }
    if (notations.children > 0) walk.complete(notations.element);
    note.notations.push_back(notations);
}

Beam beamOf(TextWalk& walk) {
    const std::string value = walk.value();
    if (value == "begin") return Beam::begin;
    if (value == "end") return Beam::end;
    return value == "continue" ? Beam::inside : Beam::none;
}

// Whether a child of a note other than its pitch and ties stands before its
// <accidental>.
bool precedesAccidental(std::uint64_t name) {
    switch (name) {
        case tag("grace"):
        case tag("cue"):
        case tag("chord"):
        case tag("unpitched"):
        case tag("rest"):
        case tag("duration"):
        case tag("instrument"):
        case tag("footnote"):
        case tag("level"):
        case tag("voice"):
        case tag("type"):
        case tag("dot"):
            return true;
        default:
            return false;
    }
}

}  // namespace

void scanNote(TextWalk& walk, std::size_t offset, NoteText& note) {
    note.ties.clear();
    note.notations.clear();
    note.step = note.alter = note.octave = {};
    note.accidental = note.beforeAccidental = note.stem = {};
    note.beam = Beam::none;
    note.tablature = false;

    walk.restart(offset);
    if (!walk.next(0)) return;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        switch (walk.tagNumber()) {
            case tag("pitch"):
                // Like the reader: of two pitches, against the format, the first one counts.
                if (!note.step.exists()) scanPitch(walk, note);
                break;
            case tag("notations"):
                scanNotations(walk, note);
                break;
            case tag("tie"):
                note.beforeAccidental = addTie(walk, -1, note);
                break;
            case tag("accidental"):
                note.accidental = walk.whole();
                break;
            case tag("stem"):
                note.stem = walk.whole();
                break;
            case tag("beam"): {
                const std::string_view number = walk.attribute("number");
                if (number.empty() || number == "1") note.beam = beamOf(walk);
                break;
            }
            default:
                if (precedesAccidental(walk.tagNumber())) note.beforeAccidental = walk.whole();
                break;
        }
    }
}

}  // namespace rovescio::musicxml
