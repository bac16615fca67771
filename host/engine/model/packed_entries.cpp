// Packing and expanding of entries.
#include "engine/model/packed_entries.h"

#include <cstring>
#include <utility>

namespace rovescio::engine {

namespace {

constexpr std::size_t kHead = offsetof(EXENTRY, notes);
constexpr std::size_t kTail = sizeof(EXENTRY) - offsetof(EXENTRY, elapsed);

}  // namespace

void StoredEntry::expand(EXENTRY& entry) const {
    const auto* source = reinterpret_cast<const std::byte*>(this);
    auto* target = reinterpret_cast<std::byte*>(&entry);
    const std::size_t used = notes().size_bytes();
    std::memcpy(target, source, kHead);
    std::memcpy(target + kHead, source + sizeof *this, used);
    std::memset(target + kHead + used, 0, sizeof entry.notes - used);
    std::memcpy(target + offsetof(EXENTRY, elapsed), source + kHead, kTail);
}

PackedEntries::PackedEntries(std::span<const EXENTRY> entries) {
    std::size_t bytes = 0;
    for (const EXENTRY& entry : entries) bytes += bytesFor(entry.noteCount);
    *this = withRoom(bytes);
    for (const EXENTRY& entry : entries) append(entry);
}

void PackedEntries::swap(PackedEntries& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(used_, other.used_);
    std::swap(noteFlags_, other.noteFlags_);
    std::swap(count_, other.count_);
}

PackedEntries PackedEntries::copy() const {
    PackedEntries twin = withRoom(used_);
    if (used_) std::memcpy(twin.bytes_.get(), bytes_.get(), used_);
    twin.used_ = used_;
    twin.noteFlags_ = noteFlags_;
    twin.count_ = count_;
    return twin;
}

PackedEntries PackedEntries::withRoom(std::size_t bytes) {
    PackedEntries entries;
    if (bytes) entries.bytes_ = std::make_unique_for_overwrite<std::byte[]>(bytes);
    return entries;
}

void PackedEntries::append(const EXENTRY& entry) {
    const auto* source = reinterpret_cast<const std::byte*>(&entry);
    std::byte* target = bytes_.get() + used_;
    const std::size_t bytes = bytesFor(entry.noteCount);
    std::memcpy(target, source, kHead);
    std::memcpy(target + kHead, source + offsetof(EXENTRY, elapsed), kTail);
    std::memcpy(target + sizeof(StoredEntry), source + kHead, bytes - sizeof(StoredEntry));
    for (short i = 0; i < entry.noteCount; ++i) noteFlags_ |= entry.notes[i].noteFlags;
    used_ += static_cast<std::uint32_t>(bytes);
    ++count_;
}

void PackedEntries::expand(std::vector<EXENTRY>& entries) const {
    entries.resize(size());
    EXENTRY* target = entries.data();
    for (const StoredEntry& entry : *this) entry.expand(*target++);
}

std::vector<EXENTRY> PackedEntries::expanded() const {
    std::vector<EXENTRY> entries;
    expand(entries);
    return entries;
}

}  // namespace rovescio::engine
