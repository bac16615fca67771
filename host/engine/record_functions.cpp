// Host functions on data records: the border between raw buffers and the record store.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>

#include "engine/functions.h"
#include "engine/session.h"

namespace rovescio::engine::functions {

namespace {

EDATAKEY keyAt(const void* key) {
    EDATAKEY copy{};
    std::memcpy(&copy, key, sizeof copy);
    return copy;
}

std::span<const std::byte> content(const void* buffer, const std::uint32_t* size) {
    return {static_cast<const std::byte*>(buffer), *size};
}

// Copies as much of a record as the caller has room for and tells its whole size.
short deliver(const RecordStore::Bytes* record, void* buffer, std::uint32_t* size) {
    if (!record) return 0;
    if (buffer) std::memcpy(buffer, record->data(), std::min<std::size_t>(*size, record->size()));
    *size = static_cast<std::uint32_t>(record->size());
    return 1;
}

using Step = const RecordStore::Bytes* (RecordStore::*)(std::uint32_t, EDATAKEY&) const;

short walk(Step step, std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    if (!key || !size) return 0;
    EDATAKEY place = keyAt(key);
    const RecordStore::Bytes* record = (Session::current().records.*step)(tag, place);
    if (record) std::memcpy(key, &place, sizeof place);
    return deliver(record, buffer, size);
}

}  // namespace

short SX_LoadEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    if (!key || !size) return 0;
    return deliver(Session::current().records.find(tag, keyAt(key)), buffer, size);
}

short SX_SaveEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    if (!key || !buffer || !size) return 0;
    return Session::current().records.save(tag, keyAt(key), content(buffer, size));
}

short SX_CreateEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    if (!key || !buffer || !size) return 0;
    EDATAKEY place = keyAt(key);
    if (!Session::current().records.create(tag, place, content(buffer, size))) return 0;
    std::memcpy(key, &place, sizeof place);
    return 1;
}

short SX_DeleteEData(std::uint32_t tag, void* key) {
    return key && Session::current().records.remove(tag, keyAt(key));
}

short SX_PreviousEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    return walk(&RecordStore::previous, tag, key, buffer, size);
}

short SX_NextEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    return walk(&RecordStore::next, tag, key, buffer, size);
}

}  // namespace rovescio::engine::functions
