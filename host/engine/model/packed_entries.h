// The entries of one frame in as few bytes as they need: an entry of one note takes 36 bytes instead of 146.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "contract/records.h"

namespace rovescio::engine {

#pragma pack(push, 1)

// An entry as the document keeps it: its fields without the unused note slots, its notes right after it.
struct StoredEntry {
    std::uint32_t entryNumber;
    std::int32_t duration;
    std::uint32_t entryFlags;
    std::uint8_t updateFlags;
    std::uint8_t reserved13;
    std::int16_t noteCount;
    std::int32_t elapsed;
    std::uint8_t hostPrivate[6];

    std::span<ENOTE> notes() {
        return {reinterpret_cast<ENOTE*>(this + 1), static_cast<std::size_t>(noteCount)};
    }
    [[nodiscard]] std::span<const ENOTE> notes() const {
        return {reinterpret_cast<const ENOTE*>(this + 1), static_cast<std::size_t>(noteCount)};
    }
    [[nodiscard]] std::size_t bytes() const { return sizeof *this + notes().size_bytes(); }
    // The whole record, unused note slots zero.
    void expand(EXENTRY& entry) const;
    [[nodiscard]] EXENTRY expanded() const {
        EXENTRY entry;
        expand(entry);
        return entry;
    }
};

#pragma pack(pop)

static_assert(sizeof(StoredEntry) == offsetof(EXENTRY, notes) + 10 && alignof(StoredEntry) == 1);

// Walks stored entries; Entry is StoredEntry or const StoredEntry.
template <class Entry>
class StoredEntryIterator {
  public:
    using value_type = StoredEntry;
    using difference_type = std::ptrdiff_t;
    using reference = Entry&;
    using pointer = Entry*;
    using iterator_category = std::forward_iterator_tag;

    StoredEntryIterator() = default;
    explicit StoredEntryIterator(Entry* entry) : entry_(entry) {}
    reference operator*() const { return *entry_; }
    pointer operator->() const { return entry_; }
    StoredEntryIterator& operator++() {
        using Byte = std::conditional_t<std::is_const_v<Entry>, const std::byte, std::byte>;
        entry_ = reinterpret_cast<Entry*>(reinterpret_cast<Byte*>(entry_) + entry_->bytes());
        return *this;
    }
    StoredEntryIterator operator++(int) {
        const StoredEntryIterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const StoredEntryIterator&, const StoredEntryIterator&) = default;

  private:
    Entry* entry_ = nullptr;
};

// Entries can be changed in place as long as they keep their number of notes.
class PackedEntries {
  public:
    PackedEntries() = default;
    // Notes beyond an entry's count are not kept.
    explicit PackedEntries(std::span<const EXENTRY> entries);
    PackedEntries(PackedEntries&& other) noexcept { swap(other); }
    PackedEntries& operator=(PackedEntries&& other) noexcept {
        PackedEntries(std::move(other)).swap(*this);
        return *this;
    }
    ~PackedEntries() = default;
    void swap(PackedEntries& other) noexcept;
    [[nodiscard]] PackedEntries copy() const;

    // Appends to entries made with room for them.
    static PackedEntries withRoom(std::size_t bytes);
    void append(const EXENTRY& entry);
    static std::size_t bytesFor(std::int16_t noteCount) {
        return sizeof(StoredEntry) + static_cast<std::size_t>(noteCount) * sizeof(ENOTE);
    }

    [[nodiscard]] std::size_t size() const { return count_; }
    [[nodiscard]] bool empty() const { return count_ == 0; }
    // Whether a note had one of these flags when it was packed.
    [[nodiscard]] bool mayHaveNoteFlags(std::uint32_t flags) const { return (noteFlags_ & flags) != 0; }
    using Iterator = StoredEntryIterator<StoredEntry>;
    using ConstIterator = StoredEntryIterator<const StoredEntry>;
    [[nodiscard]] ConstIterator begin() const { return ConstIterator(at(0)); }
    [[nodiscard]] ConstIterator end() const { return ConstIterator(at(used_)); }
    Iterator begin() { return Iterator(at(0)); }
    Iterator end() { return Iterator(at(used_)); }
    // The index-th entry; takes time in proportion to the index.
    [[nodiscard]] const StoredEntry& operator[](std::size_t index) const {
        return *std::next(begin(), static_cast<std::ptrdiff_t>(index));
    }
    StoredEntry& operator[](std::size_t index) {
        return *std::next(begin(), static_cast<std::ptrdiff_t>(index));
    }

    // Where an entry of these stands, and the entry that stands there; also good for a copy.
    [[nodiscard]] std::size_t offsetOf(const StoredEntry& entry) const {
        return static_cast<std::size_t>(reinterpret_cast<const std::byte*>(&entry) - bytes_.get());
    }
    StoredEntry& atOffset(std::size_t offset) { return *at(offset); }
    [[nodiscard]] const StoredEntry& atOffset(std::size_t offset) const { return *at(offset); }

    // All entries as whole records.
    void expand(std::vector<EXENTRY>& entries) const;
    [[nodiscard]] std::vector<EXENTRY> expanded() const;

  private:
    [[nodiscard]] StoredEntry* at(std::size_t offset) const {
        return reinterpret_cast<StoredEntry*>(bytes_.get() + offset);
    }

    std::unique_ptr<std::byte[]> bytes_;
    std::uint32_t used_ = 0;
    std::uint32_t noteFlags_ = 0;  // of all notes together
    std::uint16_t count_ = 0;
};

}  // namespace rovescio::engine
