// The host's own bytes inside an entry record: tuplet ratio, grace state and marks that travel with the
// entry.
#pragma once

#include <cstdint>
#include <cstring>

#include "contract/records.h"

namespace rovescio::engine {

// Duration units of a quarter note; every plain note value is a power of two.
inline constexpr std::int32_t kQuarter = 1024;

enum class Grace : std::uint8_t { none, grace };

// Why an entry without notes is silent.
enum class Silence : std::uint8_t {
    rest,    // a rest that is written
    gap,     // the voice is absent for a while; nothing is written
    filler,  // an empty measure was filled to keep its time
};

// View of EXENTRY::hostPrivate. A tuplet of `actual` notes in the time of `normal` (all nesting levels
// multiplied) scales the entry's duration by normal / actual; a grace entry takes no time.
struct EntryState {
    std::uint16_t actual = 1;
    std::uint16_t normal = 1;
    Grace grace = Grace::none;
    std::uint8_t unpitched =
        0;  // 1: notes have a place on the staff but no pitch, so their pitch never changes
    Silence silence = Silence::rest;
    bool cut = false;     // the tie that arrives joins what a barline had cut
    bool marked = false;  // carries more than its notes: lyrics, articulations, ornaments

    friend bool operator==(const EntryState&, const EntryState&) = default;
};

// EXENTRY::reserved13 in the document: the entry was changed, so what accidentals its notes show is to be
// decided.
inline constexpr std::uint8_t kDecideAccidentals = 0x01;
// Likewise: a pitch or an accidental of the entry is another one, though nobody marked it as changed, so that
// what the notes around it show is to be looked at.
inline constexpr std::uint8_t kCheckAccidentals = 0x02;

namespace entry_state {

// The last byte: these bits, and the silence between them.
inline constexpr std::uint8_t kUnpitched = 0x01;
inline constexpr std::uint8_t kMarked = 0x08;
inline constexpr std::uint8_t kCut = 0x10;
inline constexpr unsigned kSilenceShift = 1;
inline constexpr unsigned kSilenceMask = 3;

}  // namespace entry_state

// Ratios are stored less one, so that the zero bytes of a fresh record read as 1:1.
inline EntryState entryStateIn(const std::uint8_t (&hostPrivate)[6]) {
    EntryState state;
    std::uint16_t actual = 0;
    std::uint16_t normal = 0;
    std::memcpy(&actual, hostPrivate, 2);
    std::memcpy(&normal, hostPrivate + 2, 2);
    // No ratio has 65536 notes; a plug-in that wrote over the bytes must not make it 0.
    state.actual = static_cast<std::uint16_t>(actual == 0xFFFF ? 1 : actual + 1);
    state.normal = static_cast<std::uint16_t>(normal + 1);
    state.grace = static_cast<Grace>(hostPrivate[4]);
    state.unpitched = hostPrivate[5] & entry_state::kUnpitched;
    state.silence =
        static_cast<Silence>(hostPrivate[5] >> entry_state::kSilenceShift & entry_state::kSilenceMask);
    state.cut = (hostPrivate[5] & entry_state::kCut) != 0;
    state.marked = (hostPrivate[5] & entry_state::kMarked) != 0;
    return state;
}

inline void setEntryStateIn(std::uint8_t (&hostPrivate)[6], const EntryState& state) {
    const auto actual = static_cast<std::uint16_t>(state.actual - 1);
    const auto normal = static_cast<std::uint16_t>(state.normal - 1);
    std::memcpy(hostPrivate, &actual, 2);
    std::memcpy(hostPrivate + 2, &normal, 2);
    hostPrivate[4] = static_cast<std::uint8_t>(state.grace);
    hostPrivate[5] = static_cast<std::uint8_t>(
        state.unpitched | static_cast<unsigned>(state.silence) << entry_state::kSilenceShift |
        (state.marked ? entry_state::kMarked : 0U) | (state.cut ? entry_state::kCut : 0U));
}

// Of an EXENTRY or a StoredEntry.
template <class Entry>
EntryState entryState(const Entry& entry) {
    return entryStateIn(entry.hostPrivate);
}
template <class Entry>
void setEntryState(Entry& entry, const EntryState& state) {
    setEntryStateIn(entry.hostPrivate, state);
}

}  // namespace rovescio::engine
