// The retrograde of a region: layers, measure attributes, rebarring, cancels and failures.
#include "retrograde/retrograde.h"

#include <array>

#include "contract/data_records.h"
#include "engine_fixture.h"

namespace rovescio::test {
namespace {

using engine::callCount;
using engine::HostFunction;
using engine::planFault;

using Spec = std::array<std::uint16_t, 15>;  // the words of a measure specification

// A specification that tells the measure it was made for; `own` is one of that measure, for what belongs to
// its time signature.
Spec specMadeFor(unsigned measure, bool withKey, const Spec& own) {
    Spec spec = own;
    const auto put = [&](std::size_t index, unsigned value) {
        spec[index] = static_cast<std::uint16_t>(value);
    };
    put(0, 100 * measure);
    put(1, withKey ? measure : 0);
    put(4, 10 * measure);
    put(5, 11 * measure);
    put(6, 0x1100 * measure + 0x40 * (measure % 4));
    return spec;
}

Spec stored(unsigned measure) {
    EDATAKEY key{static_cast<std::uint16_t>(measure), 0};
    Spec content{};
    std::uint32_t size = sizeof content;
    EXPECT_TRUE(SX_LoadEData(kMeasureSpecTag, &key, content.data(), &size));
    return content;
}

class RetrogradeTest : public testing::Test {
  protected:
    RetrogradeTest() {
        for (const short measure : {short{1}, short{2}, short{3}, short{4}})
            engine.document.staffMeasure(1, measure).beat = 2048 >> measure;
    }

    void makeSpecs() {
        engine.run([&](CProgress*) {
            for (unsigned measure = 1; measure <= 4; ++measure) {
                made[measure - 1] = specMadeFor(measure, withKeys, stored(measure));
                Spec content = made[measure - 1];
                EDATAKEY key{static_cast<std::uint16_t>(measure), 0};
                std::uint32_t size = sizeof content;
                EXPECT_TRUE(SX_SaveEData(kMeasureSpecTag, &key, content.data(), &size));
            }
            return short{1};
        });
    }

    short retrograde(EREGION region, unsigned int options) {
        const auto rebarsBefore = callCount(HostFunction::SX_RebarRegion);
        const auto loadsBefore = callCount(HostFunction::SX_LoadEData);
        const short result = engine.run([&](CProgress* progress) {
            const short answer = Retrograde(&region, options, progress);
            for (short slot = 1; slot <= 2; ++slot)
                music[static_cast<std::size_t>(slot - 1)] = textOf(engine.document, slot);
            secondLayer = textOf(engine.document, 1, 1);
            for (unsigned measure = 1; measure <= 4; ++measure) specs[measure - 1] = stored(measure);
            return answer;
        });
        rebars = callCount(HostFunction::SX_RebarRegion) - rebarsBefore;
        recordLoads = callCount(HostFunction::SX_LoadEData) - loadsBefore - specs.size();
        return result;
    }

    // From which measures each one has its key signature and its spacing now.
    void expectSpecs(const std::array<unsigned, 4>& keysFrom,
                     const std::array<unsigned, 4>& spacingFrom) const {
        for (unsigned measure = 1; measure <= 4; ++measure) {
            const Spec& spacing = made[spacingFrom[measure - 1] - 1];
            Spec expected = made[measure - 1];
            expected[1] = made[keysFrom[measure - 1] - 1][1];
            for (const std::size_t word : {0U, 4U, 5U}) expected[word] = spacing[word];
            expected[6] = static_cast<std::uint16_t>((expected[6] & 0xFF3F) | (spacing[6] & 0x00C0));
            EXPECT_EQ(specs[measure - 1], expected) << "measure " << measure;
        }
    }

