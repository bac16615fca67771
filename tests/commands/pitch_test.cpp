// The pitch model against interval sizes from music theory, in every key.
#include "transform/pitch.h"

#include <gtest/gtest.h>

#include "support/score_text.h"

namespace rovescio::test {
namespace {

using engine::KeySignature;
using engine::SpelledPitch;

// Semitones of the unison to the seventh, major or perfect.
constexpr int kSizes[7] = {0, 2, 4, 5, 7, 9, 11};

TEST(TransposeSingleNoteEntry, HasTheSameSizeFromEveryNoteOfEveryKeyAndNoneInOtherModes) {
    for (int fifths = -7; fifths <= 7; ++fifths) {
        for (const int mode : {0, 1, 2, 0xFFFF}) {
            const KeySignature key = KeySignature::standard(fifths, mode == 1);
            for (short steps = -15; steps <= 15; ++steps) {
                const int size = kSizes[std::abs(steps) % 7] + 12 * (std::abs(steps) / 7);
                const auto alteration = static_cast<short>((steps & 3) - 1);
                for (int step = -20; step <= 20; ++step) {
                    EXENTRY entry{};
                    entry.noteCount = 1;
                    const SpelledPitch from{step, (step & 3) - 1};
                    key.store(from, entry.notes[0]);
                    TransposeSingleNoteEntry(&entry, static_cast<short>(mode), steps, alteration);
                    const SpelledPitch to = key.spell(entry.notes[0]);
                    ASSERT_EQ(to.step, mode > 1 ? step : step + steps);
                    ASSERT_EQ(semitones(to) - semitones(from),
                              mode > 1 ? 0 : (steps < 0 ? -size : size) + alteration)
                        << fifths << " mode " << mode << " " << textOf(from) << " by " << steps;
                    ASSERT_EQ(+entry.updateFlags, ENTRY_CHANGED);
                    ASSERT_EQ(+entry.notes[0].noteFlags, NOTE_FLAG24);
                }
            }
        }
    }
}

// A negative divisor is added all the same.
TEST(UtilModDiv, FloorsForPositiveDivisors) {
    const int cases[][4] = {{0, 7, 0, 0},   {6, 7, 0, 6},   {7, 7, 1, 0},    {-1, 7, -1, 6},
                            {-7, 7, -1, 0}, {-8, 7, -2, 6}, {-8, -7, 0, -8}, {8, -7, -1, 1}};
    for (const auto& [value, divisor, quotient, remainder] : cases) {
        short m = 99;
        short q = 99;
        EXPECT_EQ(UtilModDiv(value, divisor, &m, &q), quotient) << value << " by " << divisor;
        EXPECT_EQ(std::pair(q, m), std::pair(static_cast<short>(quotient), static_cast<short>(remainder)));
    }
}

}  // namespace
}  // namespace rovescio::test
