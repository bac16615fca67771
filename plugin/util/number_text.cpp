// Numbers to text and back.
#include "util/number_text.h"

#include <charconv>
#include <limits>
#include <string>

#include "util/platform_string.h"

namespace {
// A sign and one digit more than digits10 promises.
constexpr std::size_t kIntDigits = std::numeric_limits<int>::digits10 + 2;
}  // namespace

void num2str(int value, char* buffer) {
    *std::to_chars(buffer, buffer + kIntDigits, value).ptr = '\0';
}

eu16string IntToEu16Str(std::int64_t value) {
    const std::string digits = std::to_string(value);
    return eu16string(std::u16string(digits.begin(), digits.end()));
}

std::int32_t StrToIntDef(const eu16string& text, std::int32_t fallback) {
    if (text.units().empty()) return fallback;
    const auto platformText = makePlatformString(text.units());
    return platformText ? CFStringGetIntValue(platformText.get()) : fallback;
}
