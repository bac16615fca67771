// Walks the children of a note element once.
#include "musicxml/reading/note_reading.h"

#include <algorithm>
#include <optional>
#include <string>

#include "engine/model/entry_state.h"
#include "engine/model/note_state.h"
#include "musicxml/file/tag_names.h"
#include "musicxml/rules/note_types.h"

namespace rovescio::musicxml {

namespace {

constexpr int kMaxAlter = 99;
constexpr int kLowestOctave = -9;
constexpr int kHighestOctave = 19;
constexpr int kMaxDots = 8;
constexpr int kMaxRatio = 0xFFFF;

std::string quoted(std::string_view text) {
    return '"' + std::string(text.substr(0, 40)) + '"';
}

// A pitch, or the place of an unpitched note, which without one stands on the
// middle line of a treble clef.
bool readPlace(const xml::Element& element, NoteReading& note, Journal& journal) {
    constexpr const char* kRemedy = "Correct the note's pitch in a notation program or text editor.";
    const std::size_t offset = element.offset();
    std::string_view step = note.unpitched ? "B" : "";
    std::string_view octaveText = note.unpitched ? "4" : "";
    std::string_view alterText = "0";
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("step"):
            case tag("display-step"):
                step = child.text();
                break;
            case tag("octave"):
            case tag("display-octave"):
                octaveText = child.text();
                break;
            case tag("alter"):
                alterText = child.text();
                break;
            default:
                break;
        }
    }
    const int letter = letterOf(step);
    if (letter < 0) {
        journal.fail("the step " + quoted(step) + " is not one of the letters A to G", offset, kRemedy);
        return false;
    }
    const std::optional<int> octave = parseInteger(octaveText);
    if (!octave || *octave < kLowestOctave || *octave > kHighestOctave) {
        journal.fail("the octave " + quoted(octaveText) + " is not an octave number", offset, kRemedy);
        return false;
    }
    const std::optional<Decimal> alter = parseDecimal(alterText);
    if (!alter || alter->value > kMaxAlter * alter->scale || alter->value < -kMaxAlter * alter->scale) {
        journal.fail("the alteration " + quoted(alterText) + " is not a number of semitones", offset,
                     kRemedy);
        return false;
    }
    note.rest = false;
    // A quarter-tone is the semitone below it and hundredths of one; its exact fraction stays in the text.
    note.noteFlags |= engine::flagsOfCents(hundredthsOf(*alter));
    note.pitch = {letter + 7 * (*octave - 4),
                  engine::floorDiv(static_cast<int>(alter->value), static_cast<int>(alter->scale))};
    return true;
}

void readTie(const xml::Element& element, NoteReading& note) {
    const std::string_view type = element.attribute("type");
    if (type == "start") note.noteFlags |= NOTE_TIE_START;
    if (type == "stop") note.noteFlags |= NOTE_TIE_END;
}

void readNotations(const xml::Element& element, NoteReading& note) {
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("tied"):
                readTie(child, note);
                note.cut |= child.attribute("id").starts_with(kCutId);
                break;
            case tag("slur"):
            case tag("glissando"):
            case tag("slide"): {
                const std::string_view type = child.attribute("type");
                note.hasShapes |= type == "start" || type == "stop";
                break;
            }
            case tag("tuplet"):
                break;
            default:
                note.marked = true;
                break;
        }
    }
}

void readAccidental(const xml::Element& element, NoteReading& note) {
    note.noteFlags |= NOTE_FLAG24;
    for (const char* mark : {"cautionary", "editorial", "parentheses", "bracket"}) {
        if (element.attribute(mark) == "yes") note.noteFlags |= NOTE_FLAG1;
    }
}

void readRatio(const xml::Element& element, NoteReading& note) {
    int actual = 0;
    int normal = 0;
    for (const xml::Element child : element) {
        if (child.name() == tag("actual-notes")) actual = parseInteger(child.text()).value_or(0);
        if (child.name() == tag("normal-notes")) normal = parseInteger(child.text()).value_or(0);
    }
    if (actual < 1 || normal < 1 || actual > kMaxRatio || normal > kMaxRatio) return;
    note.actual = static_cast<std::uint16_t>(actual);
    note.normal = static_cast<std::uint16_t>(normal);
}

bool readDuration(const xml::Element& element, NoteReading& note, Journal& journal) {
    const std::size_t offset = element.offset();
    const std::string_view text = element.text();
    const std::optional<Decimal> duration = parseDecimal(text);
    if (!duration || duration->value < 0) {
        journal.fail("the duration " + quoted(text) + " is not a positive number", offset,
                     "Correct the note in a notation program or text editor.");
        return false;
    }
    note.duration = *duration;
    note.hasDuration = true;
    return true;
}

bool readStaff(const xml::Element& element, NoteReading& note, Journal& journal) {
    const std::size_t offset = element.offset();
    const std::string_view text = element.text();
    const std::optional<int> staff = parseInteger(text);
    if (!staff || *staff < 1) {
        journal.fail("the staff " + quoted(text) + " is not a staff number", offset,
                     "Number the staves of a part from 1.");
        return false;
    }
    note.staff = *staff;
    return true;
}

}  // namespace

int letterOf(std::string_view step) {
    if (step.size() != 1) return -1;
    constexpr std::string_view kLetters = "CDEFGAB";
    const std::size_t letter = kLetters.find(step[0]);
    return letter == std::string_view::npos ? -1 : static_cast<int>(letter);
}

bool readNote(const xml::Element& element, NoteReading& note, Journal& journal) {
    note = {};
    note.element = element;
    int dots = 0;
    bool fine = true;
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("grace"):
                note.grace = true;
                break;
            case tag("chord"):
                note.chord = true;
                break;
            case tag("unpitched"):
            case tag("pitch"):
                // A note that has both, against the format, is what it says first.
                if (!note.rest) break;
                note.unpitched = child.name() == tag("unpitched");
                fine = readPlace(child, note, journal);
                break;
            case tag("duration"):
                fine = readDuration(child, note, journal);
                break;
            case tag("tie"):
                readTie(child, note);
                break;
            case tag("voice"):
                note.voice = child.text();
                break;
            case tag("instrument"):
                note.instrument = child.attribute("id");
                break;
            case tag("type"):
                note.nominal = noteValue(child.text());
                break;
            case tag("dot"):
                ++dots;
                break;
            case tag("accidental"):
                readAccidental(child, note);
                break;
            case tag("time-modification"):
                readRatio(child, note);
                break;
            case tag("staff"):
                fine = readStaff(child, note, journal);
                break;
            case tag("notations"):
                readNotations(child, note);
                break;
            case tag("lyric"):
                note.marked = true;
                break;
            default:
                break;
        }
        if (!fine) return false;
    }
    // Each dot adds half of what the one before it added; a value that is no
    // whole unit counts as unknown.
    if (dots > kMaxDots || note.nominal % (1 << dots) != 0) note.nominal = 0;
    note.nominal = 2 * note.nominal - (note.nominal >> std::min(dots, kMaxDots));
    return true;
}

}  // namespace rovescio::musicxml
