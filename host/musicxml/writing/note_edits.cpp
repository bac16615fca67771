// The edits of pitch, accidental and ties.
#include "musicxml/writing/note_edits.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/model/note_state.h"
#include "musicxml/file/tag_names.h"
#include "musicxml/reading/note_reading.h"
#include "musicxml/rules/accidental_names.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

constexpr int kHighestOctave = 9;  // the format's range of octaves begins with 0

std::string decimalText(const Decimal& number) {
    const std::int64_t size = number.value < 0 ? -number.value : number.value;
    std::string text = number.value < 0 ? "-" : "";
    text += std::to_string(size / number.scale);
    if (number.scale > 1) {
        // A leading one keeps the zeros after the point.
        std::string fraction = std::to_string(number.scale + size % number.scale);
        fraction[0] = '.';
        while (fraction.ends_with('0')) fraction.pop_back();
        if (fraction.size() > 1) text += fraction;
    }
    return text;
}

void writePitch(xml::Edits& edits, const NoteParts& note, const engine::SpelledPitch& old,
                const engine::SpelledPitch& pitch, const Decimal& alter, bool alterChanged) {
    const auto letter = static_cast<std::size_t>(engine::floorMod(pitch.step, 7));
    if (engine::floorMod(old.step, 7) != engine::floorMod(pitch.step, 7)) {
        edits.setText(note.step, std::string_view("CDEFGAB").substr(letter, 1));
    }
    const int octave = engine::floorDiv(pitch.step, 7) + 4;
    if (engine::floorDiv(old.step, 7) + 4 != octave) {
        edits.setText(note.octave, std::to_string(octave));
    }
    if (!alterChanged) return;
    if (alter.value == 0) {
        edits.remove(note.alter);
    } else if (note.alter != 0) {
        edits.setText(note.alter, decimalText(alter));
    } else {
        edits.insertAfter(note.step, edits.make("<alter>" + decimalText(alter) + "</alter>"));
    }
}

// A sign that was written stays as it is as long as the alteration does.
void editAccidental(xml::Edits& edits, const NoteParts& note, bool shown, const Decimal& oldAlter,
                    const Decimal& alter) {
    if (!shown) {
        if (note.accidental != 0) edits.remove(note.accidental);
    } else if (note.accidental == 0) {
        const std::string name(accidentalName(alter, oldAlter, {}));
        insertIntoNote(edits, note.note, edits.make("<accidental>" + name + "</accidental>"));
    } else if (!isSame(oldAlter, alter)) {
        const std::string written = edits.text(note.accidental);
        const std::string_view name = accidentalName(alter, oldAlter, written);
        if (written != name) edits.setText(note.accidental, name);
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

// The ties of one kind, <tie> or <tied>: what has become needless takes the place of what is missing.
void editTiesOf(xml::Edits& edits, const NoteParts& note, bool notated, std::uint32_t flags,
                std::uint32_t missing) {
    std::vector<xml::Node> needless;
    for (const TieElement& tie : note.ties) {
        if (tie.notated == notated && (flags & tie.flag) == 0) needless.push_back(tie.node);
    }
    // A tie that ends is written before one that starts.
    for (const std::uint32_t flag : {std::uint32_t{NOTE_TIE_END}, std::uint32_t{NOTE_TIE_START}}) {
        if ((missing & flag) == 0) continue;
        const std::string type = flag == NOTE_TIE_START ? "start" : "stop";
        if (!needless.empty()) {
            edits.setAttribute(needless.back(), "type", type);
            needless.pop_back();
        } else if (notated) {
            insertIntoNotations(edits, note.note, edits.make("<tied type=\"" + type + "\"/>"));
        } else {
            insertIntoNote(edits, note.note, edits.make("<tie type=\"" + type + "\"/>"));
        }
    }
    for (const xml::Node tie : needless) {
        if (notated) {
            removeFromNotations(edits, edits.parent(tie), tie);
        } else {
            edits.remove(tie);
        }
    }
}

// Gives the id to the tie that arrives, and takes it from all others.
void markCut(xml::Edits& edits, xml::Node note, std::string_view cutId) {
    for (const xml::Node tied : inNotations(edits, note, tag("tied"))) {
        const std::string id = edits.attribute(tied, "id");
        const bool arrives = edits.attribute(tied, "type") == "stop";
        if (arrives && !cutId.empty() && (id.empty() || id.starts_with(kCutId))) {
            if (id != cutId) edits.setAttribute(tied, "id", cutId);
        } else if (id.starts_with(kCutId)) {
            edits.removeAttribute(tied, "id");
        }
    }
}

}  // namespace

NoteChange editPitch(xml::Edits& edits, const NoteParts& note, const ENOTE& record,
                     const engine::SpelledPitch& pitch, bool unpitched) {
    NoteChange change;
    change.oldStep = change.newStep = pitch.step;
    if (unpitched || note.step == 0 || note.octave == 0) return change;

    const int letter = letterOf(edits.text(note.step));
    const int octave = parseInteger(edits.text(note.octave)).value_or(0);
    Decimal alter;
    if (note.alter != 0) alter = parseDecimal(edits.text(note.alter)).value_or(alter);
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
        writePitch(edits, note, old, pitch, alter, alterChanged);
    }
    editAccidental(edits, note, (record.noteFlags & NOTE_FLAG24) != 0, oldAlter, alter);
    return change;
}

bool refuseOctave(Journal& journal, std::size_t offset) {
    journal.fail("a note would leave the octaves 0 to 9, the only ones that the file format has", offset,
                 "Choose a smaller interval or a nearer axis.");
    return false;
}

void editTies(xml::Edits& edits, const NoteParts& note, std::uint32_t flags) {
    std::uint32_t written = 0;
    for (const TieElement& tie : note.ties) written |= tie.flag;
    flags &= NOTE_TIES;
    if (written == flags) return;
    editTiesOf(edits, note, false, flags, flags & ~written);
    editTiesOf(edits, note, true, flags, flags & ~written);
}

void editTies(xml::Edits& edits, const NoteParts& note, std::uint32_t flags, std::string_view cutId) {
    editTies(edits, note, flags);
    markCut(edits, note.note, cutId);
}

}  // namespace rovescio::musicxml
