// The pitch model against interval sizes from music theory, in every key.
#include "transform/pitch.h"

#include <gtest/gtest.h>

#include "support/score_text.h"

namespace rovescio::test {
namespace {

using engine::KeySignature;
using engine::SpelledPitch;

TEST(TransposeSingleNoteEntry, OtherModesKeepThePitchButAreMarked) {
    for (const int mode : {2, 7, 0xFFFF}) {
        EXENTRY entry{};
        entry.notes[0].displacement = 3;
        TransposeSingleNoteEntry(&entry, static_cast<short>(mode), 4, 1);
        EXPECT_EQ(+entry.notes[0].displacement, 3);
        EXPECT_EQ(+entry.notes[0].alteration, 0);
        EXPECT_EQ(+entry.notes[0].noteFlags, NOTE_FLAG24);
        EXPECT_EQ(+entry.updateFlags, ENTRY_CHANGED);
    }
}

// Semitones of the unison to the seventh, major or perfect.
constexpr int kSizes[7] = {0, 2, 4, 5, 7, 9, 11};

TEST(TransposeSingleNoteEntry, HasTheSameSizeFromEveryNoteOfEveryKey) {
    for (int fifths = -7; fifths <= 7; ++fifths) {
        for (const bool minor : {false, true}) {
            const KeySignature key = KeySignature::standard(fifths, minor);
            for (short steps = -15; steps <= 15; ++steps) {
                const int size = kSizes[std::abs(steps) % 7] + 12 * (std::abs(steps) / 7);
                const auto alteration = static_cast<short>((steps & 3) - 1);
                for (int step = -20; step <= 20; ++step) {
                    EXENTRY entry{};
                    entry.noteCount = 1;
                    const SpelledPitch from{step, (step & 3) - 1};
                    key.store(from, entry.notes[0]);
                    TransposeSingleNoteEntry(&entry, minor, steps, alteration);
                    const SpelledPitch to = key.spell(entry.notes[0]);
                    ASSERT_EQ(to.step, step + steps);
                    ASSERT_EQ(semitones(to) - semitones(from), (steps < 0 ? -size : size) + alteration)
                        << fifths << (minor ? " minor " : " major ") << textOf(from) << " by " << steps;
                    ASSERT_EQ(+entry.updateFlags, ENTRY_CHANGED);
                    ASSERT_EQ(+entry.notes[0].noteFlags, NOTE_FLAG24);
                }
            }
        }
    }
}

// A negative divisor is added all the same.
TEST(UtilModDiv, FloorsForPositiveDivisors) {
    const struct {
        int value, divisor, quotient, remainder;
    } cases[] = {{0, 7, 0, 0},   {6, 7, 0, 6},   {7, 7, 1, 0},    {-1, 7, -1, 6},
                 {-7, 7, -1, 0}, {-8, 7, -2, 6}, {-8, -7, 0, -8}, {8, -7, -1, 1}};
    for (const auto& c : cases) {
        short remainder = 99;
        short quotient = 99;
        EXPECT_EQ(UtilModDiv(c.value, c.divisor, &remainder, &quotient), c.quotient)
            << c.value << " by " << c.divisor;
        EXPECT_EQ(quotient, c.quotient);
        EXPECT_EQ(remainder, c.remainder) << c.value << " by " << c.divisor;
    }
}

}  // namespace
}  // namespace rovescio::test