    EngineFixture engine{{"C 2/4 c4:q d4:q | e4:h | f4:q g4:q | a4:h", "C 2/4 c4:h | d4:h | e4:h | f4:h"}};
    // As the command left it, before the mass edit was ended.
    std::array<std::string, 2> music;
    std::array<Spec, 4> specs{};
    std::array<Spec, 4> made{};
    bool withKeys = false;
    std::string secondLayer;
    std::uint64_t rebars = 0;
    std::uint64_t recordLoads = 0;
};

TEST_F(RetrogradeTest, ExchangesMeasureAttributesOnceForEverySlot) {
    const struct {
        unsigned int options;
        short startSlot, endSlot, startMeasure, endMeasure;
        std::array<unsigned, 4> keysFrom, spacingFrom;
        std::uint64_t recordLoads;
    } cases[] = {
        {0, 1, 1, 1, 4, {1, 2, 3, 4}, {1, 2, 3, 4}, 0},
        {1, 1, 1, 1, 4, {4, 3, 2, 1}, {1, 2, 3, 4}, 4},
        {2, 2, 2, 1, 4, {1, 2, 3, 4}, {4, 3, 2, 1}, 4},
        {7, 2, 2, 2, 4, {1, 4, 3, 2}, {1, 4, 3, 2}, 4},  // the middle one with itself
        {3, 1, 2, 1, 4, {1, 2, 3, 4}, {1, 2, 3, 4}, 8},  // there and back again
    };
    withKeys = true;
    for (const auto& c : cases) {
        makeSpecs();
        const EREGION region = EngineFixture::region(c.startSlot, c.endSlot, c.startMeasure, c.endMeasure);
        EXPECT_EQ(retrograde(region, c.options), 1);
        expectSpecs(c.keysFrom, c.spacingFrom);
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
    EXPECT_EQ(music[0], "a4:h | g4:q f4:q | e4:h | d4:q c4:q");
    EXPECT_EQ(music[1], "f4:h | e4:h | d4:h | c4:h");
    EXPECT_EQ(secondLayer, "e5:h | d5:h | | c5:h");
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
    makeSpecs();
    const std::string before = "c4:q d4:q | e4:h | f4:q g4:q | a4:h";
    const struct {
        int cancelAfter;
        unsigned int options;
        const char* music;
        const char* secondLayer;  // its empty measures are filled all the same
        int polls;
        std::uint64_t rebars;
        std::array<unsigned, 4> spacingFrom;
    } cases[] = {
        {0, 2, "c4:q d4:q | e4:h | f4:q g4:q | a4:h", "r:h | r:h | r:h | r:h", 1, 0, {1, 2, 3, 4}},
        {5, 2, "a4:h g4:q | f4:q | e4:h d4:q | c4:q", "r:h | r:h | r:h | r:h", 6, 0, {1, 2, 3, 4}},
        {6, 2, "a4:h g4:q | f4:q | e4:h d4:q | c4:q", "r:h | r:h | r:h | r:h", 7, 0, {4, 2, 3, 1}},
        // With nothing to exchange between measures, a cancelled run rebars all the same.
        {0, 0, "c4:q d4:q | e4:h | f4:q g4:q | a4:h", " | | |", 1, 1, {1, 2, 3, 4}},
    };
    for (const auto& c : cases) {
        engine.front.polls = 0;
        engine.front.cancelAfter = c.cancelAfter;
        EXPECT_EQ(retrograde(EngineFixture::region(1, 1, 1, 4), c.options), 1);
        EXPECT_TRUE(engine.cancelled);
        EXPECT_EQ(engine.front.polls, c.polls);
        EXPECT_EQ(rebars, c.rebars);
        EXPECT_EQ(music[0], c.music) << c.cancelAfter;
        EXPECT_EQ(secondLayer, c.secondLayer);
        expectSpecs({1, 2, 3, 4}, c.spacingFrom);
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
    makeSpecs();
    planFault(HostFunction::SX_LoadTGF, 6);
    EXPECT_EQ(retrograde(EngineFixture::region(1, 2, 1, 4), 2), 0);
    EXPECT_EQ(music[0], "a4:h g4:q | f4:q | e4:h d4:q | c4:q");
    EXPECT_EQ(music[1], "c4:h | d4:h | e4:h | f4:h");
    expectSpecs({1, 2, 3, 4}, {4, 3, 2, 1});
    EXPECT_EQ(rebars, 0U);
    EXPECT_EQ(retrograde(EngineFixture::region(1, 2, 3, 2), 1), 0) << "it ends before it starts";
    EXPECT_EQ(rebars, 0U);
}

}  // namespace
}  // namespace rovescio::test
