// Scale degrees, interval sizes and the movement of single notes.
#include "transform/pitch.h"

#include <array>

namespace pitch {

namespace {

struct OctaveAndDegree {
    int octave;
    int degree;  // 0 to 6
};

constexpr OctaveAndDegree splitDegree(int degree) {
    const int octave = degree / 7 - (degree % 7 < 0 ? 1 : 0);
    return {octave, degree - 7 * octave};
}

}  // namespace

int degreeInOctave(int degree) {
    return splitDegree(degree).degree;
}

int height(int degree) {
    static constexpr std::array<int, 7> kMajorScale = {0, 2, 4, 5, 7, 9, 11};
    const auto [octave, inOctave] = splitDegree(degree);
    return 12 * octave + kMajorScale[static_cast<std::size_t>(inOctave)];
}

// Counted from the tonic, the major scale has all major and perfect intervals above it.
int majorOrPerfect(int steps) {
    return steps >= 0 ? height(steps) : -height(-steps);
}

void Interval::move(ENOTE& note, std::uint16_t keyMode) const {
    if (keyMode > kMinor) return;
    const int degree = note.displacement - (keyMode == kMinor ? kRelativeMajor : 0);
    const int inScale = height(degree + steps_) - height(degree);
    note.displacement = static_cast<std::int16_t>(note.displacement + steps_);
    note.alteration = static_cast<std::int16_t>(note.alteration + semitones_ - inScale);
}

}  // namespace pitch

short UtilModDiv(int value, int divisor, short* remainder, short* quotient) {
    int q = value / divisor;
    auto m = static_cast<short>(value % divisor);
    if (m < 0) {
        --q;
        m = static_cast<short>(m + divisor);
    }
    *remainder = m;
    *quotient = static_cast<short>(q);
    return *quotient;
}

void TransposeSingleNoteEntry(EXENTRY* entry, short keyMode, short steps, short alteration) {
    ENOTE& note = entry->notes[0];
    pitch::Interval(steps, alteration).move(note, static_cast<std::uint16_t>(keyMode));
    note.noteFlags |= NOTE_FLAG24;
    entry->updateFlags |= ENTRY_CHANGED;
}
