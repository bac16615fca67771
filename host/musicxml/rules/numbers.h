// Numbers as score files write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace rovescio::musicxml {

// An exact decimal number: value / scale, where scale is a power of ten from 1
// to 10^6.
struct Decimal {
    std::int64_t value = 0;
    std::int64_t scale = 1;
};

// What lies above the whole number below, in parts of the scale, and in hundredths up to 99.
constexpr std::int64_t fractionOf(const Decimal& number) {
    const std::int64_t part = number.value % number.scale;
    return part < 0 ? part + number.scale : part;
}
constexpr int hundredthsOf(const Decimal& number) {
    const std::int64_t rounded = (200 * fractionOf(number) + number.scale) / (2 * number.scale);
    return static_cast<int>(rounded < 99 ? rounded : 99);
}
constexpr bool isSame(const Decimal& left, const Decimal& right) {
    return left.value * right.scale == right.value * left.scale;
}

// The text without leading and trailing XML whitespace.
std::string_view trimmed(std::string_view text);
// Whole numbers of at most nine digits; surrounding whitespace is allowed.
std::optional<int> parseInteger(std::string_view text);
// Decimal numbers of at most nine digits before and six after the point;
// trailing zeros do not count.
std::optional<Decimal> parseDecimal(std::string_view text);

}  // namespace rovescio::musicxml
