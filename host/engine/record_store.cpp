// Keeping, numbering and walking of data records.
#include "engine/record_store.h"

#include <algorithm>

namespace rovescio::engine {

const RecordStore::Bytes* RecordStore::find(std::uint32_t tag, const EDATAKEY& key) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return nullptr;
    const auto byCmper = byTag->second.find(key.cmper);
    if (byCmper == byTag->second.end() || key.inci >= byCmper->second.size()) return nullptr;
    return &byCmper->second[key.inci];
}

bool RecordStore::save(std::uint32_t tag, const EDATAKEY& key, std::span<const std::byte> content) {
    if (!find(tag, key)) return false;
    records_[tag][key.cmper][key.inci].assign(content.begin(), content.end());
    return true;
}

bool RecordStore::create(std::uint32_t tag, EDATAKEY& key, std::span<const std::byte> content) {
    const EDATAKEY first{key.cmper, 0};
    const auto next = find(tag, first) ? records_[tag][key.cmper].size() : 0;
    if (next >= kAppend || (key.inci != kAppend && key.inci != next)) return false;
    records_[tag][key.cmper].emplace_back(content.begin(), content.end());
    key.inci = static_cast<std::uint16_t>(next);
    return true;
}

bool RecordStore::remove(std::uint32_t tag, const EDATAKEY& key) {
    if (!find(tag, key)) return false;
    auto& byCmper = records_[tag];
    Incidents& incidents = byCmper[key.cmper];
    incidents.erase(incidents.begin() + key.inci);
    if (incidents.empty()) byCmper.erase(key.cmper);
    return true;
}

const RecordStore::Bytes* RecordStore::next(std::uint32_t tag, EDATAKEY& key) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return nullptr;
    auto cmper = byTag->second.lower_bound(key.cmper);
    std::size_t inci = 0;
    if (cmper != byTag->second.end() && cmper->first == key.cmper) {
        inci = std::size_t{key.inci} + 1;
        if (inci >= cmper->second.size()) {
            ++cmper;
            inci = 0;
        }
    }
    if (cmper == byTag->second.end()) return nullptr;
    key = {cmper->first, static_cast<std::uint16_t>(inci)};
    return &cmper->second[inci];
}

const RecordStore::Bytes* RecordStore::previous(std::uint32_t tag, EDATAKEY& key) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return nullptr;
    auto cmper = byTag->second.lower_bound(key.cmper);
    if (cmper != byTag->second.end() && cmper->first == key.cmper && key.inci > 0) {
        const std::size_t inci = std::min<std::size_t>(key.inci, cmper->second.size()) - 1;
        key.inci = static_cast<std::uint16_t>(inci);
        return &cmper->second[inci];
    }
    if (cmper == byTag->second.begin()) return nullptr;
    --cmper;
    key = {cmper->first, static_cast<std::uint16_t>(cmper->second.size() - 1)};
    return &cmper->second.back();
}

std::size_t RecordStore::count(std::uint32_t tag) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return 0;
    std::size_t total = 0;
    for (const auto& [cmper, incidents] : byTag->second) total += incidents.size();
    return total;
}

}  // namespace rovescio::engine
