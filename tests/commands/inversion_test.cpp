// Inversions against known answers, and the properties that mirrors have.
#include "transform/inversion.h"

#include "engine_fixture.h"

// After gtest, which it builds on.
#include <rapidcheck/gtest.h>

#include <bit>
#include <string>
#include <vector>

namespace rovescio::test {
namespace {

using engine::KeySignature;
using engine::SpelledPitch;

TEST(InvDiatonic, MirrorsDegreesAndAlterations) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"C 4/4 e4:q f4:q c#4:q c4:q", "c4", "a3:q g3:q cb4!:q c4!:q"},
        {"Eb 4/4 eb4:q ab4:q a4:q bb4:q", "g4", "bb4:q f4:q fb4!:q eb4:q"},
        {"G 3/4 f#4:q g4:q a4:q", "f4", "f#4:q e4:q d4:q"},
        {"e 4/4 e4:q d#4:q f#4:q r:q", "e4", "e4:q f4!:q d4:q r:q"},
        {"bb 4/4 bb4:q a4:q <bb4 db5 f5>:h", "c4", "db3:q ebb3!:q <gb2 bb2 db3>:h"},
    };
    for (const auto& [before, axis, after] : cases) {
        EXPECT_EQ(textAfter(before, InvDiatonic, pitchFromText(axis).step), after) << before;
    }
}

TEST(InvChromatic, MirrorsSemitones) {
    const std::tuple<const char*, const char*, short, const char*> cases[] = {
        {"C 2/4 f4:q e4:q", "e4", 1, "d#4!:q e4:q"},
        {"Bb 4/4 bb4:q c5:q eb5:q a4:q", "bb4", 0, "bb4:q ab4!:q f4:q cb5!:q"},
        {"C 4/4 c4:q d4:q e4:q b4:q", "c#4", 1, "d4:q c4:q a#3!:q d#3!:q"},
        {"C 4/4 e#4:q fb4:q ebb4:q f##4:q", "d4", 1, "b3:q c4:q d4:q a3:q"},
        {"C 1/4 f###4:q", "d4", 1, "ab3!:q"},
        {"a 3/4 c4:q e4:q a4:q", "e4", 0, "g#4!:q e4:q b3:q"},
        {"c 3/4 c4:q d4:q eb4:q", "c4", 0, "c##4!:q b#3!:q a##3!:q"},
        // In minor the axis alteration is taken in the major scale on the minor tonic: there C is a lowered
        // degree, so that a C axis in A minor mirrors around C flat.
        {"a 2/4 c5:q e5:q", "c5", 0, "cbb5!:q abbb4!:q"},
    };
    for (const auto& [before, axis, simplify, after] : cases) {
        const SpelledPitch pitch = pitchFromText(axis);
        EXPECT_EQ(textAfter(before, InvChromatic, pitch.step, pitch.alter, simplify), after) << before;
    }
}

TEST(InvChords, MoveTheOuterNotePastTheOther) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"C 4/4 <c4 e4 g4>:w", "<e4 g4 c5>:w", "<g3 c4 e4>:w"},
        {"C 4/4 <c4 g4 e5>:w", "<g4 e5 c6>:w", "<e3 c4 g4>:w"},
        {"C 4/4 <c4 c4>:w", "<c4 c5>:w", "<c3 c4>:w"},
        {"C 4/4 <c4 eb4! f#4!>:w", "<eb4! f#4! c5>:w", "<f#3! c4 eb4!>:w"},
        {"C 4/4 c4:h r:h", "c4:h r:h", "c4:h r:h"},
        // A sign that stood before the chord does not reach the octave that its note moves to.
        {"C 2/4 c#4!:q <c#4 e4>:q", "c#4!:q <e4 c#5!>:q", "c#4!:q <e3 c#4>:q"},
    };
    for (const auto& [before, up, down] : cases) {
        EXPECT_EQ(textAfter(before, InvChordUp, kSingleNotesInSteps, 0, 0), up);
        EXPECT_EQ(textAfter(before, InvChordDown, kSingleNotesInSteps, 0, 0), down);
    }
    // Single notes by kind.
    EXPECT_EQ(textAfter("C 4/4 e4:h r:h", InvChordUp, kSingleNotesInSteps, 1, 1), "f#4!:h r:h");
    EXPECT_EQ(textAfter("C 4/4 e4:h r:h", InvChordDown, kSingleNotesInKey, 1, 0), "f#4!:h r:h");
    EXPECT_EQ(textAfter("none 4/4 e4:w", InvChordUp, kSingleNotesInKey, 1, 0), "e4:w");
    EXPECT_EQ(textAfter("C 4/4 e4:w", InvChordUp, static_cast<CHINVTYPE>(3), 1, 0), "e4:w");
}

