// The retrograde: entries that change places and what travels with them, measure attributes, rebarring,
// cancels and failures.
#include "retrograde/retrograde.h"

#include <cstring>

#include "engine_fixture.h"
#include "kit/data_records.h"
#include "retrograde/reverser.h"

namespace rovescio::test {
namespace {

using engine::callCount;
using engine::HostFunction;

// Frames loaded and saved since the test program started.
std::pair<std::uint64_t, std::uint64_t> frameCalls() {
    return {callCount(HostFunction::SX_LoadTGF), callCount(HostFunction::SX_SaveTGF)};
}

// Reverses layer 1 of the first staff and returns its text before the host has had its say on ties.
std::string reversed(EngineFixture& engine, const EREGION& selected) {
    std::string text;
    engine.run([&](CProgress*) {
        {
            Reverser reverser(&selected, 1, 0);
            while (reverser.NextEntry()) reverser.ReverseEntries();
        }
        text = textOf(engine.document);
        return 1;
    });
    return text;
}

TEST(Reverser, ExchangesTheSelectedEntriesAcrossBarlines) {
    using Place = std::pair<short, std::int32_t>;  // measure and position
    const std::tuple<const char*, Place, Place, const char*> cases[] = {
        {"C 3/4 c4:q d4:q e4:q | f4:h.", {1, 0}, {2, 3071}, "f4:h. e4:q d4:q | c4:q"},
        // Both positions belong to the region; what lies outside stays, also between two entries.
        {"C 4/4 c4:q d4:q e4:q f4:q | g4:q a4:q b4:q c5:q",
         {1, 1024},
         {2, 1024},
         "c4:q a4:q g4:q f4:q | e4:q d4:q b4:q c5:q"},
        {"C 4/4 c4:q d4:q e4:q f4:q", {1, 1023}, {1, 2047}, "c4:q d4:q e4:q f4:q"},
        {"C 4/4 c4:q d4:q e4:q f4:q", {1, 1025}, {1, 4000}, "c4:q d4:q f4:q e4:q"},
        // No two entries are selected: both ends inside one entry, crossed, after the last, before the
        // first.
        {"C 2/4 c4:q d4:q", {1, 100}, {1, 900}, "c4:q d4:q"},
        {"C 2/4 c4:q d4:q", {1, 1024}, {1, 0}, "c4:q d4:q"},
        {"C 2/4 c4:q d4:q | e4:q f4:q", {1, 2048}, {2, 0}, "c4:q d4:q | e4:q f4:q"},
        {"C 2/4 c4:q d4:q | e4:q f4:q", {1, 1024}, {2, -1}, "c4:q d4:q | e4:q f4:q"},
        {"C 2/4 c4:q d4:q", {1, 2048}, {1, 5000}, "c4:q d4:q"},
        // An empty measure takes part as one rest, even where nothing is exchanged.
        {"C 4/4 c4:h d4:h | | e4:w", {1, 0}, {3, 4095}, "e4:w r:w | d4:h | c4:h"},
        {"C 3/4 | c4:h.", {1, 0}, {2, 0}, "c4:h. | r:h."},
        // Chords, tuplets and grace notes travel whole; the entry in the middle keeps its ties.
        {"C 4/4 /f5:e <c4~ e4>:h <c4^ g4>:e*3:2 d4:e*3:2 r:e*3:2 a4:q",
         {1, 0},
         {1, 4095},
         "a4:q r:e*3:2 d4:e*3:2 <c4~ g4>:e*3:2 <c4^ e4>:h /f5:e"},
        {"C 3/4 c4~:q c4^:q d4~:q", {1, 0}, {1, 3071}, "d4^:q c4^:q c4^:q"},
    };
    for (const auto& [score, start, end, after] : cases) {
        EngineFixture engine({score});
        const auto [loads, saves] = frameCalls();
        EXPECT_EQ(reversed(engine, region(1, 1, start.first, end.first, start.second, end.second)), after);
        const auto measures = static_cast<std::uint64_t>(end.first);
        EXPECT_EQ(frameCalls(), std::pair(loads + measures, saves + measures)) << score;
    }
}

TEST(Reverser, FailsWithAFrameThatDoesNotLoadOrARegionThatEndsBeforeItStarts) {
    EngineFixture engine({"C 2/4 c4:q d4:q | | e4:q f4:q | g4:h"});
    const struct {
        short start, end;
        std::uint64_t failing, loads, saves;
        const char* after;
    } cases[] = {{1, 4, 1, 1, 0, "c4:q d4:q | | e4:q f4:q | g4:h"},
                 {2, 1, 1, 0, 0, "c4:q d4:q | | e4:q f4:q | g4:h"},
                 {2, -32768, 1, 0, 0, "c4:q d4:q | | e4:q f4:q | g4:h"},
                 {1, 4, 3, 3, 2, "c4:q d4:q | r:h | e4:q f4:q | g4:h"}};
    for (const auto& c : cases) {
        engine::planFault(HostFunction::SX_LoadTGF, c.failing);
        const auto [loads, saves] = frameCalls();
        engine.run([&](CProgress*) {
            const EREGION selected = region(1, 1, c.start, c.end);
            Reverser reverser(&selected, 1, 0);
            EXPECT_TRUE(reverser.failed());
            return reverser.NextEntry();
        });
        EXPECT_EQ(frameCalls(), std::pair(loads + c.loads, saves + c.saves));
        EXPECT_EQ(textOf(engine.document), c.after);
    }
}

TEST(Reverser, FillsAnEmptyMeasureWithARestOfItsOwnLength) {
    EngineFixture engine({"C 4/4 |"});
    engine.document.staffMeasure(1, 1).duration = 2560;
    reversed(engine, engine.everything());
    const auto& entries = engine.document.entries({1, 2, 0});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(std::pair(+entries[0].duration, +entries[0].entryFlags), std::pair(2560, 0x81000000U));
}

class RetrogradeTest : public testing::Test {
  protected:
    RetrogradeTest() { makeSpecs(0); }

