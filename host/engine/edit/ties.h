// Ties between notes, and their removal when the notes part.
#pragma once

#include <span>

#include "engine/model/document.h"

namespace rovescio::engine {

class Consequences;
struct StaffSpan;

// Removes every tie that joined two equal pitches before the innermost open edit and joins different ones
// now, as happens when only one of the notes lay in the selection. Both ends lose their mark. `frames` are
// those that the edit changed.
void breakWrongTies(Document& document, Consequences& consequences, std::span<const FrameAddress> frames);

// Removes from the notes of these measures every half tie: one that leaves without arriving at its pitch or
// arrives without having left. Of the measures around them, only ties that reached into them lose their mark.
void dropLooseTies(Document& document, Consequences& consequences, const StaffSpan& span);

}  // namespace rovescio::engine
