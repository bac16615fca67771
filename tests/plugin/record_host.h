// A host's data records in memory, served by the test program itself: incidents close up after a deletion,
// and a save may be of the next free incident.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "contract/data_records.h"
#include "host_function.h"
#include "kit/engine_bundle.h"

struct RecordHost {
    using Key = std::vector<std::uint16_t>;  // the number of an entry is its low and high half

    std::map<std::uint32_t, std::map<Key, Key>> records;
    std::vector<std::string> calls;              // "load 6f743430 65534.0"
    std::map<std::uint32_t, std::string> keyed;  // the same by tags: "lo65534.0 "
    // Gets each call before it is served; anything but 1 is its result, and nothing is done.
    std::function<short(const std::string& call)> answer;

    // Records of a tag as "1.0=7,0 ", with all words or the first ones.
    std::string listing(std::uint32_t tag, std::size_t count = 2) {
        std::string text;
        for (auto [key, words] : records[tag])
            text += join(key, ".") + "=" + join((words.resize(count), words), ",") + " ";
        return text;
    }
    static std::string join(const Key& key, const char* separator) {
        std::string text;
        for (const std::uint16_t number : key)
            text += (text.empty() ? "" : separator) + std::to_string(number);
        return text;
    }

    // One call on its way: the key in numbers, and the host's answer to it.
    struct Call {
        Key numbers;
        short result = 0;

        Call(const std::string& name, std::uint32_t tag, const void* key);
    };
    static short deliver(const Key& words, void* buffer, std::uint32_t* size) {
        const auto whole = static_cast<std::uint32_t>(words.size() * 2);
        if (buffer) std::memcpy(buffer, words.data(), std::min(*size, whole));
        *size = whole;
        return 1;
    }
};

inline RecordHost recordHost;

inline RecordHost::Call::Call(const std::string& name, std::uint32_t tag, const void* key) {
    if (!key) return;
    numbers.resize(recordKeyForm(tag) == RecordKeyForm::other ? 2 : 3);
    std::memcpy(numbers.data(), key, numbers.size() * 2);
    char head[12];
    std::snprintf(head, sizeof head, " %08x ", tag);
    recordHost.calls.push_back(name + head + join(numbers, "."));
    recordHost.keyed[tag] += name.substr(0, 2) + join(numbers, ".") + " ";
    result = recordHost.answer ? recordHost.answer(recordHost.calls.back()) : short{1};
}

HOST_DOUBLE short SX_LoadEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                               std::uint32_t) {
    const RecordHost::Call call("load", tag, key);
    if (call.result != 1) return call.result;
    const auto found = recordHost.records[tag].find(call.numbers);
    return found == recordHost.records[tag].end() ? short{0}
                                                  : RecordHost::deliver(found->second, buffer, size);
}

HOST_DOUBLE short SX_SaveEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                               std::uint32_t) {
    const RecordHost::Call call("save", tag, key);
    if (call.result != 1) return call.result;
    auto& words = recordHost.records[tag][call.numbers];
    words.assign(*size / 2, 0);
    std::memcpy(words.data(), buffer, *size);
    return 1;
}

HOST_DOUBLE short SX_CreateEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                                 std::uint32_t version) {
    auto [numbers, result] = RecordHost::Call("create", tag, key);
    if (result != 1) return result;
    const auto chosen = std::find(numbers.begin(), numbers.end(), kAppendNumber);
    if (chosen == numbers.end()) return 0;
    *chosen = chosen == numbers.end() - 1 ? 0 : 1;
    while (recordHost.records[tag].contains(numbers)) ++*chosen;
    std::memcpy(key, numbers.data(), numbers.size() * 2);
    return SX_SaveEData(tag, key, buffer, size, version);
}

HOST_DOUBLE short SX_DeleteEData(std::uint32_t tag, void* key, std::uint32_t) {
    auto [numbers, result] = RecordHost::Call("delete", tag, key);
    if (result != 1) return result;
    auto& kept = recordHost.records[tag];
    if (kept.erase(numbers) == 0) return 0;
    for (++numbers.back(); kept.contains(numbers); ++numbers.back()) {
        auto moved = kept.extract(numbers);
        --moved.key().back();
        kept.insert(std::move(moved));
    }
    return 1;
}

HOST_DOUBLE short SX_NextEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                               std::uint32_t) {
    const RecordHost::Call call("next", tag, key);
    const auto next = recordHost.records[tag].upper_bound(call.numbers);
    if (call.result != 1 || next == recordHost.records[tag].end()) return 0;
    std::memcpy(key, next->first.data(), next->first.size() * 2);
    return RecordHost::deliver(next->second, buffer, size);
}

// Each test has a host of today without records.
class RecordHostTest : public testing::Test {
  protected:
    RecordHostTest() {
        InitializeGlobals();
        recordHost = {};
        QorVersion = kKitVersion;
    }
};