    // The specification of a measure with the spacing of another.
    static EDTMeasureSpec2014 spec(short measure, int sharps, int spacing) {
        EDTMeasureSpec2014 made{};
        EXPECT_TRUE(sx_loadmeasurespec(measure, &made));
        made.width = made.spaceBefore = static_cast<short>(100 * spacing);
        made.keySignature = static_cast<std::uint16_t>(sharps);
        made.spaceAfter = static_cast<short>(11 * spacing);
        made.flags = static_cast<std::uint16_t>(0x1100 * measure + 0x40 * (spacing % 4));
        return made;
    }
    void makeSpecs(int sharps) {
        engine.run([&](CProgress*) {
            for (short measure = 1; measure <= 4; ++measure) {
                EDTMeasureSpec2014 made = spec(measure, sharps * measure, measure);
                EXPECT_TRUE(sx_savemeasurespec(measure, &made));
            }
            return 1;
        });
    }
    // From which measures each one has its key signature and its spacing, as "1.4 2.3 3.2 4.1 "; all else is
    // its own.
    static std::string specsText() {
        std::string text;
        for (short measure = 1; measure <= 4; ++measure) {
            EDTMeasureSpec2014 kept{};
            EXPECT_TRUE(sx_loadmeasurespec(measure, &kept));
            const EDTMeasureSpec2014 expected = spec(measure, kept.keySignature, kept.width / 100);
            EXPECT_EQ(std::memcmp(&kept, &expected, sizeof kept), 0) << measure;
            text += std::to_string(kept.keySignature) + "." + std::to_string(kept.width / 100) + " ";
        }
        return text;
    }

    short retrograde(EREGION selected, unsigned int options) {
        rebars = callCount(HostFunction::SX_RebarRegion);
        recordLoads = callCount(HostFunction::SX_LoadEData);
        return engine.run([&](CProgress* progress) {
            const short answer = Retrograde(&selected, options, progress);
            rebars = callCount(HostFunction::SX_RebarRegion) - rebars;
            recordLoads = callCount(HostFunction::SX_LoadEData) - recordLoads;
            music = {textOf(engine.document, 1), textOf(engine.document, 2), textOf(engine.document, 1, 1)};
            specs = specsText();
            if (undone) progress->cancelled = 1;
            return answer;
        });
    }

