// Looking up clefs.
#include "musicxml/reading/source_map.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace rovescio::musicxml {

const Clef& clefAt(const SourceMap& sources, const engine::FrameAddress& address, std::int32_t position) {
    static const Clef kTreble;
    const auto wanted = std::tuple(address.staff, address.measure, position);
    const auto after = std::upper_bound(
        sources.clefs.begin(), sources.clefs.end(), wanted, [](const auto& place, const ClefMark& mark) {
            return place < std::tuple(mark.staff, mark.measure, mark.position);
        });
    if (after == sources.clefs.begin() || std::prev(after)->staff != address.staff) return kTreble;
    return std::prev(after)->clef;
}

}  // namespace rovescio::musicxml
