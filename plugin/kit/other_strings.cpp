// Texts and arrays kept in data records of a number and an incident.
#include "kit/other_strings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "kit/data_records.h"
#include "util/utf16_functions.h"

namespace {

using Part = std::array<char, 12>;

// Incidents that a run can have; the last number asks for a new record.
constexpr std::uint32_t kIncidents = kAppendNumber;

bool loadPart(std::uint32_t tag, EDATAKEY first, std::uint32_t index, void* part) {
    const std::uint32_t incident = first.inci + index;
    return incident < kIncidents &&
           sx_loadother(tag, first.cmper, static_cast<std::uint16_t>(incident), part, sizeof(Part));
}

// Bytes up to the first zero byte or the end of the run.
std::size_t textLength(std::uint32_t tag, EDATAKEY first) {
    std::size_t length = 0;
    Part part{};
    for (std::uint32_t i = 0; loadPart(tag, first, i, part.data()); ++i) {
        const auto end = std::find(part.begin(), part.end(), '\0');
        length += static_cast<std::size_t>(end - part.begin());
        if (end != part.end()) break;
        part = {};
    }
    return length;
}

// Gives a text with its terminator to a call of the host, which takes a buffer that it may change.
template <class Call>
short handText(Call call, std::uint32_t tag, EDATAKEY& key, const char16_t* text) {
    std::u16string copy(text);
    auto size = static_cast<std::uint32_t>(copy.size() * 2 + 2);
    return call(tag, &key, copy.data(), &size);
}

}  // namespace

short VeltraOtArray_Save(std::uint32_t tag, const EDATAKEY* key, std::uint32_t count,
                         std::uint32_t elementSize, const void* data) {
    const std::uint64_t total = std::uint64_t{count} * elementSize;
    const std::uint64_t needed = (total + sizeof(Part) - 1) / sizeof(Part);
    if (key->inci + needed > kIncidents) return 0;
    Part part{};
    std::uint32_t found = 0;
    while (loadPart(tag, *key, found, part.data())) ++found;
    // From the end, so that the incidents before the deleted one keep their numbers.
    while (found > 0) sx_deleteother(tag, key->cmper, static_cast<std::uint16_t>(key->inci + --found));
    const auto* bytes = static_cast<const char*>(data);
    for (std::uint32_t i = 0; i < needed; ++i) {
        const std::uint64_t start = std::uint64_t{i} * sizeof(Part);
        part = {};
        std::memcpy(part.data(), bytes + start, std::min<std::uint64_t>(sizeof(Part), total - start));
        const auto incident = static_cast<std::uint16_t>(key->inci + i);
        if (!sx_saveother(tag, key->cmper, incident, part.data(), sizeof(Part))) return 0;
    }
    return 1;
}

bool sx_loadotherstring(std::uint32_t tag, std::uint16_t number, std::uint16_t incident,
                        std::unique_ptr<char[]>& text) {
    const EDATAKEY first{number, incident};
    const std::size_t length = textLength(tag, first);
    text = std::make_unique<char[]>(length + 1);
    for (std::size_t start = 0; start < length; start += sizeof(Part)) {
        const std::size_t wanted = std::min(sizeof(Part), length - start);
        Part last{};
        void* const target = wanted == sizeof(Part) ? text.get() + start : last.data();
        if (!loadPart(tag, first, static_cast<std::uint32_t>(start / sizeof(Part)), target)) {
            text.reset();
            return false;
        }
        if (target == last.data()) std::memcpy(text.get() + start, last.data(), wanted);
    }
    return true;
}

bool sx_saveotherstring(std::uint32_t tag, std::uint16_t number, std::uint16_t incident, const char* text) {
    const EDATAKEY first{number, incident};
    return VeltraOtArray_Save(tag, &first, static_cast<std::uint32_t>(std::strlen(text)), 1, text) != 0;
}

bool sx_loadotherstring_UTF16(std::uint32_t tag, std::uint16_t number, std::uint16_t incident,
                              std::unique_ptr<char16_t[]>& text) {
    text.reset();
    EDATAKEY key{number, incident};
    std::uint32_t size = 0;
    if (!SX_LoadEData(tag, &key, nullptr, &size)) return false;
    // One unit more, should the record lack its terminator or end in half a unit.
    auto loaded = std::make_unique<char16_t[]>(size / 2 + 2);
    if (!SX_LoadEData(tag, &key, loaded.get(), &size)) return false;
    text = std::move(loaded);
    return true;
}

bool sx_saveotherstring_UTF16(std::uint32_t tag, std::uint16_t number, std::uint16_t incident,
                              const char16_t* text) {
    EDATAKEY key{number, incident};
    return handText(SX_SaveEData, tag, key, text) == 1;
}

bool sx_loadrawtext(std::uint16_t number, std::unique_ptr<char16_t[]>& text) {
    return sx_loadotherstring_UTF16(kRawTextTag, number, 0, text);
}

bool sx_saverawtext(std::uint16_t number, const char16_t* text) {
    return sx_saveotherstring_UTF16(kRawTextTag, number, 0, text);
}

bool sx_addrawtext(std::uint16_t& number, const char16_t* text) {
    EDATAKEY key{kAppendNumber, 0};
    const bool created = handText(SX_CreateEData, kRawTextTag, key, text) != 0;
    number = key.cmper;
    return created;
}

bool sx_deleterawtext(std::uint16_t number) {
    return sx_deleteother(kRawTextTag, number, 0);
}

bool sx_nextrawtext(std::uint16_t& number, std::unique_ptr<char16_t[]>& text) {
    text.reset();
    EDATAKEY key{number, 0};
    std::uint32_t size = 0;
    if (!SX_NextEData(kRawTextTag, &key, nullptr, &size)) return false;
    number = key.cmper;
    return sx_loadrawtext(number, text);
}