TEST(Inversions, LeaveOtherKeysAloneAndRefuseNoRegion) {
    EngineFixture engine({"none 4/4 c4:w", "C 4/4 d4:w"});
    const CallTrace trace;
    engine.transform(engine.everything(), InvDiatonic, 0);
    engine.transform(engine.everything(), InvChromatic, 0, 0, 0);
    EXPECT_EQ(trace.walk(), "poll poll s2m1l0 s2m1l1 s2m1l2 s2m1l3 poll poll s2m1l0 s2m1l1 s2m1l2 s2m1l3 ");
    EXPECT_EQ(textOf(engine.document, 1), "c4:w");
    EREGION withoutKey = region(1, 1, 1, 1);
    EREGION backwards = region(1, 2, 2, 1);
    const auto none = [&](CProgress* p) {
        return InvDiatonic(nullptr, 0, p) + InvDiatonic(&withoutKey, 0, p) + InvDiatonic(&backwards, 0, p) +
               InvChordUp(nullptr, kSingleNotesInSteps, 0, 0, p) +
               InvChordDown(&backwards, kSingleNotesInSteps, 0, 0, p);
    };
    EXPECT_EQ(engine.run(none), 0);
}

// What becomes of a note by a command and what of that by the same once more.
template <class... Arguments>
std::pair<SpelledPitch, SpelledPitch> onceAndTwice(const KeySignature& key, const SpelledPitch& pitch,
                                                   Arguments... arguments) {
    EngineFixture engine({"C 4/4 c4:w"});
    engine.document.staffMeasure(1, 1).key = key;
    editEntries(engine.document, {1, 1, 0}, [&](auto& entries) { key.store(pitch, entries[0].notes[0]); });
    const auto next = [&] {
        engine.transform(engine.everything(), arguments...);
        return key.spell(engine.document.entries({1, 1, 0})[0].notes()[0]);
    };
    const SpelledPitch once = next();
    return {once, next()};
}

// The axis keeps its pitch and every other note its distance, in all major keys.
TEST(InvChromatic, IsExactInEveryMajorKey) {
    for (int fifths = -7; fifths <= 7; ++fifths) {
        const KeySignature key = KeySignature::standard(fifths, false);
        // Seven flats and six or seven sharps have altered tonics on the letters of other rows.
        for (short axisStep = -8; axisStep <= 8; ++axisStep) {
            const SpelledPitch axis{axisStep, 1};
            for (int step = -7; step <= 7; ++step) {
                const SpelledPitch from{step, (step + 7) % 3 - 1};
                const auto [to, again] = onceAndTwice(key, from, InvChromatic, axisStep, short{1}, 0);
                ASSERT_EQ(to.step, 2 * axis.step - from.step) << fifths;
                ASSERT_EQ(semitones(to) + semitones(from), 2 * semitones(axis)) << fifths << textOf(from);
                ASSERT_EQ(again, from) << fifths;
            }
        }
    }
}

RC_GTEST_PROP(Inversions, TwiceGivesTheSameNotes, ()) {
    const auto key = KeySignature::standard(*rc::gen::inRange(-7, 8), *rc::gen::arbitrary<bool>());
    const SpelledPitch pitch{*rc::gen::inRange(-20, 21), *rc::gen::inRange(-2, 3)};
    const auto axis = *rc::gen::inRange<short>(-20, 21);
    const auto alteration = *rc::gen::inRange<short>(-1, 2);
    RC_ASSERT(onceAndTwice(key, pitch, InvChromatic, axis, alteration, 0).second == pitch);
    const auto diatonic = onceAndTwice(key, pitch, InvDiatonic, axis);
    RC_ASSERT(diatonic.second == pitch);
    RC_ASSERT(diatonic.first.step == 2 * axis - pitch.step);
}

}  // namespace
}  // namespace rovescio::test
