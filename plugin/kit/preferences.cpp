// The tables of the preference records and the walk that puts them together and takes them apart.
#include "kit/preferences.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

#include "contract/data_records.h"
#include "kit/bound.h"

namespace {

using kit::PreferenceRow;
using kit::PreferenceRun;
using SubRecord = std::array<std::uint16_t, kit::kSubRecordSize / 2>;

// Rows are in the order of their fields, leave no byte out, and stay inside their sub-record.
constexpr bool covers(std::span<const PreferenceRow> rows, std::size_t recordSize) {
    std::size_t end = 0;
    for (const PreferenceRow& row : rows) {
        if (row.destination != end || row.source + row.width / 2U > SubRecord{}.size()) return false;
        end += row.width;
    }
    return end == recordSize;
}

}  // namespace

namespace kit {

#define PREFERENCES(record) constexpr PreferenceRow record##_ROWS[] = {
#define PREFERENCE(record, type, field, subTag, number, incident, source, conversion) \
    {0,      {subTag[0], subTag[1]}, number, incident,  offsetof(record, field),      \
     source, sizeof(type),           0,      conversion},
#define PREFERENCES_END(record, tag)                      \
    }                                                     \
    ;                                                     \
    static_assert(covers(record##_ROWS, sizeof(record))); \
    static constinit auto record##_MAP_ARRAY = std::to_array(record##_ROWS);
#include "kit/preferences.def"

}  // namespace kit

namespace {

// The table of a scattered record, empty for other tags.
std::span<PreferenceRow> mapOf(std::uint32_t tag, std::uint16_t incident) {
    // The page format of incident 1 is that of the parts, a run.
    if (tag == 0x70665046 && incident != 0) return {};
#define PREFERENCES(record)
#define PREFERENCE(...)
#define PREFERENCES_END(record, recordTag) \
    if (tag == (recordTag)) return kit::record##_MAP_ARRAY;
#include "kit/preferences.def"
    return {};
}

std::uint32_t subTag(char first, char second) {
    return 0x6F740000U | static_cast<std::uint32_t>(static_cast<unsigned char>(first)) << 8 |
           static_cast<unsigned char>(second);
}

bool loadPart(std::uint32_t tag, EDATAKEY key, void* part) {
    std::uint32_t size = kit::kSubRecordSize;
    return kit::bound::SX_LoadEData(tag, &key, part, &size) != 0;
}

bool savePart(std::uint32_t tag, EDATAKEY key, void* part) {
    std::uint32_t size = kit::kSubRecordSize;
    return kit::bound::SX_SaveEData(tag, &key, part, &size) != 0;
}

enum class Direction { loading, saving };

void moveLong(std::int32_t conversion, std::uint16_t* source, std::byte* field, Direction direction) {
    const bool exchanged = conversion == kit::kHalvesExchanged;
    const bool known = exchanged || conversion == kit::kInOrder;
    std::uint16_t pair[2] = {0, 0};
    if (direction == Direction::loading) {
        if (known) std::memcpy(pair, source, sizeof pair);
        if (exchanged) std::swap(pair[0], pair[1]);
        std::memcpy(field, pair, sizeof pair);
    } else if (known) {
        std::memcpy(pair, field, sizeof pair);
        if (exchanged) std::swap(pair[0], pair[1]);
        std::memcpy(source, pair, sizeof pair);
    }
}

// A low byte shares its word with another setting, which stays.
void moveWord(std::int32_t conversion, std::uint16_t* source, std::byte* field, Direction direction) {
    std::uint16_t value = *source;
    if (direction == Direction::saving) std::memcpy(&value, field, sizeof value);
    if (conversion == kit::kNegated) value = value == 0;
    if (conversion == kit::kLowByte) value &= 0xFF;
    if (direction == Direction::loading) {
        std::memcpy(field, &value, sizeof value);
    } else {
        const int kept = conversion == kit::kLowByte ? *source & 0xFF00 : 0;
        *source = static_cast<std::uint16_t>(kept | value);
    }
}

// Visits each sub-record of a table once, with all its fields.
bool walkMap(std::span<PreferenceRow> rows, std::byte* record, Direction direction) {
    for (PreferenceRow& row : rows) row.loaded = 0;
    for (PreferenceRow& first : rows) {
        if (first.loaded) continue;
        const std::uint32_t tag = subTag(first.subTag[0], first.subTag[1]);
        const EDATAKEY key{first.number != 0 ? first.number : kGlobalNumber, first.incident};
        SubRecord words{};
        // What is missing while saving starts out as zeros.
        if (!loadPart(tag, key, words.data()) && direction == Direction::loading) return false;
        for (PreferenceRow& row : rows) {
            if (!std::equal(row.subTag, row.subTag + 2, first.subTag) || row.number != first.number ||
                row.incident != first.incident) {
                continue;
            }
            const auto move = row.width == 4 ? moveLong : moveWord;
            move(row.conversion, &words[row.source], record + row.destination, direction);
            row.loaded = 1;
        }
        if (direction == Direction::saving && !savePart(tag, key, words.data())) return false;
    }
    return true;
}

bool walkRun(const PreferenceRun& run, std::byte* record, Direction direction) {
    const auto step = direction == Direction::loading ? loadPart : savePart;
    for (std::uint16_t i = 0; i < run.count; ++i) {
        const EDATAKEY key{kGlobalNumber, static_cast<std::uint16_t>(run.first + i)};
        if (!step(run.tag, key, record + std::size_t{i} * kit::kSubRecordSize)) return false;
    }
    return true;
}

bool walk(std::uint32_t tag, std::uint16_t incident, std::byte* record, Direction direction) {
    if (const auto rows = mapOf(tag, incident); !rows.empty()) return walkMap(rows, record, direction);
    return walkRun(kit::mapPrefTag(tag, incident), record, direction);
}

// A tag "pf.." whose record is a run of sub-records "ot..".
struct RunEntry {
    char letters[3];
    char subLetters[3];
    std::uint16_t count;
    std::uint16_t lowest;   // first incident allowed; 0 with highest 0: any, and they share one run
    std::uint16_t highest;  // last incident allowed; each has a run of its own
};

constexpr RunEntry kRuns[] = {
    {"GD", "79", 1, 0, 0},  {"GG", "88", 11, 0, 0}, {"Gb", "98", 1, 1, 4},   {"Gd", "80", 1, 0, 0},
    {"Gs", "91", 1, 1, 1},  {"MM", "25", 2, 0, 0},  {"ND", "04", 1, 0, 0},   {"Nd", "66", 1, 0, 0},
    {"PF", "77", 4, 1, 1},  {"SC", "52", 2, 0, 0},  {"SN", "40", 1, 1, 128}, {"SP", "94", 3, 0, 0},
    {"Sl", "26", 1, 1, 15}, {"TC", "86", 5, 0, 0},  {"TI", "84", 4, 0, 0},   {"TX", "78", 9, 0, 0},
    {"Tp", "85", 4, 0, 0},  {"Ts", "90", 1, 1, 9},
};

}  // namespace

namespace kit {

PreferenceRun mapPrefTag(std::uint32_t tag, std::uint16_t incident) {
    for (const RunEntry& entry : kRuns) {
        if (tag != ((subTag(entry.letters[0], entry.letters[1]) & 0xFFFF) | 0x70660000)) continue;
        PreferenceRun run{subTag(entry.subLetters[0], entry.subLetters[1]), entry.count, 0};
        if (entry.highest == 0) return run;
        if (incident < entry.lowest || incident > entry.highest) {
            run.count = 0;
        } else {
            run.first = static_cast<std::uint16_t>(incident - entry.lowest);
        }
        return run;
    }
    return {};
}

std::optional<std::uint32_t> preferenceSize(std::uint32_t tag, std::uint16_t incident) {
    if (const auto rows = mapOf(tag, incident); !rows.empty()) {
        return rows.back().destination + rows.back().width;
    }
    const PreferenceRun run = mapPrefTag(tag, incident);
    if (run.tag == 0) return std::nullopt;
    return run.count * kSubRecordSize;
}

bool loadPreferences(std::uint32_t tag, std::uint16_t incident, void* record) {
    std::vector<std::byte> whole(preferenceSize(tag, incident).value_or(0));
    if (!walk(tag, incident, whole.data(), Direction::loading)) return false;
    std::copy(whole.begin(), whole.end(), static_cast<std::byte*>(record));
    return true;
}

bool savePreferences(std::uint32_t tag, std::uint16_t incident, const void* record) {
    const auto* bytes = static_cast<const std::byte*>(record);
    std::vector<std::byte> whole(bytes, bytes + preferenceSize(tag, incident).value_or(0));
    return walk(tag, incident, whole.data(), Direction::saving);
}

}  // namespace kit
