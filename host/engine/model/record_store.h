// Data records by tag and key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "contract/records.h"

namespace rovescio::engine {

// Where a record stands: its owner, an entry number or the first number of its key; the second number of a
// detail record, 0 for all others; and the incident.
struct RecordKey {
    std::uint32_t owner = 0;
    std::uint16_t second = 0;
    std::uint16_t inci = 0;

    RecordKey() = default;
    RecordKey(std::uint32_t ownerNumber, std::uint16_t secondNumber, std::uint16_t incident)
        : owner(ownerNumber), second(secondNumber), inci(incident) {}
    explicit(false) RecordKey(const EDATAKEY& key) : owner(key.cmper), inci(key.inci) {}
};

// Records of one tag and owner (and second number) are numbered by incident from 0 without gaps: deleting one
// closes up the numbers after it.
class RecordStore {
  public:
    using Bytes = std::vector<std::byte>;
    using Incidents = std::deque<Bytes>;  // mostly taken away from the front

    // A list of incidents.
    struct Place {
        std::uint32_t tag = 0;
        std::uint32_t owner = 0;
        std::uint16_t second = 0;

        friend bool operator<(const Place& a, const Place& b) {
            return std::tie(a.tag, a.owner, a.second) < std::tie(b.tag, b.owner, b.second);
        }
    };

    // Null when there is none.
    [[nodiscard]] const Bytes* find(std::uint32_t tag, const RecordKey& key) const;
    // Null for a list without records.
    [[nodiscard]] const Incidents* list(const Place& place) const;
    // The record after (or before) a key in the order of owner, second number and incident; the key becomes
    // its key. Null at the end.
    const Bytes* next(std::uint32_t tag, RecordKey& key) const;
    const Bytes* previous(std::uint32_t tag, RecordKey& key) const;
    [[nodiscard]] std::size_t count(std::uint32_t tag) const;
    // Greatest owner of a tag below a limit, and greatest second number of an owner; 0 when there is none.
    [[nodiscard]] std::uint32_t lastOwner(std::uint32_t tag, std::uint32_t limit) const;
    [[nodiscard]] std::uint16_t lastSecond(std::uint32_t tag, std::uint32_t owner) const;

    // Whether a new record can have the key: its incident must be the next free one, or kAppend, which stands
    // for that one.
    [[nodiscard]] bool takes(std::uint32_t tag, const RecordKey& key) const;
    // False when it cannot be done. The incident of a new record is written into the key.
    bool save(std::uint32_t tag, const RecordKey& key, std::span<const std::byte> content);
    bool create(std::uint32_t tag, RecordKey& key, std::span<const std::byte> content);
    bool remove(std::uint32_t tag, const RecordKey& key);
    // Exchanges a list with another; an empty one is no list at all.
    void exchange(const Place& place, Incidents& incidents);

    static constexpr std::uint16_t kAppend = 0xFFFF;

  private:
    using Lists = std::map<std::pair<std::uint32_t, std::uint16_t>, Incidents>;
    std::map<std::uint32_t, Lists> records_;
};

}  // namespace rovescio::engine
