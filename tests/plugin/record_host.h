// A host's data records in memory, served by the test program itself: incidents close up after a deletion,
// and a save may be of the next free incident.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "contract/data_records.h"
#include "host_function.h"
#include "kit/engine_bundle.h"

struct RecordHost {
    using Key = std::vector<std::uint16_t>;

    std::map<std::uint32_t, std::map<Key, std::vector<std::uint16_t>>> records;
    std::vector<std::string> calls;  // "load 6f743430 65534.0"
    // Gets each call before it is served; anything but 1 is its result, and nothing is done.
    std::function<short(const std::string& call)> answer;

    // Records of a tag as "1.0=7,0 ", with their first two words.
    std::string listing(std::uint32_t tag) {
        std::string text;
        for (const auto& [key, words] : records[tag]) {
            text += join(key) + "=" + std::to_string(words[0]) + "," + std::to_string(words[1]) + " ";
        }
        return text;
    }

    static std::string join(const Key& key) {
        std::string text;
        for (const std::uint16_t number : key) text += (text.empty() ? "" : ".") + std::to_string(number);
        return text;
    }

    // The numbers at a key; those of an entry are its low and high half.
    static Key keyAt(std::uint32_t tag, const void* key) {
        Key numbers(recordKeyForm(tag) == RecordKeyForm::other ? 2 : 3);
        std::memcpy(numbers.data(), key, numbers.size() * 2);
        return numbers;
    }

    short call(const char* name, std::uint32_t tag, const Key& key) {
        char head[40];
        std::snprintf(head, sizeof head, "%s %08x ", name, tag);
        calls.push_back(head + join(key));
        return answer ? answer(calls.back()) : short{1};
    }

    static void deliver(const std::vector<std::uint16_t>& words, void* buffer, std::uint32_t* size) {
        const auto whole = static_cast<std::uint32_t>(words.size() * 2);
        if (buffer) std::memcpy(buffer, words.data(), std::min(*size, whole));
        *size = whole;
    }
};

inline RecordHost recordHost;

HOST_DOUBLE short SX_LoadEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                               std::uint32_t /*version*/) {
    if (!key) return 0;
    const auto numbers = RecordHost::keyAt(tag, key);
    if (const short result = recordHost.call("load", tag, numbers); result != 1) return result;
    const auto found = recordHost.records[tag].find(numbers);
    if (found == recordHost.records[tag].end()) return 0;
    RecordHost::deliver(found->second, buffer, size);
    return 1;
}

HOST_DOUBLE short SX_SaveEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                               std::uint32_t /*version*/) {
    if (!key) return 0;
    const auto numbers = RecordHost::keyAt(tag, key);
    if (const short result = recordHost.call("save", tag, numbers); result != 1) return result;
    auto& words = recordHost.records[tag][numbers];
    words.assign(*size / 2, 0);
    std::memcpy(words.data(), buffer, *size);
    return 1;
}

HOST_DOUBLE short SX_CreateEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                                 std::uint32_t version) {
    auto numbers = RecordHost::keyAt(tag, key);
    if (const short result = recordHost.call("create", tag, numbers); result != 1) return result;
    for (auto& number : numbers) {
        if (number != kAppendNumber) continue;
        for (number = &number == &numbers.back() ? 0 : 1; recordHost.records[tag].contains(numbers);)
            ++number;
        break;
    }
    std::memcpy(key, numbers.data(), numbers.size() * 2);
    return SX_SaveEData(tag, key, buffer, size, version);
}

HOST_DOUBLE short SX_DeleteEData(std::uint32_t tag, void* key, std::uint32_t /*version*/) {
    auto numbers = RecordHost::keyAt(tag, key);
    if (const short result = recordHost.call("delete", tag, numbers); result != 1) return result;
    auto& kept = recordHost.records[tag];
    if (kept.erase(numbers) == 0) return 0;
    for (auto next = kept.find((++numbers.back(), numbers)); next != kept.end(); next = kept.find(numbers)) {
        auto moved = kept.extract(next);
        --moved.key().back();
        kept.insert(std::move(moved));
        ++numbers.back();
    }
    return 1;
}

HOST_DOUBLE short SX_NextEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size,
                               std::uint32_t /*version*/) {
    const auto numbers = RecordHost::keyAt(tag, key);
    const auto next = recordHost.records[tag].upper_bound(numbers);
    if (recordHost.call("next", tag, numbers) != 1 || next == recordHost.records[tag].end()) return 0;
    std::memcpy(key, next->first.data(), next->first.size() * 2);
    RecordHost::deliver(next->second, buffer, size);
    return 1;
}
