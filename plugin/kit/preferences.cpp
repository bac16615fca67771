// The tables of the preference records and the walk that puts them together and takes them apart.
#include "kit/preferences.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "contract/data_records.h"
#include "kit/bound.h"
#include "kit/preference_records.h"

namespace {

using kit::PreferenceRow;
using kit::PreferenceRun;
using SubRecord = std::array<std::uint16_t, kit::kSubRecordSize / 2>;

// The fields that lie one after another in a sub-record, a letter for each, in the order of the conversions:
// w a word, l two words in order, x exchanged, n a word negated, b the low byte of one.
constexpr std::string_view kFieldLetters = "wlxnb";
struct FieldsOf {
    char subTag[3];
    std::uint16_t number, incident;
    std::string_view fields;
};

// The map of a record that has these fields one after another and no others.
template <class Record, std::size_t kRows>
consteval std::array<PreferenceRow, kRows> mapOf(std::initializer_list<FieldsOf> subRecords) {
    std::array<PreferenceRow, kRows> rows{};
    auto row = rows.begin();
    std::uint16_t end = 0;
    for (const auto& [subTag, number, incident, fields] : subRecords) {
        std::uint16_t word = 0;
        for (const char letter : fields) {
            const auto conversion = static_cast<std::int32_t>(kFieldLetters.find(letter));
            const std::uint16_t width =
                conversion == kit::kInOrder || conversion == kit::kHalvesExchanged ? 4 : 2;
            *row++ = {0, {subTag[0], subTag[1]}, number, incident, end, word, width, 0, conversion};
            end += width;
            word += width / 2;
        }
        if (word > SubRecord{}.size()) throw "more fields than the sub-record holds";
    }
    if (row != rows.end() || end != sizeof(Record)) throw "not the fields of the record";
    return rows;
}

constexpr auto EDT2005Prefs_MAP_ARRAY = mapOf<EDT2005Prefs, 7>({{"41", 0, 0, "wwwnb"}, {"42", 0, 0, "lx"}});
constexpr auto EDTDistancePrefs_MAP_ARRAY =
    mapOf<EDTDistancePrefs, 10>({{"43", 0, 0, "wwwwww"}, {"43", 0, 1, "wwww"}});
constexpr auto EDTExtractPrefs_MAP_ARRAY =
    mapOf<EDTExtractPrefs, 6>({{"44", 1, 0, "wnbw"}, {"44", 1, 1, "ll"}});
constexpr auto EDTMiscDocPrefs_MAP_ARRAY =
    mapOf<EDTMiscDocPrefs, 7>({{"45", 0, 0, "wwwwnb"}, {"45", 0, 1, "x"}});
constexpr auto EDTPianoBracePrefs_MAP_ARRAY = mapOf<EDTPianoBracePrefs, 6>({{"46", 0, 0, "wwwwww"}});
constexpr auto EDTPageFormatPrefsScore_MAP_ARRAY =
    mapOf<EDTPageFormatPrefsScore, 9>({{"76", 0, 0, "llww"}, {"76", 0, 1, "wwwwn"}});
constexpr auto EDTPlaybackPrefs_MAP_ARRAY = mapOf<EDTPlaybackPrefs, 5>({{"47", 0, 0, "wbwnx"}});
constexpr auto EDTRepeatPrefs_MAP_ARRAY =
    mapOf<EDTRepeatPrefs, 7>({{"48", 0, 0, "wwwwww"}, {"48", 0, 1, "w"}});
constexpr auto EDTSizePrefs_MAP_ARRAY = mapOf<EDTSizePrefs, 5>({{"49", 0, 0, "wwwwx"}});
constexpr auto EDTSmartShapePrefs_MAP_ARRAY =
    mapOf<EDTSmartShapePrefs, 7>({{"50", 0, 0, "wwwwnb"}, {"50", 0, 1, "l"}});

constexpr std::uint32_t kPageFormatTag = 0x70665046;

constexpr struct {
    std::uint32_t tag;
    std::span<const PreferenceRow> rows;
} kMaps[] = {
    {0x70663035, EDT2005Prefs_MAP_ARRAY},       {0x70664450, EDTDistancePrefs_MAP_ARRAY},
    {0x70664558, EDTExtractPrefs_MAP_ARRAY},    {0x70664D53, EDTMiscDocPrefs_MAP_ARRAY},
    {0x70665042, EDTPianoBracePrefs_MAP_ARRAY}, {kPageFormatTag, EDTPageFormatPrefsScore_MAP_ARRAY},
    {0x7066504C, EDTPlaybackPrefs_MAP_ARRAY},   {0x70665250, EDTRepeatPrefs_MAP_ARRAY},
    {0x70665349, EDTSizePrefs_MAP_ARRAY},       {0x70665353, EDTSmartShapePrefs_MAP_ARRAY},
};

// The map of a scattered record, empty for other tags.
std::span<const PreferenceRow> mapOf(std::uint32_t tag, std::uint16_t incident) {
    // The page format of incident 1 is that of the parts, a run.
    if (tag == kPageFormatTag && incident != 0) return {};
    for (const auto& map : kMaps) {
        if (map.tag == tag) return map.rows;
    }
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
    std::uint16_t pair[2];
    const bool loading = direction == Direction::loading;
    std::memcpy(pair, loading ? static_cast<void*>(source) : field, sizeof pair);
    if (conversion == kit::kHalvesExchanged) std::swap(pair[0], pair[1]);
    std::memcpy(loading ? static_cast<void*>(field) : source, pair, sizeof pair);
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

// Visits each sub-record of a map once, with all its fields.
bool walkMap(std::span<const PreferenceRow> map, std::byte* record, Direction direction) {
    std::vector<PreferenceRow> rows(map.begin(), map.end());
    for (const PreferenceRow& first : rows) {
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
