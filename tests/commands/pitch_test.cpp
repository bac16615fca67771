// The pitch model against interval sizes from music theory, in every key.
#include "transform/pitch.h"

#include <gtest/gtest.h>

#include "support/score_text.h"

namespace {

using rovescio::engine::KeySignature;
using rovescio::engine::SpelledPitch;
using rovescio::test::textOf;

// Semitones of the unison to the seventh, major or perfect.
constexpr int kSizes[7] = {0, 2, 4, 5, 7, 9, 11};

TEST(Interval, HasTheSameSizeFromEveryNoteOfEveryKey) {
    for (int fifths = -7; fifths <= 7; ++fifths) {
        for (const bool minor : {false, true}) {
            const KeySignature key = KeySignature::standard(fifths, minor);
            for (short steps = -15; steps <= 15; ++steps) {
                const int size = kSizes[std::abs(steps) % 7] + 12 * (std::abs(steps) / 7);
                for (int step = -20; step <= 20; ++step) {
                    ENOTE note{};
                    const SpelledPitch from{step, (step & 3) - 1};
                    key.store(from, note);
                    pitch::Interval(steps, -1).move(note, minor ? pitch::kMinor : pitch::kMajor);
                    const SpelledPitch to = key.spell(note);
                    ASSERT_EQ(to.step, step + steps);
                    ASSERT_EQ(semitones(to) - semitones(from), (steps < 0 ? -size : size) - 1)
                        << fifths << (minor ? " minor " : " major ") << textOf(from) << " by " << steps;
                }
            }
        }
    }
}

TEST(ModeOfKey, ReadsTheKeySignatureWord) {
    const std::pair<int, int> cases[] = {{0, 0},         {0xFF, 0},        {0x1FD, 1},      {0x200, 2},
                                         {0x3FFF, 0x3F}, {0x4000, 0xFFFF}, {0xFFFF, 0xFFFF}};
    for (const auto& [word, mode] : cases)
        EXPECT_EQ(pitch::modeOfKey(static_cast<short>(word)), mode) << word;
}

}  // namespace
