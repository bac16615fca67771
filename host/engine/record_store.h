// The document's data records by tag and key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "contract/records.h"

namespace rovescio::engine {

// Records of one tag and cmper are numbered by incident from 0 without gaps: deleting one closes up the
// numbers behind it.
class RecordStore {
  public:
    using Bytes = std::vector<std::byte>;

    // Null when there is none.
    [[nodiscard]] const Bytes* find(std::uint32_t tag, const EDATAKEY& key) const;
    bool save(std::uint32_t tag, const EDATAKEY& key, std::span<const std::byte> content);
    // The incident must be the next free one, or kAppend; it is written into the key.
    bool create(std::uint32_t tag, EDATAKEY& key, std::span<const std::byte> content);
    bool remove(std::uint32_t tag, const EDATAKEY& key);
    // The record after (or before) a key in the order of cmper and incident; the key becomes its key. Null at
    // the end.
    const Bytes* next(std::uint32_t tag, EDATAKEY& key) const;
    const Bytes* previous(std::uint32_t tag, EDATAKEY& key) const;
    [[nodiscard]] std::size_t count(std::uint32_t tag) const;

    static constexpr std::uint16_t kAppend = 0xFFFF;

  private:
    using Incidents = std::vector<Bytes>;
    std::map<std::uint32_t, std::map<std::uint16_t, Incidents>> records_;
};

}  // namespace rovescio::engine
