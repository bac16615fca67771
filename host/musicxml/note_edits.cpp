// The edits of pitch, accidental and ties.
#include "musicxml/note_edits.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/note_state.h"
#include "musicxml/accidental_names.h"
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

void editPitch(const NoteText& note, const engine::SpelledPitch& old, const engine::SpelledPitch& pitch,
               const Decimal& alter, bool alterChanged, TextEdits& edits) {
    const auto letter = static_cast<std::size_t>(engine::floorMod(pitch.step, 7));
    if (engine::floorMod(old.step, 7) != engine::floorMod(pitch.step, 7)) {
        edits.replaceContent(note.step, std::string_view("CDEFGAB").substr(letter, 1));
    }
    const int octave = engine::floorDiv(pitch.step, 7) + 4;
    if (engine::floorDiv(old.step, 7) + 4 != octave) {
        edits.replaceContent(note.octave, std::to_string(octave));
    }
    if (!alterChanged) return;
    if (alter.value == 0) {
        edits.remove(note.alter);
    } else if (note.alter.exists()) {
        edits.replaceContent(note.alter, decimalText(alter));
    } else {
        edits.insertAfter(note.step, "<alter>" + decimalText(alter) + "</alter>");
    }
}

// A sign that was written stays as it is as long as the alteration does.
void editAccidental(const NoteText& note, bool shown, const Decimal& oldAlter, const Decimal& alter,
                    TextEdits& edits) {
    if (!shown) {
        if (note.accidental.exists()) edits.remove(note.accidental);
    } else if (!note.accidental.exists()) {
        const std::string name(accidentalName(alter, oldAlter, {}));
        edits.insertAfter(note.beforeAccidental, "<accidental>" + name + "</accidental>");
    } else if (!isSame(oldAlter, alter)) {
        const std::string written = valueOf(edits.text(), note.accidental);
        const std::string_view name = accidentalName(alter, oldAlter, written);
        if (written != name) edits.replaceContent(note.accidental, name);
    }
}

// The alteration of a record, exactly: its hundredths are either those of the text, or what remains of a
// semitone when they are taken away, or none of the text's.
Decimal alterOf(const engine::SpelledPitch& pitch, int cents, const Decimal& text) {
    constexpr int kHundredths = 100;
    const std::int64_t part = fractionOf(text);
    const int known = hundredthsOf(text);
    if (cents == known) return {pitch.alter * text.scale + part, text.scale};
    if (cents == kHundredths - known) return {(pitch.alter + 1) * text.scale - part, text.scale};
    return {std::int64_t{pitch.alter} * kHundredths + cents, kHundredths};
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
    const Decimal oldAlter = std::exchange(alter, alterOf(pitch, engine::centsOf(record), alter));
    const bool alterChanged = !isSame(oldAlter, alter);

    change.oldStep = old.step;
    change.moved = old.step != pitch.step || alterChanged;
    if (change.moved) {
        const int newOctave = engine::floorDiv(pitch.step, 7) + 4;
        change.possible = newOctave >= 0 && newOctave <= kHighestOctave;
        editPitch(note, old, pitch, alter, alterChanged, edits);
    }
    editAccidental(note, (record.noteFlags & NOTE_FLAG24) != 0, oldAlter, alter, edits);
    return change;
}

}  // namespace rovescio::musicxml
