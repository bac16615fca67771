// Keeping, numbering and walking of data records.
#include "engine/model/record_store.h"

#include <algorithm>

namespace rovescio::engine {

const RecordStore::Incidents* RecordStore::list(const Place& place) const {
    const auto byTag = records_.find(place.tag);
    if (byTag == records_.end()) return nullptr;
    const auto found = byTag->second.find({place.owner, place.second});
    return found == byTag->second.end() ? nullptr : &found->second;
}

const RecordStore::Bytes* RecordStore::find(std::uint32_t tag, const RecordKey& key) const {
    const Incidents* const incidents = list({tag, key.owner, key.second});
    return incidents && key.inci < incidents->size() ? &(*incidents)[key.inci] : nullptr;
}

bool RecordStore::takes(std::uint32_t tag, const RecordKey& key) const {
    const Incidents* const incidents = list({tag, key.owner, key.second});
    const std::size_t next = incidents ? incidents->size() : 0;
    return next < kAppend && (key.inci == kAppend || key.inci == next);
}

bool RecordStore::save(std::uint32_t tag, const RecordKey& key, std::span<const std::byte> content) {
    if (!find(tag, key)) return false;
    records_[tag][{key.owner, key.second}][key.inci].assign(content.begin(), content.end());
    return true;
}

bool RecordStore::create(std::uint32_t tag, RecordKey& key, std::span<const std::byte> content) {
    if (!takes(tag, key)) return false;
    Incidents& incidents = records_[tag][{key.owner, key.second}];
    key.inci = static_cast<std::uint16_t>(incidents.size());
    incidents.emplace_back(content.begin(), content.end());
    return true;
}

bool RecordStore::remove(std::uint32_t tag, const RecordKey& key) {
    if (!find(tag, key)) return false;
    Lists& lists = records_[tag];
    const auto found = lists.find({key.owner, key.second});
    found->second.erase(found->second.begin() + key.inci);
    if (found->second.empty()) lists.erase(found);
    return true;
}

void RecordStore::exchange(const Place& place, Incidents& incidents) {
    Lists& lists = records_[place.tag];
    Incidents& current = lists[{place.owner, place.second}];
    current.swap(incidents);
    if (current.empty()) lists.erase({place.owner, place.second});
}

const RecordStore::Bytes* RecordStore::next(std::uint32_t tag, RecordKey& key) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return nullptr;
    const std::pair wanted{key.owner, key.second};
    auto found = byTag->second.lower_bound(wanted);
    std::size_t inci = 0;
    if (found != byTag->second.end() && found->first == wanted) {
        inci = std::size_t{key.inci} + 1;
        if (inci >= found->second.size()) {
            ++found;
            inci = 0;
        }
    }
    if (found == byTag->second.end()) return nullptr;
    key = {found->first.first, found->first.second, static_cast<std::uint16_t>(inci)};
    return &found->second[inci];
}

const RecordStore::Bytes* RecordStore::previous(std::uint32_t tag, RecordKey& key) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return nullptr;
    const std::pair wanted{key.owner, key.second};
    auto found = byTag->second.lower_bound(wanted);
    if (found != byTag->second.end() && found->first == wanted && key.inci > 0) {
        const std::size_t inci = std::min<std::size_t>(key.inci, found->second.size()) - 1;
        key.inci = static_cast<std::uint16_t>(inci);
        return &found->second[inci];
    }
    if (found == byTag->second.begin()) return nullptr;
    --found;
    key = {found->first.first, found->first.second, static_cast<std::uint16_t>(found->second.size() - 1)};
    return &found->second.back();
}

std::size_t RecordStore::count(std::uint32_t tag) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return 0;
    std::size_t total = 0;
    for (const auto& [place, incidents] : byTag->second) total += incidents.size();
    return total;
}

std::uint32_t RecordStore::lastOwner(std::uint32_t tag, std::uint32_t limit) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return 0;
    const auto behind = byTag->second.lower_bound({limit, 0});
    return behind == byTag->second.begin() ? 0 : std::prev(behind)->first.first;
}

std::uint16_t RecordStore::lastSecond(std::uint32_t tag, std::uint32_t owner) const {
    const auto byTag = records_.find(tag);
    if (byTag == records_.end()) return 0;
    const auto behind = byTag->second.upper_bound({owner, 0xFFFF});
    if (behind == byTag->second.begin() || std::prev(behind)->first.first != owner) return 0;
    return std::prev(behind)->first.second;
}

}  // namespace rovescio::engine
