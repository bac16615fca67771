// One row for each family of signs.
#include "musicxml/rules/accidental_names.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace rovescio::musicxml {

namespace {

constexpr std::array<std::string_view, 7> kWhole = {"triple-flat", "flat-flat",    "flat",        "natural",
                                                    "sharp",       "double-sharp", "triple-sharp"};

// From two and a half semitones below to two and a half above; empty where the family has none.
using Family = std::array<std::string_view, 6>;
constexpr std::array<Family, 5> kBetween = {{
    {"", "three-quarters-flat", "quarter-flat", "quarter-sharp", "three-quarters-sharp", ""},
    {"flat-flat-down", "flat-down", "natural-down", "natural-up", "sharp-up", "double-sharp-up"},
    {"", "flat-flat-up", "flat-up", "sharp-down", "double-sharp-down", ""},
    {"", "double-slash-flat", "slash-flat", "slash-quarter-sharp", "slash-sharp", ""},
    {"", "", "koron", "sori", "", ""},
}};

// The place of an odd number of half semitones in a family; none for any other alteration.
std::optional<std::size_t> placeBetween(const Decimal& alter) {
    const std::int64_t halves = 2 * alter.value;
    if (halves % alter.scale != 0 || (halves / alter.scale) % 2 == 0) return std::nullopt;
    const std::int64_t place = (halves / alter.scale + 5) / 2;
    if (halves / alter.scale < -5 || place >= static_cast<std::int64_t>(Family().size())) return std::nullopt;
    return static_cast<std::size_t>(place);
}

}  // namespace

std::string_view accidentalName(const Decimal& alter, const Decimal& modelled, std::string_view model) {
    if (alter.value % alter.scale == 0) {
        const std::int64_t place = alter.value / alter.scale + 3;
        const bool known = place >= 0 && place < static_cast<std::int64_t>(kWhole.size());
        return known ? kWhole[static_cast<std::size_t>(place)] : "other";
    }
    const std::optional<std::size_t> place = placeBetween(alter);
    if (!place) return "other";
    const std::optional<std::size_t> modelPlace = placeBetween(modelled);
    for (const Family& family : kBetween) {
        const bool isModel = modelPlace && !model.empty() && family[*modelPlace] == model;
        if (isModel && !family[*place].empty()) return family[*place];
    }
    return kBetween.front()[*place].empty() ? "other" : kBetween.front()[*place];
}

}  // namespace rovescio::musicxml
