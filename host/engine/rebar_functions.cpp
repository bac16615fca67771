// The host function that rebars a region.
#include "engine/functions.h"
#include "engine/rebar.h"
#include "engine/session.h"

namespace rovescio::engine::functions {

// This host has one way of rebarring, so the choices that a caller may make change nothing.
short SX_RebarRegion(const EREGION* region, std::uint16_t, short, short, short) {
    return region && rebar(Session::current(), *region);
}

}  // namespace rovescio::engine::functions
