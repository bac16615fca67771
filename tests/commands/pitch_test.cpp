// The pitch model against interval sizes from music theory, in every key.
#include "transform/pitch.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "support/score_text.h"

namespace {

using rovescio::engine::KeySignature;
using rovescio::engine::SpelledPitch;
using rovescio::test::pitchFromText;
using rovescio::test::textOf;

std::string moved(const std::string& pitch, const KeySignature& key, short steps, short alteration) {
    EXENTRY entry{};
    entry.noteCount = 1;
    key.store(pitchFromText(pitch), entry.notes[0]);
    TransposeSingleNoteEntry(&entry, static_cast<short>(key.word() >> 8), steps, alteration);
    EXPECT_EQ(+entry.notes[0].noteFlags, NOTE_FLAG24);
    EXPECT_EQ(+entry.updateFlags, ENTRY_CHANGED);
    return textOf(key.spell(entry.notes[0]));
}

TEST(TransposeSingleNoteEntry, KnownIntervals) {
    const KeySignature cMajor = KeySignature::standard(0, false);
    const KeySignature aMinor = KeySignature::standard(0, true);
    const KeySignature eFlatMajor = KeySignature::standard(-3, false);
    const KeySignature fSharpMinor = KeySignature::standard(3, true);
    const struct {
        const KeySignature& key;
        const char* from;
        short steps;
        short alteration;
        const char* to;
    } cases[] = {
        {cMajor, "f4", 3, 0, "bb4"},        {cMajor, "c4", -1, 0, "bb3"},
        {cMajor, "c4", -2, 0, "ab3"},       {cMajor, "b4", 4, 0, "f#5"},
        {cMajor, "c#4", 1, 0, "d#4"},       {cMajor, "b3", 1, 0, "c#4"},
        {cMajor, "e4", 2, -1, "g4"},        {cMajor, "c4", 2, -1, "eb4"},
        {cMajor, "e5", -2, 1, "c#5"},       {cMajor, "c4", 7, 0, "c5"},
        {cMajor, "c4", -7, 0, "c3"},        {cMajor, "c4", 0, 0, "c4"},
        {cMajor, "b#3", 0, 1, "b##3"},      {cMajor, "fb4", -9, 1, "db3"},
        {aMinor, "a4", 2, 0, "c#5"},        {aMinor, "g#4", 1, -1, "a4"},
        {eFlatMajor, "eb4", 3, 1, "a4"},    {eFlatMajor, "ab3", 3, 0, "db4"},
        {fSharpMinor, "e#4", 1, 0, "f##4"}, {fSharpMinor, "f#4", -4, 0, "b3"},
        {fSharpMinor, "d4", 6, -2, "cb5"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(moved(c.from, c.key, c.steps, c.alteration), c.to)
            << c.from << " by " << c.steps << " steps and " << c.alteration;
    }
}

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

RC_GTEST_PROP(Interval, UpThenDownRestoresTheNote, ()) {
    const auto steps = *rc::gen::inRange<short>(-40, 41);
    const auto alteration = *rc::gen::inRange<short>(-4, 5);
    ENOTE note{};
    note.displacement = *rc::gen::inRange<short>(-60, 61);
    note.alteration = *rc::gen::inRange<short>(-3, 4);
    const short displacement = note.displacement;
    const short before = note.alteration;
    const auto mode = *rc::gen::element(pitch::kMajor, pitch::kMinor);
    pitch::Interval(steps, alteration).move(note, mode);
    RC_ASSERT(note.displacement == displacement + steps);
    pitch::Interval(static_cast<short>(-steps), static_cast<short>(-alteration)).move(note, mode);
    RC_ASSERT(short{note.displacement} == displacement);
    RC_ASSERT(short{note.alteration} == before);
}

TEST(ModeOfKey, ReadsTheKeySignatureWord) {
    const std::pair<int, int> cases[] = {{0, 0},         {0xFF, 0},        {0x1FD, 1},      {0x200, 2},
                                         {0x3FFF, 0x3F}, {0x4000, 0xFFFF}, {0xFFFF, 0xFFFF}};
    for (const auto& [word, mode] : cases)
        EXPECT_EQ(pitch::modeOfKey(static_cast<short>(word)), mode) << word;
}

TEST(UtilModDiv, FloorsForPositiveDivisors) {
    const struct {
        int value, divisor, quotient, remainder;
    } cases[] = {{0, 7, 0, 0},
                 {6, 7, 0, 6},
                 {7, 7, 1, 0},
                 {-1, 7, -1, 6},
                 {-7, 7, -1, 0},
                 {-8, 7, -2, 6},
                 // A negative divisor is added all the same.
                 {-8, -7, 0, -8},
                 {8, -7, -1, 1}};
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
