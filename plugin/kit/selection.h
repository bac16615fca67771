// What is selected in the score, asked of the host.
#pragma once

#include <cstdint>

#include "kit/host_api.h"

namespace kit {

// The selection at the moment of asking, and the region that stands in for it where there is none.
struct Selection {
    bool exists = false;
    EREGION region{};
    EREGION fallback{};

    Selection() {
        std::uint64_t slot = 0;
        exists = SX_GetCurERegions(&slot, &region, &fallback) != 0;
    }
};

}  // namespace kit
