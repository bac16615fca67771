// Strict parsing of the few kinds of number that scores contain.
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

constexpr std::size_t kMaxWholeDigits = 9;
constexpr std::size_t kMaxFractionDigits = 6;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::optional<Decimal> parseDecimal(std::string_view text) {
    text = trimmed(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);

    const std::size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    std::string_view fraction = point == std::string_view::npos ? "" : text.substr(point + 1);
    if (whole.empty() && fraction.empty()) return std::nullopt;
    while (fraction.ends_with('0')) fraction.remove_suffix(1);
    if (whole.size() > kMaxWholeDigits || fraction.size() > kMaxFractionDigits) return std::nullopt;

    Decimal result;
    for (const char c : whole) {
        if (!isDigit(c)) return std::nullopt;
        result.value = result.value * 10 + (c - '0');
    }
    for (const char c : fraction) {
        if (!isDigit(c)) return std::nullopt;
        result.value = result.value * 10 + (c - '0');
        result.scale *= 10;
    }
    if (negative) result.value = -result.value;
    return result;
}

std::optional<int> parseInteger(std::string_view text) {
    const std::optional<Decimal> number = parseDecimal(text);
    if (!number || number->scale != 1) return std::nullopt;
    return static_cast<int>(number->value);
}

}  // namespace rovescio::musicxml
