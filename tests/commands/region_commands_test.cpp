// Transposition and note-flag options over regions: notes, walks, cancels, and what the plug-in cannot see.
#include "engine_fixture.h"
#include "shell/note_options.h"
#include "transform/inversion.h"
#include "transform/transpose_region.h"

namespace rovescio::test {
namespace {

TEST(TransposeChromatic, SpellsByTheIntervalInEveryKey) {
    const std::tuple<const char*, short, short, const char*> cases[] = {
        {"C 4/4 c4:q e4:q <g4 b4>:q r:q", 2, -1, "eb4!:q g4:q <bb4! d5>:q r:q"},
        {"D 4/4 f#4:q c#5:q c5!:q e4:q", -1, 1, "e#4!:q b#4!:q b4!:q d#4!:q"},
        {"f 3/4 c4:q e4!:q ab4:q", 4, 0, "g4:q b4!:q eb5:q"},
        {"Gb 4/4 cb5:w | gb4:w", 3, 1, "f5:w | c5!:w"},
        // "!" in the first text that no rule asks for is a reminder, which stays with its note.
        {"C 4/4 f#4!:w | f4!:h f#4!:h", 7, 0, "f#5!:w | f5!:h f#5!:h"},
        {"C 4/4 f#4!:w | f4!:w", 1, 0, "g#4!:w | g4!:w"},
        {"C 4/4 f#4!:h f#4!:h", 1, 0, "g#4!:h g#4!:h"},
        {"C 4/4 f#4~!:w | f#4^!:h f#4:h", 7, 0, "f#5~!:w | f#5^!:h f#5:h"},
        // A sign that was needed goes when it is not needed any more.
        {"C 4/4 bb4!:w | c5:w", 1, 0, "c5:w | d5:w"},
    };
    for (const auto& [before, steps, alteration, after] : cases)
        EXPECT_EQ(textAfter(before, TransposeChromatic, steps, alteration), after) << before;
    EXPECT_EQ(textAfter("C 4/4 c4!:w | e4!:h g4:h", InvDiatonic, 0), "c4!:w | a3!:h f3:h");
    EXPECT_EQ(textAfter("C 4/4 c4!:w | e4!:h f#4!:h", DoSUOptions, 2, 0), "c4:w | e4:h f#4!:h");
}

TEST(Transpose, EndsOfTheRegionAreInside) {
    const std::pair<EREGION, const char*> cases[] = {
        {region(1, 1, 1, 1, 1024, 2048), "c4:q e4:q f4:q f4:q | g4:h a4:h | b4:w"},
        {region(1, 1, 1, 1, 1025, 2047), "c4:q d4:q e4:q f4:q | g4:h a4:h | b4:w"},
        {region(1, 1, 1, 3, 3072, 0), "c4:q d4:q e4:q g4:q | a4:h b4:h | c5:w"},
        {region(1, 1, 3, 2), "c4:q d4:q e4:q f4:q | g4:h a4:h | b4:w"},
    };
    for (const auto& [selected, after] : cases) {
        EngineFixture engine({"C 4/4 c4:q d4:q e4:q f4:q | g4:h a4:h | b4:w"});
        const std::string before = textOf(engine.document);
        const short result = engine.transform(selected, TransposeDiatonic, 1, 0);
        EXPECT_EQ(textOf(engine.document), after);
        EXPECT_EQ(result, textOf(engine.document) != before);
    }
}

TEST(RegionWalks, GoThroughShownLayersByMeasureOrByStaff) {
    EngineFixture engine({"C 4/4 c4:w | d4:w", "C 4/4 e4:w | f4:w"});
    engine.session.layerShown = {true, false, true, false};
    CallTrace trace;
    engine.transform(engine.everything(), TransposeChromatic, 1, 0);
    EXPECT_EQ(trace.walk(), "poll s1m1l0 s1m1l2 poll s2m1l0 s2m1l2 poll s1m2l0 s1m2l2 poll s2m2l0 s2m2l2 ");
    CallTrace bySlot;
    engine.transform(engine.everything(), DoSUOptions, 2, 0);
    EXPECT_EQ(
        bySlot.walk(),
        "poll s1m1l0 poll s1m2l0 poll s1m1l2 poll s1m2l2 poll s2m1l0 poll s2m2l0 poll s2m1l2 poll s2m2l2 ");
}

TEST(RegionWalks, StopBeforeTheNextFrameAfterACancel) {
    for (const auto transpose : {TransposeDiatonic, TransposeChromatic, DoSUOptions}) {
        EngineFixture engine({"C 4/4 c4:w | d4:w | e4:w"});
        engine.session.layerShown = {true, false, false, false};
        engine.front.cancelAfter = 2;
        const CallTrace trace;
        EXPECT_EQ(engine.transform(engine.everything(), transpose, 3, 0), 1);
        EXPECT_TRUE(engine.cancelled);
        EXPECT_EQ(trace.walk(), "poll s1m1l0 poll s1m2l0 poll ");
        EXPECT_EQ(textOf(engine.document), "c4:w | d4:w | e4:w");
    }
}

TEST(DoSUOptions, EachOptionShowsOrHidesAccidentals) {
    const std::tuple<const char*, short, short, const char*> cases[] = {
        // As needed: marked, so the host decides; what was decided by hand keeps the flag it was given.
        {"C 4/4 f#4:q f4+:q f4!+:q c4!:q", 2, 0, "f#4!:q f4!+:q f4!+:q c4:q"},
        {"C 4/4 f#4:q f4:h r:q", 3, 0, "f#4!+:q f4!+:h r:q"},
        {"C 4/4 f#4!:q f4!:h r:q", 4, 0, "f#4+:q f4+:h r:q"},
        {"C 4/4 f#4+:q f4!+:q c4!+:h", 5, 0, "f#4!:q f4!:q c4:h"},
        {"D 4/4 f4!:q c##5!+:q <d4 g#4!>:h", 6, 0, "f#4:q c#5:q <d4 g4>:h"},
        {"C 4/4 f#4:q f4!+:h r:q", 1, 0, "f#4:q f4!+:h r:q"},
        {"C 4/4 f#4~!:h <f#4^~ a4>:h | f#4^:w", 1, 1, "f#4!:h <f#4 a4>:h | f#4!:w"},
        {"C 4/4 c4~:h c4^:h", 3, 1, "c4!+:h c4!+:h"},
    };
    for (const auto& [before, option, removeTies, after] : cases)
        EXPECT_EQ(textAfter(before, DoSUOptions, option, removeTies), after) << "option " << option;
    EngineFixture engine({"C 4/4 c4:h d4:h | e4:h f4:h"});
    engine.transform(region(1, 1, 1, 2, 2048, 0), DoSUOptions, 3, 0);
    EXPECT_EQ(textOf(engine.document), "c4:h d4!+:h | e4!+:h f4:h");
}

// A score of one staff after a command, with what becomes of quarter tones, and after it was undone.
template <class... Command>
std::string quarterTonesAfter(const char* line, engine::Fractions fractions, Command... command) {
    EngineFixture engine({line});
    const std::string before = textOf(engine.document);
    engine.session.selection = engine.everything();
    engine.session.fractions = {fractions};
    engine.transform(engine.everything(), command...);
    std::string after = textOf(engine.document);
    engine.session.massEdits.undo();
    EXPECT_EQ(textOf(engine.document), before);
    return after;
}

TEST(QuarterTones, AreMirroredAndCarriedExactly) {
    using enum engine::Fractions;
    // E half-sharp lies four and a half semitones above C, so A three-quarters flat mirrors it.
    EXPECT_EQ(quarterTonesAfter("C 3/4 e4':q e4:q d4':q", mirrored, InvChromatic, 0, 0, 0),
              "abb3'!:q ab3!:q bbb3'!:q");
    EXPECT_EQ(quarterTonesAfter("C 2/4 eb4':q r:q", mirrored, InvDiatonic, 0), "a3'!:q r:q");
    EXPECT_EQ(quarterTonesAfter("C 2/4 <e4 e4'>:h", mirrored, InvChromatic, 0, 0, 0), "<abb3'! ab3!>:h");
    // Keys that a mirror passes over stay as they are.
    EXPECT_EQ(quarterTonesAfter("none 1/4 e4':q", mirrored, InvDiatonic, 0), "e4':q");
    EXPECT_EQ(quarterTonesAfter("C 2/4 e4':q e4:q", kept, TransposeChromatic, 2, 0), "g#4'!:q g#4!:q");
    EXPECT_EQ(quarterTonesAfter("C 2/4 e4'!:q f#4'!:q", dropped, DoSUOptions, 6, 0), "e4:q f4:q");
    EngineFixture engine({"C 4/4 e4'~!:w | e4'^:h e4':h"});
    engine.session.selection = region(1, 1, 2, 2, 0, 0);
    engine.session.fractions = {mirrored};
    engine.transform(*engine.session.selection, InvDiatonic, 0);
    EXPECT_EQ(textOf(engine.document), "e4'!:w | ab3'!:h e4'!:h") << "outside the selection they stay";
}

}  // namespace
}  // namespace rovescio::test
