// The retrograde of a region: layers, measure attributes, rebarring, cancels and failures.
#include "retrograde/retrograde.h"

#include "engine_fixture.h"
#include "kit/data_records.h"

namespace rovescio::test {
namespace {

using engine::callCount;
using engine::HostFunction;
using engine::planFault;

class RetrogradeTest : public testing::Test {
  protected:
    RetrogradeTest() {
        for (const short measure : {short{1}, short{2}, short{3}, short{4}})
            engine.document.staffMeasure(1, measure).beat = 2048 >> measure;
        makeSpecs(false);
    }

    // Gives every measure a specification that shows which one it was made for.
    void makeSpecs(bool withKeys) {
        engine.run([&](CProgress*) {
            for (short measure = 1; measure <= 4; ++measure) {
                EDTMeasureSpec2014 spec{};
                EXPECT_TRUE(sx_loadmeasurespec(measure, &spec));
                spec.width = static_cast<short>(100 * measure);
                spec.keySignature = static_cast<std::uint16_t>(withKeys ? measure : 0);
                spec.spaceBefore = static_cast<short>(10 * measure);
                spec.spaceAfter = static_cast<short>(11 * measure);
                spec.flags = static_cast<std::uint16_t>(0x1100 * measure + 0x40 * (measure % 4));
                EXPECT_TRUE(sx_savemeasurespec(measure, &spec));
            }
            return short{1};
        });
    }

    // From which measures each one has its key signature and its spacing, as "1.4 2.3 3.2 4.1"; all else is
    // its own.
    static std::string specsText() {
        std::string text;
        for (short measure = 1; measure <= 4; ++measure) {
            EDTMeasureSpec2014 spec{};
            EXPECT_TRUE(sx_loadmeasurespec(measure, &spec));
            const int from = spec.width / 100;
            EXPECT_EQ((std::vector<int>{spec.spaceBefore, spec.spaceAfter, spec.flags, spec.beatDuration}),
                      (std::vector<int>{10 * from, 11 * from, 0x1100 * measure + 0x40 * (from % 4),
                                        2048 >> measure}));
            text +=
                (text.empty() ? "" : " ") + std::to_string(spec.keySignature) + "." + std::to_string(from);
        }
        return text;
    }

    short retrograde(EREGION region, unsigned int options) {
        const auto rebarsBefore = callCount(HostFunction::SX_RebarRegion);
        const auto loadsBefore = callCount(HostFunction::SX_LoadEData);
        const short result = engine.run([&](CProgress* progress) {
            const short answer = Retrograde(&region, options, progress);
            rebars = callCount(HostFunction::SX_RebarRegion) - rebarsBefore;
            recordLoads = callCount(HostFunction::SX_LoadEData) - loadsBefore;
            music = {textOf(engine.document, 1), textOf(engine.document, 2), textOf(engine.document, 1, 1)};
            specs = specsText();
            return answer;
        });
        return result;
    }

