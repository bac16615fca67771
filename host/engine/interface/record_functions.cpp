// Host functions on data records: the border to raw buffers.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>

#include "engine/interface/functions.h"
#include "engine/interface/session.h"

namespace rovescio::engine::functions {

namespace {

std::span<const std::byte> content(const void* buffer, const std::uint32_t* size) {
    return {static_cast<const std::byte*>(buffer), *size};
}

// Copies as much of a record as the caller has room for and returns its whole size.
short deliver(const std::optional<RecordStore::Bytes>& record, void* buffer, std::uint32_t* size) {
    if (!record) return 0;
    if (buffer) std::memcpy(buffer, record->data(), std::min<std::size_t>(*size, record->size()));
    *size = static_cast<std::uint32_t>(record->size());
    return 1;
}

DataRecords& records() {
    return Session::current().dataRecords;
}

}  // namespace

short SX_LoadEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    return key && size ? deliver(records().load(tag, key), buffer, size) : short{0};
}

short SX_SaveEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    return key && buffer && size && records().save(tag, key, content(buffer, size));
}

short SX_CreateEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    return key && buffer && size && records().create(tag, key, content(buffer, size));
}

short SX_DeleteEData(std::uint32_t tag, void* key) {
    return key && records().remove(tag, key);
}

short SX_PreviousEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    return key && size ? deliver(records().step(tag, key, false), buffer, size) : short{0};
}

short SX_NextEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    return key && size ? deliver(records().step(tag, key, true), buffer, size) : short{0};
}

}  // namespace rovescio::engine::functions
