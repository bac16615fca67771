// The host's own bytes inside an entry record: tuplet ratio, grace state and marks that travel with the
// entry.
#pragma once

#include <cstdint>

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
// Likewise: a pitch of the entry is another one, though nobody marked it as changed, so that what the notes
// around it show is to be looked at.
inline constexpr std::uint8_t kPitchMoved = 0x02;

// Of an EXENTRY or a StoredEntry.
EntryState entryStateIn(const std::uint8_t (&hostPrivate)[6]);
template <class Entry>
EntryState entryState(const Entry& entry) {
    return entryStateIn(entry.hostPrivate);
}
void setEntryStateIn(std::uint8_t (&hostPrivate)[6], const EntryState& state);
template <class Entry>
void setEntryState(Entry& entry, const EntryState& state) {
    setEntryStateIn(entry.hostPrivate, state);
}

}  // namespace rovescio::engine
