// Preference records: those that the host keeps in pieces, under the tags and layouts of older documents.
//
// SX_LoadEData and SX_SaveEData take the tags "pf.." and put a record together from sub-records of 12 bytes
// with tags "ot..", or take it apart. Either the fields of the record are scattered over the sub-records, as
// a map tells, or the record is a plain run of them.
#pragma once

#include <cstdint>
#include <optional>

namespace kit {

// Bytes of every sub-record.
inline constexpr std::uint32_t kSubRecordSize = 12;

// What happens to a field on its way from the sub-record; on the way back, the reverse.
enum PreferenceConversion : std::int32_t {
    kAsItIs = 0,           // one word
    kInOrder = 1,          // two words
    kHalvesExchanged = 2,  // two words, the second first
    kNegated = 3,          // one word, whether it is zero
    kLowByte = 4,          // the lower half of one word
};

// Where one field of a scattered record lies.
struct PreferenceRow {
    std::uint16_t loaded;       // 0: set in the copy that a walk makes, when it has done this row
    char subTag[2];             // 2: after "ot"
    std::uint16_t number;       // 4: of the sub-record, 0 for kGlobalNumber
    std::uint16_t incident;     // 6: of the sub-record
    std::uint16_t destination;  // 8: byte in the preference record
    std::uint16_t source;       // 10: word in the sub-record
    std::uint16_t width;        // 12: bytes in the preference record, 2 or 4
    std::uint16_t reserved14;   // 14: zero
    std::int32_t conversion;    // 16: a PreferenceConversion
};
static_assert(sizeof(PreferenceRow) == 20);

// A preference record that is a run of sub-records: their tag, how many, and the incident of the first.
struct PreferenceRun {
    std::uint32_t tag = 0;    // 0: the host keeps the record in one piece
    std::uint16_t count = 0;  // 0: there is no record with that incident
    std::uint16_t first = 0;
};

PreferenceRun mapPrefTag(std::uint32_t tag, std::uint16_t incident);

// Bytes of a preference record that the host keeps in pieces; 0 where it has no such incident, nothing where
// the host keeps it in one piece.
std::optional<std::uint32_t> preferenceSize(std::uint32_t tag, std::uint16_t incident);

// Fill or store such a record, which must be as large as preferenceSize says. False when a sub-record is
// missing, in which case loading leaves the record alone, or is not accepted.
bool loadPreferences(std::uint32_t tag, std::uint16_t incident, void* record);
bool savePreferences(std::uint32_t tag, std::uint16_t incident, const void* record);

}  // namespace kit
