// The temporary staff list that playback reads.
#pragma once

#include <cstdint>

namespace rovescio::engine {

// Tag of its records; each begins with a 16-bit staff number.
inline constexpr std::uint32_t kPlaybackStaffTag = 0x534F4975;

}  // namespace rovescio::engine
