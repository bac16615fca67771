// The data records that the host interface shows: where each tag leads, and what is refused.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "contract/data_records.h"
#include "engine/edit/mass_edit.h"
#include "engine/model/record_store.h"

namespace rovescio::engine {

// Measure specifications are made from the document and saved into it: width, key in concert pitch, space
// and spacing mode; beats give the time signature and are not changed by saving. The list that playback reads
// is temporary and belongs to no mass edit. All other records are the document's own; they are changed inside
// mass edits, and doing it outside breaks a rule.
class DataRecords {
  public:
    DataRecords(Document& document, MassEdits& massEdits, RecordStore& temporary)
        : document_(document), massEdits_(massEdits), temporary_(temporary) {}

    // None when there is none.
    std::optional<RecordStore::Bytes> load(std::uint32_t tag, const void* key) const;
    // False for a key, size or tag that cannot be; nothing is changed then. The number that the host chose is
    // written into the key.
    bool save(std::uint32_t tag, const void* key, std::span<const std::byte> content);
    bool create(std::uint32_t tag, void* key, std::span<const std::byte> content);
    bool remove(std::uint32_t tag, const void* key);
    // The next or previous record of the tag, whose key is written into the key.
    std::optional<RecordStore::Bytes> step(std::uint32_t tag, void* key, bool forward) const;

  private:
    [[nodiscard]] const RecordStore& storeOf(std::uint32_t tag) const;
    bool chooseNumber(std::uint32_t tag, RecordKey& key) const;
    [[nodiscard]] bool ownerExists(std::uint32_t tag, const RecordKey& key) const;
    template <class Change>
    bool apply(const RecordStore::Place& place, const Change& change);
    [[nodiscard]] bool isMeasure(const RecordKey& key) const;
    bool saveMeasure(const RecordKey& key, std::span<const std::byte> content);

    Document& document_;
    MassEdits& massEdits_;
    RecordStore& temporary_;
};

}  // namespace rovescio::engine
