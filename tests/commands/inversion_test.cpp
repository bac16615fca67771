// Inversions against known answers, and the properties that mirrors have.
#include "transform/inversion.h"

#include "engine_fixture.h"

// After gtest, which it builds on.
#include <rapidcheck/gtest.h>

#include <set>
#include <string>

namespace {

using rovescio::engine::KeySignature;
using rovescio::engine::SpelledPitch;
using rovescio::test::CallTrace;
using rovescio::test::EngineFixture;
using rovescio::test::pitchFromText;
using rovescio::test::textOf;

std::string diatonic(const std::string& line, const std::string& axis) {
    EngineFixture engine({line});
    EREGION region = engine.everything();
    const auto step = static_cast<short>(pitchFromText(axis).step);
    EXPECT_EQ(engine.run([&](CProgress* p) { return InvDiatonic(&region, step, p); }), 1);
    return textOf(engine.document);
}

std::string chromatic(const std::string& line, const std::string& axis, short simplify = 0) {
    EngineFixture engine({line});
    EREGION region = engine.everything();
    const SpelledPitch pitch = pitchFromText(axis);
    EXPECT_EQ(engine.run([&](CProgress* p) {
        return InvChromatic(&region, static_cast<short>(pitch.step), static_cast<short>(pitch.alter),
                            simplify, p);
    }),
              1);
    return textOf(engine.document);
}

std::string chords(const std::string& line, decltype(InvChordUp)* invert,
                   CHINVTYPE kind = kSingleNotesInSteps, short steps = 0, short alteration = 0) {
    EngineFixture engine({line});
    EREGION region = engine.everything();
    EXPECT_EQ(engine.run([&](CProgress* p) { return invert(&region, kind, steps, alteration, p); }), 1);
    return textOf(engine.document);
}

TEST(InvDiatonic, MirrorsDegreesAndAlterations) {
    const struct {
        const char* before;
        const char* axis;
        const char* after;
    } cases[] = {
        {"C 4/4 e4:q f4:q c#4:q c4:q", "c4", "a3:q g3:q cb4!:q c4!:q"},
        {"G 4/4 g4:h f#4:h", "g4", "g4:h a4:h"},
        {"Eb 4/4 eb4:q ab4:q a4:q bb4:q", "g4", "bb4:q f4:q fb4!:q eb4:q"},
        {"e 4/4 e4:q d#4:q f#4:q r:q", "e4", "e4:q f4!:q d4:q r:q"},
        {"bb 4/4 bb4:q a4:q <bb4 db5 f5>:h", "c4", "db3:q ebb3!:q <gb2 bb2 db3>:h"},
    };
    for (const auto& c : cases) EXPECT_EQ(diatonic(c.before, c.axis), c.after) << c.before;
}

TEST(InvChromatic, MirrorsSemitones) {
    const struct {
        const char* before;
        const char* axis;
        short simplify;
        const char* after;
    } cases[] = {
        {"C 2/4 f4:q e4:q", "e4", 0, "d#4!:q e4:q"},
        {"C 2/4 f4:q e4:q", "e4", 1, "d#4!:q e4:q"},
        {"C 1/4 eb4:q", "d4", 0, "c#4!:q"},
        {"C 1/4 e4:q", "c4", 0, "ab3!:q"},
        {"Bb 4/4 bb4:q c5:q eb5:q a4:q", "bb4", 0, "bb4:q ab4!:q f4:q cb5!:q"},
        {"F 4/4 f4:q bb4:q g4:q e4:q", "f4", 0, "f4:q c4:q eb4!:q gb4!:q"},
        {"C 4/4 c4:q d4:q e4:q b4:q", "c#4", 0, "c##4!:q b#3!:q a#3!:q d#3!:q"},
        {"C 4/4 c4:q d4:q e4:q b4:q", "c#4", 1, "d4:q c4:q a#3!:q d#3!:q"},
        // In minor the axis alteration is taken in the major scale on the minor tonic: there C is a lowered
        // degree, so that a C axis in A minor mirrors around C flat.
        {"a 2/4 c5:q e5:q", "c5", 0, "cbb5!:q abbb4!:q"},
    };
    for (const auto& c : cases) EXPECT_EQ(chromatic(c.before, c.axis, c.simplify), c.after) << c.before;
}

// The axis keeps its pitch and every other note its distance, in all major keys.
TEST(InvChromatic, IsExactInEveryMajorKey) {
    for (int fifths = -7; fifths <= 7; ++fifths) {
        const KeySignature key = KeySignature::standard(fifths, false);
        // Seven flats and six or seven sharps have altered tonics on the letters of other rows.
        for (int axisStep = -8; axisStep <= 8; ++axisStep) {
            EngineFixture engine({"C 4/4 c4:w"});
            engine.document.staffMeasure(1, 1).key = key;
            std::vector<EXENTRY> entries(15);
            for (int i = 0; i < 15; ++i) {
                EXENTRY& entry = entries[static_cast<std::size_t>(i)];
                entry.entryFlags = ENTRY_VALID | ENTRY_NOTE;
                entry.noteCount = 1;
                entry.notes[0].noteId = 1;
                key.store({i - 7, i % 3 - 1}, entry.notes[0]);
            }
            engine.document.setEntries({1, 1, 0}, entries);
            EREGION region = engine.everything();
            const SpelledPitch axis{axisStep, 1};
            engine.run(
                [&](CProgress* p) { return InvChromatic(&region, static_cast<short>(axisStep), 1, 0, p); });
            int i = 0;
            for (const auto& entry : engine.document.entries({1, 1, 0})) {
                const SpelledPitch from{i - 7, i % 3 - 1};
                const SpelledPitch to = key.spell(entry.notes()[0]);
                ASSERT_EQ(to.step, 2 * axis.step - from.step) << fifths;
                ASSERT_EQ(semitones(to) + semitones(from), 2 * semitones(axis))
                    << fifths << " " << textOf(from);
                ++i;
            }
        }
    }
}

TEST(InvChords, MoveTheOuterNotePastTheOther) {
    const struct {
        const char* before;
        const char* up;
        const char* down;
    } cases[] = {
        {"C 4/4 <c4 e4 g4>:w", "<e4 g4 c5>:w", "<g3 c4 e4>:w"},
        {"C 4/4 <c4 c5>:w", "<c5 c6>:w", "<c3 c4>:w"},
        {"C 4/4 <c4 g4 e5>:w", "<g4 e5 c6>:w", "<e3 c4 g4>:w"},
        {"C 4/4 <c4 c4>:w", "<c4 c5>:w", "<c3 c4>:w"},
        {"C 4/4 <c4 eb4! f#4!>:w", "<eb4! f#4! c5>:w", "<f#3! c4 eb4!>:w"},
        {"C 4/4 c4:h r:h", "c4:h r:h", "c4:h r:h"},
        // A sign that stood before the chord does not reach the octave that its note moves to.
        {"C 2/4 c#4!:q <c#4 e4>:q", "c#4!:q <e4 c#5!>:q", "c#4!:q <e3 c#4>:q"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(chords(c.before, InvChordUp), c.up);
        EXPECT_EQ(chords(c.before, InvChordDown), c.down);
    }
}

TEST(InvChords, SingleNotesByKind) {
    EXPECT_EQ(chords("C 4/4 e4:h r:h", InvChordUp, kSingleNotesInSteps, 1, 1), "f#4!:h r:h");
    EXPECT_EQ(chords("C 4/4 e4:h r:h", InvChordDown, kSingleNotesInKey, 1, 0), "f#4!:h r:h");
    EXPECT_EQ(chords("none 4/4 e4:w", InvChordUp, kSingleNotesInKey, 1, 0), "e4:w");
    EXPECT_EQ(chords("C 4/4 e4:w", InvChordUp, static_cast<CHINVTYPE>(3), 1, 0), "e4:w");
}

TEST(Inversions, LeaveOtherKeysAloneAndRefuseNoRegion) {
    EngineFixture engine({"none 4/4 c4:w", "C 4/4 d4:w"});
    EREGION region = engine.everything();
    const CallTrace trace;
    engine.run([&](CProgress* p) { return InvDiatonic(&region, 0, p); });
    engine.run([&](CProgress* p) { return InvChromatic(&region, 0, 0, 0, p); });
    EXPECT_EQ(trace.walk(), "poll poll s2m1l0 s2m1l1 s2m1l2 s2m1l3 poll poll s2m1l0 s2m1l1 s2m1l2 s2m1l3 ");
    EXPECT_EQ(textOf(engine.document, 1), "c4:w");
    EREGION staffWithoutKey = EngineFixture::region(1, 1, 1, 1);
    EREGION backwards = EngineFixture::region(1, 2, 2, 1);
    EXPECT_EQ(engine.run([&](CProgress* p) {
        return static_cast<short>(InvDiatonic(nullptr, 0, p) + InvDiatonic(&staffWithoutKey, 0, p) +
                                  InvDiatonic(&backwards, 0, p) +
                                  InvChordUp(nullptr, kSingleNotesInSteps, 0, 0, p) +
                                  InvChordDown(&backwards, kSingleNotesInSteps, 0, 0, p));
    }),
              0);
}

// A note anywhere in one of the 30 keys.
struct AnyNote {
    KeySignature key = KeySignature::standard(*rc::gen::inRange(-7, 8), *rc::gen::arbitrary<bool>());
    SpelledPitch pitch{*rc::gen::inRange(-20, 21), *rc::gen::inRange(-2, 3)};
};

template <class Transformation>
std::vector<SpelledPitch> afterEach(const AnyNote& note, int times, Transformation&& transformation) {
    EngineFixture engine({"C 4/4 c4:w"});
    engine.document.staffMeasure(1, 1).key = note.key;
    EXENTRY entry{};
    entry.entryFlags = ENTRY_VALID | ENTRY_NOTE;
    entry.noteCount = 1;
    entry.notes[0].noteId = 1;
    note.key.store(note.pitch, entry.notes[0]);
    engine.document.setEntries({1, 1, 0}, std::span(&entry, 1));
    EREGION region = engine.everything();
    std::vector<SpelledPitch> pitches;
    for (int i = 0; i < times; ++i) {
        engine.run([&](CProgress* p) { return transformation(&region, p); });
        pitches.push_back(note.key.spell(engine.document.entries({1, 1, 0})[0].notes()[0]));
    }
    return pitches;
}

RC_GTEST_PROP(Inversions, TwiceGivesTheSameNotes, ()) {
    const AnyNote note;
    const auto axis = *rc::gen::inRange<short>(-20, 21);
    const auto alteration = *rc::gen::inRange<short>(-1, 2);
    const auto chromaticTwice = afterEach(
        note, 2, [&](EREGION* region, CProgress* p) { return InvChromatic(region, axis, alteration, 0, p); });
    RC_ASSERT(chromaticTwice[1] == note.pitch);
    const auto diatonicTwice =
        afterEach(note, 2, [&](EREGION* region, CProgress* p) { return InvDiatonic(region, axis, p); });
    RC_ASSERT(diatonicTwice[1] == note.pitch);
    RC_ASSERT(diatonicTwice[0].step == 2 * axis - note.pitch.step);
}

// Of chords within an octave; wider ones need not come back.
RC_GTEST_PROP(InvChords, UpAndDownAsOftenGivesTheSameChord, ()) {
    const auto degrees = *rc::gen::suchThat(rc::gen::container<std::set<int>>(rc::gen::inRange(0, 7)),
                                            [](const std::set<int>& chosen) { return chosen.size() > 1; });
    const int times = *rc::gen::inRange(1, 6);
    std::string chord;
    for (const int degree : degrees)
        chord += (chord.empty() ? "<" : " ") + std::string(1, "cdefgab"[degree]) + "4";
    EngineFixture engine({*rc::gen::element<std::string>("C", "d", "Gb", "f#") + " 4/4 " + chord + ">:w"});
    const auto pitches = [&] {
        std::string text = textOf(engine.document);
        std::erase(text, '!');
        return text;
    };
    const std::string before = pitches();
    EREGION region = engine.everything();
    for (int i = 0; i < 2 * times; ++i) {
        const auto invert = i < times ? InvChordUp : InvChordDown;
        engine.run([&](CProgress* p) { return invert(&region, kSingleNotesInSteps, 0, 0, p); });
    }
    RC_ASSERT(pitches() == before);
}

}  // namespace