    EngineFixture engine{{"C 2/4 c4:q d4:q | e4:h | f4:q g4:q | a4:h", "C 2/4 c4:h | d4:h | e4:h | f4:h"}};
    // As the command left it, before the mass edit was ended: both staves, the second layer of the first.
    std::vector<std::string> music;
    std::string specs;
    std::uint64_t rebars = 0;
    std::uint64_t recordLoads = 0;
};

TEST_F(RetrogradeTest, ExchangesMeasureAttributesOnceForEverySlot) {
    const struct {
        unsigned int options;
        EREGION region;
        const char* specs;
        std::uint64_t recordLoads;
    } cases[] = {
        {0, EngineFixture::region(1, 1, 1, 4), "1.1 2.2 3.3 4.4", 0},
        {1, EngineFixture::region(1, 1, 1, 4), "4.1 3.2 2.3 1.4", 4},
        {2, EngineFixture::region(2, 2, 1, 4), "1.4 2.3 3.2 4.1", 4},
        {7, EngineFixture::region(2, 2, 2, 4), "1.1 4.4 3.3 2.2", 4},  // the middle one with itself
        {3, EngineFixture::region(1, 2, 1, 4), "1.1 2.2 3.3 4.4", 8},  // there and back again
    };
    for (const auto& c : cases) {
        makeSpecs(true);
        EXPECT_EQ(retrograde(c.region, c.options), 1);
        EXPECT_EQ(specs, c.specs);
        EXPECT_EQ(recordLoads, c.recordLoads);
        EXPECT_EQ(rebars, 1U);
    }
}

TEST_F(RetrogradeTest, ReversesShownLayersSlotBySlotAndRebarsOnce) {
    addLayer(engine.document, 1, 1, "c5:h | | d5:h | e5:h");
    addLayer(engine.document, 1, 2, "e5:h | | | f5:h");
    engine.session.layerShown = {true, true, false, false};
    const CallTrace trace;
    EXPECT_EQ(retrograde(EngineFixture::region(1, 2, 1, 4), 0), 1);
    EXPECT_EQ(music, (std::vector<std::string>{"a4:h | g4:q f4:q | e4:h | d4:q c4:q",
                                               "f4:h | e4:h | d4:h | c4:h", "e5:h | d5:h | | c5:h"}));
    EXPECT_EQ(textOf(engine.document, 1, 2), "e5:h | | | f5:h");
    // One poll for each exchange, none while there is nothing more to exchange.
    EXPECT_TRUE(
        trace.walk().starts_with("s1m1l0 s1m2l0 s1m3l0 s1m4l0 poll poll poll s1m1l1 s1m2l1 s1m3l1 s1m4l1 "
                                 "poll poll s2m1l0 s2m2l0 s2m3l0 s2m4l0 poll poll s2m1l1 "))
        << trace.walk();
    EXPECT_NE(trace.text().find("SX_RebarRegion(region=slots 1-2 from 1:0 to 4:2147483647, mode=4, "
                                "regroup=1, options=0, redraw=1)"),
              std::string::npos);
}

TEST_F(RetrogradeTest, HonoursACancelBetweenAnyTwoSteps) {
    engine.session.layerShown = {true, true, false, false};
    const std::string before = "c4:q d4:q | e4:h | f4:q g4:q | a4:h";
    const struct {
        int cancelAfter;
        unsigned int options;
        const char* music;
        const char* secondLayer;  // its empty measures are filled all the same
        std::uint64_t rebars;
        const char* specs;
    } cases[] = {
        {0, 2, "c4:q d4:q | e4:h | f4:q g4:q | a4:h", "r:h | r:h | r:h | r:h", 0, "0.1 0.2 0.3 0.4"},
        {5, 2, "a4:h g4:q | f4:q | e4:h d4:q | c4:q", "r:h | r:h | r:h | r:h", 0, "0.1 0.2 0.3 0.4"},
        {6, 2, "a4:h g4:q | f4:q | e4:h d4:q | c4:q", "r:h | r:h | r:h | r:h", 0, "0.4 0.2 0.3 0.1"},
        // With nothing to exchange between measures, a cancelled run rebars all the same.
        {0, 0, "c4:q d4:q | e4:h | f4:q g4:q | a4:h", " | | |", 1, "0.1 0.2 0.3 0.4"},
    };
    for (const auto& c : cases) {
        engine.front.polls = 0;
        engine.front.cancelAfter = c.cancelAfter;
        EXPECT_EQ(retrograde(EngineFixture::region(1, 1, 1, 4), c.options), 1);
        EXPECT_TRUE(engine.cancelled);
        EXPECT_EQ(engine.front.polls, c.cancelAfter + 1);
        EXPECT_EQ(rebars, c.rebars);
        EXPECT_EQ(std::pair(music[0], music[2]),
                  (std::pair<std::string, std::string>(c.music, c.secondLayer)));
        EXPECT_EQ(specs, c.specs) << c.cancelAfter;
        EXPECT_EQ(textOf(engine.document), before);
    }
    // A run that starts cancelled asks nothing of the host's progress.
    CProgress progress;
    progress.cancelled = 1;
    EREGION backwards = EngineFixture::region(2, 1, 1, 4);
    EXPECT_EQ(Retrograde(&backwards, 3, &progress), 1);
    EXPECT_EQ(engine.front.polls, 1);
}

TEST_F(RetrogradeTest, StopsAtMusicThatDoesNotLoad) {
    engine.session.layerShown = {true, false, false, false};
    planFault(HostFunction::SX_LoadTGF, 6);
    EXPECT_EQ(retrograde(EngineFixture::region(1, 2, 1, 4), 2), 0);
    EXPECT_EQ(music[0], "a4:h g4:q | f4:q | e4:h d4:q | c4:q");
    EXPECT_EQ(music[1], "c4:h | d4:h | e4:h | f4:h");
    EXPECT_EQ(specs, "0.4 0.3 0.2 0.1");
    EXPECT_EQ(rebars, 0U);
    EXPECT_EQ(retrograde(EngineFixture::region(1, 2, 3, 2), 1), 0) << "it ends before it starts";
    EXPECT_EQ(rebars, 0U);
}

}  // namespace
}  // namespace rovescio::test
