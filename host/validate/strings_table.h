// Reading of .strings files, of any language and not only the user's.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace rovescio::validate {

// Texts by key, both as they are written, with their escapes.
using StringsTable = std::map<std::string, std::string, std::less<>>;

// Reads pairs of quoted strings, `"key" = "text";`, with comments between; UTF-8. Empty when there is
// anything else, or a key twice.
std::optional<StringsTable> parseStrings(std::string_view source);

}  // namespace rovescio::validate
