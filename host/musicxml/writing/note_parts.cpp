// Looking for a note's parts, and putting new ones where they belong.
#include "musicxml/writing/note_parts.h"

#include <algorithm>
#include <array>

#include "contract/records.h"
#include "musicxml/file/tag_names.h"

namespace rovescio::musicxml {

namespace {

// The order of a note's children; those of one place may be mixed.
constexpr auto kOrder = std::to_array<xml::Name>({
    tag("grace"),      tag("cue"),       tag("chord"),         tag("pitch"),
    tag("unpitched"),  tag("rest"),      tag("duration"),      tag("tie"),
    tag("instrument"), tag("footnote"),  tag("level"),         tag("voice"),
    tag("type"),       tag("dot"),       tag("accidental"),    tag("time-modification"),
    tag("stem"),       tag("notehead"),  tag("notehead-text"), tag("staff"),
    tag("beam"),       tag("notations"), tag("lyric"),         tag("play"),
    tag("listen"),
});

std::ptrdiff_t rankOf(xml::Name name) {
    return std::ranges::find(kOrder, name) - kOrder.begin();
}

Beam beamOf(const xml::Edits& edits, xml::Node beam) {
    if (edits.says(beam, "begin")) return Beam::begin;
    if (edits.says(beam, "end")) return Beam::end;
    return edits.says(beam, "continue") ? Beam::inside : Beam::none;
}

}  // namespace

void NoteScan::scanPitch(xml::Node pitch) {
    for (const xml::Node child : edits_.children(pitch)) {
        switch (edits_.name(child)) {
            case tag("step"):
                parts_.step = child;
                break;
            case tag("alter"):
                parts_.alter = child;
                break;
            case tag("octave"):
                parts_.octave = child;
                break;
            default:
                break;
        }
    }
}

void NoteScan::addTie(xml::Node tie, bool notated) {
    const std::string type = edits_.attribute(tie, "type");
    if (type == "start") parts_.ties.push_back({tie, NOTE_TIE_START, notated});
    if (type == "stop") parts_.ties.push_back({tie, NOTE_TIE_END, notated});
}

void NoteScan::scanNotations(xml::Node notations) {
    for (const xml::Node child : edits_.children(notations)) {
        if (edits_.name(child) == tag("tied")) addTie(child, true);
        if (edits_.name(child) != tag("technical")) continue;
        for (const xml::Node mark : edits_.children(child)) {
            const xml::Name name = edits_.name(mark);
            parts_.tablature |= name == tag("string") || name == tag("fret");
        }
    }
}

const NoteParts& NoteScan::of(xml::Node note) {
    parts_.note = note;
    parts_.step = parts_.alter = parts_.octave = parts_.accidental = parts_.stem = 0;
    parts_.ties.clear();
    parts_.beam = Beam::none;
    parts_.tablature = false;
    for (const xml::Node child : edits_.children(note)) {
        switch (edits_.name(child)) {
            case tag("pitch"):
                // Like the reader: of two pitches, against the format, the first one counts.
                if (parts_.step == 0) scanPitch(child);
                break;
            case tag("notations"):
                scanNotations(child);
                break;
            case tag("tie"):
                addTie(child, false);
                break;
            case tag("accidental"):
                parts_.accidental = child;
                break;
            case tag("stem"):
                parts_.stem = child;
                break;
            case tag("beam"): {
                const std::string number = edits_.attribute(child, "number");
                if (number.empty() || number == "1") parts_.beam = beamOf(edits_, child);
                break;
            }
            default:
                break;
        }
    }
    return parts_;
}

void insertIntoNote(xml::Edits& edits, xml::Node note, xml::Node added) {
    const std::ptrdiff_t rank = rankOf(edits.name(added));
    xml::Node before = 0;
    for (const xml::Node child : edits.children(note)) {
        if (rankOf(edits.name(child)) <= rank) before = child;
    }
    if (before == 0) {
        edits.insertFirst(note, added);
    } else {
        edits.insertAfter(before, added);
    }
}

void insertIntoNotations(xml::Edits& edits, xml::Node note, xml::Node added) {
    xml::Node notations = edits.child(note, tag("notations"));
    if (notations == 0) {
        notations = edits.make("<notations></notations>");
        insertIntoNote(edits, note, notations);
    }
    edits.append(notations, added);
}

void removeFromNotations(xml::Edits& edits, xml::Node notations, xml::Node gone) {
    edits.remove(gone);
    if (!edits.hasChildren(notations)) edits.remove(notations);
}

std::vector<xml::Node> inNotations(const xml::Edits& edits, xml::Node note, xml::Name name) {
    std::vector<xml::Node> found;
    for (const xml::Node notations : edits.children(note)) {
        if (edits.name(notations) != tag("notations")) continue;
        for (const xml::Node node : edits.children(notations)) {
            if (edits.name(node) == name) found.push_back(node);
        }
    }
    return found;
}

}  // namespace rovescio::musicxml
