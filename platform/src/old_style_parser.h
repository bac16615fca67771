// Old-style property lists and tables of strings: "key" = "value"; with or without braces around.
#pragma once

#include <string_view>

#include "property_list.h"

namespace rovescio::platform {

/// Reads the pairs; a fault anywhere refuses the whole text, except a comment that the end cuts off.
/// Values that are lists, dictionaries or data are checked and left out. The last of equal keys counts.
Dictionary parseOldStyle(std::u16string_view text);

}  // namespace rovescio::platform
