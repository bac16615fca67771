// A layer turned round by hand, as a retrograde leaves it before its measures are filled anew.
#pragma once

#include "engine/session.h"

namespace rovescio::test {

// Turns the order of a layer's entries and their ties around; measures keep their number of entries. A mass
// edit must be open.
void reverse(engine::Session& session, short staff, short layer);

// Turns every layer of a staff and rebars it, in a mass edit that is cancelled when the rebar fails.
bool turnStaff(engine::Session& session, short staff);

}  // namespace rovescio::test
