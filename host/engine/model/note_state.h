// The host's own bits inside a note record, which travel with the note: the part of a semitone that its
// alteration cannot express, and what is known of its accidental.
#pragma once

#include <cstdint>
#include <tuple>

#include "contract/records.h"
#include "engine/model/key_signature.h"

namespace rovescio::engine {

// The accidental was shown where the rules of the measure do not ask for it, as a reminder.
inline constexpr std::uint32_t kCourtesySign = 0x00000100;

namespace note_state {

inline constexpr std::uint32_t kCentsMask = 0x0000FE00;
inline constexpr unsigned kCentsShift = 9;

}  // namespace note_state

// Hundredths of a semitone, 0 to 99, by which a note is higher than its alteration says: 50 in a half-sharp
// and in a half-flat, whose alteration is -1.
constexpr int centsOf(const ENOTE& note) {
    return static_cast<int>((note.noteFlags & note_state::kCentsMask) >> note_state::kCentsShift);
}
constexpr std::uint32_t flagsOfCents(int cents) {
    return static_cast<std::uint32_t>(cents) << note_state::kCentsShift;
}
constexpr void setCents(ENOTE& note, int cents) {
    note.noteFlags = (note.noteFlags & ~note_state::kCentsMask) | flagsOfCents(cents);
}

// How high a note sounds, in hundredths of a semitone from middle C.
inline int soundOf(const KeySignature& key, const ENOTE& note) {
    return 100 * semitones(key.spell(note)) + centsOf(note);
}

// The order of a chord's notes.
inline bool isLower(const ENOTE& left, const ENOTE& right) {
    return std::tuple(+left.displacement, +left.alteration, centsOf(left)) <
           std::tuple(+right.displacement, +right.alteration, centsOf(right));
}

}  // namespace rovescio::engine
