// Property lists and tables of strings: the pairs of their outermost dictionary, from any of their formats.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "object.h"

namespace rovescio::platform {

/// Strings, numbers and booleans by key; values of other kinds are left out.
using Dictionary = std::unordered_map<std::u16string, Owned<const Object>>;

/// Reads an XML, binary or old-style property list. Anything malformed, hostile or without an outermost
/// dictionary gives an empty one.
Dictionary parsePropertyList(std::string_view bytes);

}  // namespace rovescio::platform
