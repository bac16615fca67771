// A layer reversed by hand, as a retrograde leaves it before its measures are filled again.
#pragma once

#include "engine/interface/session.h"

namespace rovescio::test {

// Reverses the order of a layer's entries and their ties; measures keep their number of entries. A mass
// edit must be open.
void reverse(engine::Session& session, short staff, short layer, engine::NumberRange measures);

// Rebars a staff, or some of its measures, with every layer reversed, in a mass edit that is cancelled when
// the rebar fails.
bool reverseStaff(engine::Session& session, short staff, short first = 1, short last = 0);

}  // namespace rovescio::test
