// The calls for data records that have keys of the same form, and families of records of one type and tag.
#pragma once

#include <cstdint>
#include <cstring>

#include "contract/data_records.h"
#include "kit/host_api.h"

namespace kit {

// A key as the host reads it: its numbers one after another, then zeros.
template <class... Numbers>
class RecordKey {
  public:
    explicit RecordKey(Numbers... numbers) {
        char* place = bytes_;
        ((std::memcpy(place, &numbers, sizeof numbers), place += sizeof numbers), ...);
    }
    void read(Numbers&... numbers) const {
        const char* place = bytes_;
        ((std::memcpy(&numbers, place, sizeof numbers), place += sizeof numbers), ...);
    }
    void* data() { return bytes_; }

  private:
    char bytes_[sizeof(EDETAILKEY)] = {};
    static_assert((sizeof(Numbers) + ...) <= sizeof bytes_ && sizeof(EENTRYKEY) == sizeof bytes_);
};

// The calls for records with keys of some given numbers and one, the last, that the host chooses for a new
// record. Sizes are bytes.
template <class Chosen, class... Given>
struct RecordCalls {
    using Key = RecordKey<Given..., Chosen>;

    static bool load(std::uint32_t tag, Given... given, Chosen chosen, void* record, std::uint32_t size) {
        Key key(given..., chosen);
        return SX_LoadEData(tag, key.data(), record, &size) != 0;
    }
    static bool save(std::uint32_t tag, Given... given, Chosen chosen, void* record, std::uint32_t size) {
        Key key(given..., chosen);
        return SX_SaveEData(tag, key.data(), record, &size) != 0;
    }
    static bool add(std::uint32_t tag, Given... given, Chosen& chosen, void* record, std::uint32_t size) {
        Key key(given..., static_cast<Chosen>(kAppendNumber));
        const bool added = SX_CreateEData(tag, key.data(), record, &size) != 0;
        key.read(given..., chosen);
        return added;
    }
    static bool erase(std::uint32_t tag, Given... given, Chosen chosen) {
        Key key(given..., chosen);
        return SX_DeleteEData(tag, key.data()) != 0;
    }
    static bool next(std::uint32_t tag, Given&... given, Chosen& chosen, void* record, std::uint32_t size) {
        Key key(given..., chosen);
        const bool found = SX_NextEData(tag, key.data(), record, &size) != 0;
        if (found) key.read(given..., chosen);
        return found;
    }
};

// The same for records of one type, which all have one tag.
template <std::uint32_t kTag, class Record, class Chosen, class... Given>
struct RecordFamily {
    using Calls = RecordCalls<Chosen, Given...>;

    static bool load(Given... given, Chosen chosen, Record* record) {
        return Calls::load(kTag, given..., chosen, record, sizeof *record);
    }
    static bool save(Given... given, Chosen chosen, Record* record) {
        return Calls::save(kTag, given..., chosen, record, sizeof *record);
    }
    static bool add(Given... given, Chosen& chosen, Record* record) {
        return Calls::add(kTag, given..., chosen, record, sizeof *record);
    }
    static bool erase(Given... given, Chosen chosen) { return Calls::erase(kTag, given..., chosen); }
    static bool next(Given&... given, Chosen& chosen, Record* record) {
        return Calls::next(kTag, given..., chosen, record, sizeof *record);
    }
};

}  // namespace kit
