// How remedies name what a user can do.
#pragma once

#include <array>
#include <string_view>

namespace rovescio::run {

// The operations that remedies point to. There they stand in braces, as in "{info} lists the staves": whoever
// shows a remedy puts in what its user knows the operation by.
inline constexpr std::array<std::string_view, 6> kOperations = {"check",  "info",  "measures",
                                                                "repair", "steps", "trace"};

}  // namespace rovescio::run
