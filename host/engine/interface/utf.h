// Texts of the host interface as UTF-8.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>

namespace rovescio::engine {

// Unpaired surrogates become "?".
std::string toUtf8(CFStringRef text);
std::string toUtf8(std::u16string_view text);

// A platform string, which the caller releases.
CFStringRef toPlatformString(const std::string& utf8);

}  // namespace rovescio::engine
