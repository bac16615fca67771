// The edits of pitch, accidental and ties.
#include "musicxml/note_edits.h"

#include <algorithm>
#include <array>
#include <string>

#include "musicxml/note_reading.h"
#include "musicxml/numbers.h"

namespace rovescio::musicxml {

namespace {

constexpr int kHighestOctave = 9;  // the format's range of octaves begins with 0

std::string decimalText(const Decimal& number) {
    const std::int64_t size = number.value < 0 ? -number.value : number.value;
    std::string text = number.value < 0 ? "-" : "";
    text += std::to_string(size / number.scale);
    if (number.scale > 1) {
        // A leading one keeps the zeros behind the point.
        std::string fraction = std::to_string(number.scale + size % number.scale);
        fraction[0] = '.';
        while (fraction.ends_with('0')) fraction.pop_back();
        if (fraction.size() > 1) text += fraction;
    }
    return text;
}

// The sign that shows an alteration. Alterations without a sign of their own
// are told by "other".
std::string_view accidentalName(const Decimal& alter) {
    constexpr std::array<std::string_view, 13> kHalves = {
        "triple-flat", "other",         "flat-flat", "three-quarters-flat",  "flat",         "quarter-flat",
        "natural",     "quarter-sharp", "sharp",     "three-quarters-sharp", "double-sharp", "other",
        "triple-sharp"};
    const std::int64_t halves = 2 * alter.value;
    if (halves % alter.scale != 0) return "other";
    const std::int64_t index = halves / alter.scale + 6;
    if (index < 0 || index >= static_cast<std::int64_t>(kHalves.size())) return "other";
    return kHalves[static_cast<std::size_t>(index)];
}

void editPitch(const NoteText& note, const engine::SpelledPitch& old, const engine::SpelledPitch& pitch,
               const Decimal& alter, TextEdits& edits) {
    const auto letter = static_cast<std::size_t>(engine::floorMod(pitch.step, 7));
    if (engine::floorMod(old.step, 7) != engine::floorMod(pitch.step, 7)) {
        edits.replaceContent(note.step, std::string_view("CDEFGAB").substr(letter, 1));
    }
    const int octave = engine::floorDiv(pitch.step, 7) + 4;
    if (engine::floorDiv(old.step, 7) + 4 != octave) {
        edits.replaceContent(note.octave, std::to_string(octave));
    }
    if (old.alter == pitch.alter) return;
    if (alter.value == 0) {
        edits.remove(note.alter);
    } else if (note.alter.exists()) {
        edits.replaceContent(note.alter, decimalText(alter));
    } else {
        edits.insertAfter(note.step, "<alter>" + decimalText(alter) + "</alter>");
    }
}

void editAccidental(const NoteText& note, bool shown, bool moved, const Decimal& alter, TextEdits& edits) {
    if (!shown) {
        if (note.accidental.exists()) edits.remove(note.accidental);
    } else if (!note.accidental.exists()) {
        const std::string name(accidentalName(alter));
        edits.insertAfter(note.beforeAccidental, "<accidental>" + name + "</accidental>");
    } else if (moved && valueOf(edits.text(), note.accidental) != accidentalName(alter)) {
        edits.replaceContent(note.accidental, accidentalName(alter));
    }
}

// Removes the ties that the record no longer has, and a <notations> that is
// left with nothing.
bool editTies(const NoteText& note, std::uint32_t flags, TextEdits& edits) {
    std::uint32_t written = 0;
    for (const TieElement& tie : note.ties) written |= tie.flag;
    if ((written & ~flags) == 0) return (flags & NOTE_TIES & ~written) != 0;

    const auto isGone = [&](const TieElement& tie) { return (flags & tie.flag) == 0; };
    const auto isEmptied = [&](int index) {
        const auto gone = std::count_if(note.ties.begin(), note.ties.end(), [&](const TieElement& tie) {
            return tie.notations == index && isGone(tie);
        });
        return gone > 0 && gone == note.notations[static_cast<std::size_t>(index)].children;
    };
    for (int index = 0; index < static_cast<int>(note.notations.size()); ++index) {
        if (isEmptied(index)) edits.remove(note.notations[static_cast<std::size_t>(index)].element);
    }
    for (const TieElement& tie : note.ties) {
        if (isGone(tie) && (tie.notations < 0 || !isEmptied(tie.notations))) edits.remove(tie.element);
    }
    return (flags & NOTE_TIES & ~written) != 0;
}

}  // namespace

NoteChange editNote(const NoteText& note, const ENOTE& record, const engine::SpelledPitch& pitch,
                    bool unpitched, TextEdits& edits) {
    NoteChange change;
    change.tiesAdded = editTies(note, record.noteFlags, edits);
    change.oldStep = change.newStep = pitch.step;
    if (unpitched) return change;

    const std::string_view text = edits.text();
    const int letter = letterOf(valueOf(text, note.step));
    const int octave = parseInteger(valueOf(text, note.octave)).value_or(0);
    Decimal alter;
    if (note.alter.exists()) alter = parseDecimal(valueOf(text, note.alter)).value_or(alter);
    const engine::SpelledPitch old{
        letter + 7 * (octave - 4),
        engine::floorDiv(static_cast<int>(alter.value), static_cast<int>(alter.scale))};
    alter.value += (pitch.alter - old.alter) * alter.scale;

    change.oldStep = old.step;
    change.moved = !(old == pitch);
    if (change.moved) {
        const int newOctave = engine::floorDiv(pitch.step, 7) + 4;
        change.possible = newOctave >= 0 && newOctave <= kHighestOctave;
        editPitch(note, old, pitch, alter, edits);
    }
    editAccidental(note, (record.noteFlags & NOTE_FLAG24) != 0, change.moved, alter, edits);
    return change;
}

}  // namespace rovescio::musicxml
