// The table of note values, each twice as long as the one before it.
#include "musicxml/rules/note_types.h"

#include <algorithm>
#include <array>

#include "engine/model/entry_state.h"

namespace rovescio::musicxml {

namespace {

constexpr std::array<std::string_view, 14> kTypes = {"1024th", "512th", "256th",  "128th",   "64th",
                                                     "32nd",   "16th",  "eighth", "quarter", "half",
                                                     "whole",  "breve", "long",   "maxima"};
constexpr std::int32_t kShortest = engine::kQuarter / 256;

}  // namespace

std::int32_t noteValue(std::string_view type) {
    const auto found = std::find(kTypes.begin(), kTypes.end(), type);
    return found == kTypes.end() ? 0 : kShortest << (found - kTypes.begin());
}

std::string_view typeName(std::int32_t value) {
    for (std::size_t i = 0; i < kTypes.size(); ++i) {
        if (value == kShortest << i) return kTypes[i];
    }
    return {};
}

}  // namespace rovescio::musicxml
