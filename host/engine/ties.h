// Ties between notes, and their end when the notes part.
#pragma once

#include <span>

#include "engine/document.h"

namespace rovescio::engine {

class MassEdits;

// Removes every tie that joined two equal pitches before the innermost open edit and joins different ones
// now, as happens when only one of the notes lay in the selection. Both ends lose their mark. `frames` are
// those that the edit changed.
void breakWrongTies(Document& document, MassEdits& edits, std::span<const FrameAddress> frames);

}  // namespace rovescio::engine
