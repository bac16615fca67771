// Overview of a document, staff by staff.
#include "run/score_info.h"

namespace rovescio::run {

namespace {

using engine::Document;

std::vector<short> layersUsed(const Document& document, short staff) {
    std::vector<short> layers;
    for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
        for (const short measure : document.measureNumbers()) {
            if (document.entries({staff, measure, layer}).empty()) continue;
            layers.push_back(layer);
            break;
        }
    }
    return layers;
}

std::vector<KeySpan> keysOf(const Document& document, short staff) {
    std::vector<KeySpan> spans;
    for (const short measure : document.measureNumbers()) {
        const engine::KeySignature& key = document.staffMeasure(staff, measure).key;
        if (spans.empty() || key != spans.back().key) spans.push_back({key, measure});
    }
    return spans;
}

}  // namespace

std::vector<StaffInfo> staffInfos(const Document& document) {
    std::vector<StaffInfo> staves;
    for (const short staff : document.staffNumbers()) {
        const engine::Staff& its = document.staff(staff);
        staves.push_back({.number = staff,
                          .name = its.name,
                          .unpitched = its.unpitched,
                          .layers = layersUsed(document, staff),
                          .keys = keysOf(document, staff)});
    }
    return staves;
}

}  // namespace rovescio::run