    EngineFixture engine{{"C 2/4 c4:q d4:q | e4:h | f4:q g4:q | a4:h", "C 2/4 c4:h | d4:h | e4:h | f4:h"}};
    // As the command left it, before the mass edit was ended: both staves, the second layer of the first.
    std::vector<std::string> music;
    std::string specs;
    std::uint64_t rebars = 0;
    std::uint64_t recordLoads = 0;
    bool undone = false;  // whether the mass edit is ended as cancelled
};

TEST_F(RetrogradeTest, ExchangesMeasureAttributesOnceForEverySlot) {
    const struct {
        unsigned int options;
        EREGION selected;
        const char* specs;
        std::uint64_t recordLoads;
    } cases[] = {
        {0, region(1, 1, 1, 4), "1.1 2.2 3.3 4.4 ", 0},
        {1, region(1, 1, 1, 4), "4.1 3.2 2.3 1.4 ", 4},
        {2, region(2, 2, 1, 4), "1.4 2.3 3.2 4.1 ", 4},
        {7, region(2, 2, 2, 4), "1.1 4.4 3.3 2.2 ", 4},  // the middle one with itself
        {3, region(1, 2, 1, 4), "1.1 2.2 3.3 4.4 ", 8},  // there and back again
    };
    makeSpecs(1);
    undone = true;
    for (const auto& c : cases) {
        EXPECT_EQ(retrograde(c.selected, c.options), 1);
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
    EXPECT_EQ(retrograde(region(1, 2, 1, 4), 0), 1);
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
        std::string music, secondLayer;  // whose empty measures are filled all the same
        std::uint64_t rebars;
        const char* specs;
    } cases[] = {
        {0, 2, before, "r:h | r:h | r:h | r:h", 0, "0.1 0.2 0.3 0.4 "},
        {5, 2, "a4:h g4:q | f4:q | e4:h d4:q | c4:q", "r:h | r:h | r:h | r:h", 0, "0.1 0.2 0.3 0.4 "},
        {6, 2, "a4:h g4:q | f4:q | e4:h d4:q | c4:q", "r:h | r:h | r:h | r:h", 0, "0.4 0.2 0.3 0.1 "},
        // With nothing to exchange between measures, a cancelled run rebars all the same.
        {0, 0, before, " | | |", 1, "0.1 0.2 0.3 0.4 "},
    };
    for (const auto& c : cases) {
        engine.front.polls = 0;
        engine.front.cancelAfter = c.cancelAfter;
        EXPECT_EQ(retrograde(region(1, 1, 1, 4), c.options), 1);
        EXPECT_TRUE(engine.cancelled);
        EXPECT_EQ(engine.front.polls, c.cancelAfter + 1);
        EXPECT_EQ(rebars, c.rebars);
        EXPECT_EQ(std::pair(music[0], music[2]), std::pair(c.music, c.secondLayer));
        EXPECT_EQ(specs, c.specs) << c.cancelAfter;
        EXPECT_EQ(textOf(engine.document), before);
    }
    // A run that starts cancelled asks nothing of the host's progress.
    CProgress progress;
    progress.cancelled = 1;
    EREGION backwards = region(2, 1, 1, 4);
    EXPECT_EQ(Retrograde(&backwards, 3, &progress), 1);
    EXPECT_EQ(engine.front.polls, 1);
}

TEST_F(RetrogradeTest, StopsAtMusicThatDoesNotLoad) {
    engine.session.layerShown = {true, false, false, false};
    engine::planFault(HostFunction::SX_LoadTGF, 6);
    EXPECT_EQ(retrograde(region(1, 2, 1, 4), 2), 0);
    EXPECT_EQ(music[0] + "; " + music[1], "a4:h g4:q | f4:q | e4:h d4:q | c4:q; c4:h | d4:h | e4:h | f4:h");
    EXPECT_EQ(specs, "0.4 0.3 0.2 0.1 ");
    EXPECT_EQ(rebars, 0U);
    EXPECT_EQ(retrograde(region(1, 2, 3, 2), 1), 0) << "it ends before it starts";
    EXPECT_EQ(rebars, 0U);
}

}  // namespace
}  // namespace rovescio::test
