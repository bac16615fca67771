// Decides which notes show an accidental.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "engine/model/document.h"

namespace rovescio::engine {

class Consequences;
class MassEdits;

// In every measure and staff of these frames that has marked entries, sets NOTE_FLAG24 of those marked with
// kDecideAccidentals by the rules of the measure: the signature, accidentals shown earlier on the same line
// or space of the same staff in any layer, and ties over the barline. Notes with NOTE_FLAG1 keep what was
// decided by hand. Accidentals that were shown as reminders stay, whatever becomes of the note, unless they
// are to be decided afresh. Unmarked entries gain an accidental where one became necessary and lose none.
void decideAccidentals(Document& document, Consequences& consequences, std::span<const FrameAddress> frames);

// A note of the document: the number of its entry, and its own.
using NoteNumber = std::pair<std::uint32_t, std::uint16_t>;
// Both are read by value, since they need not be aligned.
inline NoteNumber numberOf(const StoredEntry& entry, const ENOTE& note) {
    const std::uint32_t entryNumber = entry.entryNumber;
    const std::uint16_t noteId = note.noteId;
    return {entryNumber, noteId};
}

// The notes of a measure that showed an accidental before the open edit though the rules did not ask for it;
// ascending.
std::vector<NoteNumber> courtesySigns(const Document& document, const MassEdits& edits, short staff,
                                      short measure);

}  // namespace rovescio::engine
