// The host function that rebars a region.
#include "engine/interface/functions.h"
#include "engine/interface/session.h"

namespace rovescio::engine::functions {

// This host has one way of rebarring, so the choices that a caller may make change nothing.
short SX_RebarRegion(const EREGION* region, std::uint16_t, short, short, short) {
    return region && Session::current().rebar(*region);
}

}  // namespace rovescio::engine::functions
