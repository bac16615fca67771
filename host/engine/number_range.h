// Numbers of staves and measures one after the other.
#pragma once

#include <algorithm>
#include <ranges>

namespace rovescio::engine {

// From first to last, both included. A loop that counts in a short could not go beyond 32767, and so would
// not end there.
constexpr auto numbers(short first, short last) {
    return std::views::iota(int{first}, std::max<int>(first, last + 1)) |
           std::views::transform([](int number) { return static_cast<short>(number); });
}

}  // namespace rovescio::engine
