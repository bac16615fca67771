// Transposition of regions: what is inside, in which order it is walked, and cancels.
#include "transform/transpose_region.h"

#include "engine_fixture.h"

namespace rovescio::test {
namespace {

TEST(TransposeChromatic, SpellsByTheIntervalInEveryKey) {
    const std::tuple<const char*, short, short, const char*> cases[] = {
        {"C 4/4 c4:q e4:q <g4 b4>:q r:q", 2, -1, "eb4!:q g4:q <bb4! d5>:q r:q"},
        {"D 4/4 f#4:q c#5:q c5!:q e4:q", -1, 1, "e#4!:q b#4!:q b4!:q d#4!:q"},
        {"f 3/4 c4:q e4!:q ab4:q", 4, 0, "g4:q b4!:q eb5:q"},
        {"Gb 4/4 cb5:w | gb4:w", 3, 1, "f5:w | c5!:w"},
        {"C 4/4 f#4~!:w | f#4^:w", 1, 0, "g#4~!:w | g#4^:w"},
    };
    for (const auto& [before, steps, alteration, after] : cases) {
        EXPECT_EQ(textAfter(before, TransposeChromatic, steps, alteration), after) << before;
    }
}

TEST(Transpose, EndsOfTheRegionAreInside) {
    const std::pair<EREGION, const char*> cases[] = {
        {EngineFixture::region(1, 1, 1, 1, 1024, 2048), "c4:q e4:q f4:q f4:q | g4:h a4:h | b4:w"},
        {EngineFixture::region(1, 1, 1, 1, 1025, 2047), "c4:q d4:q e4:q f4:q | g4:h a4:h | b4:w"},
        {EngineFixture::region(1, 1, 1, 3, 3072, 0), "c4:q d4:q e4:q g4:q | a4:h b4:h | c5:w"},
        {EngineFixture::region(1, 1, 3, 2), "c4:q d4:q e4:q f4:q | g4:h a4:h | b4:w"},
    };
    for (const auto& [region, after] : cases) {
        EngineFixture engine({"C 4/4 c4:q d4:q e4:q f4:q | g4:h a4:h | b4:w"});
        const std::string before = textOf(engine.document);
        const short result = engine.transform(region, TransposeDiatonic, 1, 0);
        EXPECT_EQ(textOf(engine.document), after);
        EXPECT_EQ(result, textOf(engine.document) != before);
    }
}

TEST(Transpose, WalksMeasuresThenStavesThenShownLayersAndPollsOncePerStaff) {
    EngineFixture engine({"C 4/4 c4:w | d4:w", "C 4/4 e4:w | f4:w"});
    engine.session.layerShown = {true, false, true, false};
    const CallTrace trace;
    engine.transform(engine.everything(), TransposeChromatic, 1, 0);
    EXPECT_EQ(trace.walk(), "poll s1m1l0 s1m1l2 poll s2m1l0 s2m1l2 poll s1m2l0 s1m2l2 poll s2m2l0 s2m2l2 ");
}

TEST(Transpose, ACancelStopsBeforeTheNextFrameAndRollsBack) {
    for (const auto transpose : {TransposeDiatonic, TransposeChromatic}) {
        EngineFixture engine({"C 4/4 c4:w | d4:w | e4:w"});
        engine.front.cancelAfter = 2;
        const CallTrace trace;
        EXPECT_EQ(engine.transform(engine.everything(), transpose, 1, 0), 1);
        EXPECT_TRUE(engine.cancelled);
        EXPECT_EQ(trace.walk(), "poll s1m1l0 s1m1l1 s1m1l2 s1m1l3 poll s1m2l0 s1m2l1 s1m2l2 s1m2l3 poll ");
        EXPECT_EQ(textOf(engine.document), "c4:w | d4:w | e4:w");
    }
}

}  // namespace
}  // namespace rovescio::test
