// Decides which notes show an accidental.
#pragma once

#include <span>

#include "engine/document.h"

namespace rovescio::engine {

class MassEdits;

// In every measure and staff of these frames that has marked entries, sets NOTE_FLAG24 of those marked with
// kDecideAccidentals by
// the rules of the measure: the signature, earlier accidentals on the same line or space of the same staff in
// any layer, and ties over the barline. Notes with NOTE_FLAG1 keep what was decided by hand. Unmarked entries
// gain an accidental where one became necessary and lose none.
void decideAccidentals(Document& document, MassEdits& edits, std::span<const FrameAddress> frames);

}  // namespace rovescio::engine
