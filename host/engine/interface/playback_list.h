// The temporary staff list that playback reads, and what is to be played by it.
#pragma once

#include <cstdint>
#include <vector>

namespace rovescio::engine {

// Whole measures, first and last included, of the staves of a list, in its order.
struct PlaybackRequest {
    short startMeasure = 1;
    short endMeasure = 1;
    std::vector<short> staves;
};

}  // namespace rovescio::engine
