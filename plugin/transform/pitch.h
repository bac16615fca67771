// The pitch model: notes as scale degrees of the key in force, and movement by real intervals.
//
// A note's displacement counts diatonic steps from the tonic, 7 to the octave; its alteration counts
// semitones from what the key signature gives that degree. Interval sizes are measured in the major scale of
// the key; in a minor key that is the scale of the relative major, whose tonic lies two steps above the minor
// one.
#pragma once

#include <cstdint>

#include "contract/records.h"

// Floor division for pitch arithmetic: stores quotient and remainder as 16-bit numbers and returns the
// quotient. With a negative divisor a negative remainder still has the divisor added. The divisor is not 0.
short UtilModDiv(int value, int divisor, short* remainder, short* quotient);

// Moves the one note of an entry by `steps` diatonic steps, up or down, so that the interval is the major or
// perfect one of that size, and by `alteration` semitones more. Key modes other than 0 (major) and 1 (minor)
// leave the pitch alone. Marks note and entry as changed in every case.
void TransposeSingleNoteEntry(EXENTRY* entry, short keyMode, short steps, short alteration);

namespace pitch {

inline constexpr std::uint16_t kMajor = 0;
inline constexpr std::uint16_t kMinor = 1;
inline constexpr std::uint16_t kNoMode = 0xFFFF;  // a key off the standard scales

// The mode in a key signature word of the host.
constexpr std::uint16_t modeOfKey(short keySignature) {
    const auto word = static_cast<std::uint16_t>(keySignature);
    return word < kNonStandardKey ? static_cast<std::uint16_t>(word >> 8) : kNoMode;
}

// Steps from the minor tonic up to the tonic of its relative major.
inline constexpr int kRelativeMajor = 2;

// The degree's place inside its octave, 0 to 6.
int degreeInOctave(int degree);

// Semitones from the major tonic up to a scale degree; 7 degrees and 12 semitones to the octave, negative
// below.
int height(int degree);

// Semitones of the major or perfect interval of so many steps; negative downward.
int majorOrPerfect(int steps);

// A movement by a real interval, worked out once for many notes.
class Interval {
  public:
    Interval(short steps, short alteration) : steps_(steps), semitones_(majorOrPerfect(steps) + alteration) {}

    // Moves a note in a key of this mode; modes other than major and minor leave it alone.
    void move(ENOTE& note, std::uint16_t keyMode) const;

  private:
    int steps_;
    int semitones_;
};

}  // namespace pitch
