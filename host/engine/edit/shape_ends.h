// What becomes of slurs and lines when the entries at their ends are removed.
#pragma once

#include <span>

#include "engine/edit/mass_edit.h"
#include "engine/model/document.h"

namespace rovescio::engine {

// Deletes the marks of every entry that the innermost open edit deleted, so that a shape which began or ended
// there is shown no more. `frames` are those that the edit changed.
void dropMarksOfDeleted(const Document& document, MassEdits& edits, std::span<const FrameAddress> frames);

}  // namespace rovescio::engine
