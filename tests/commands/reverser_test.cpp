// The reversal of one layer: which entries change places, what travels with them, what a failure leaves.
#include "retrograde/reverser.h"

#include "engine_fixture.h"

namespace rovescio::test {
namespace {

using engine::callCount;
using engine::HostFunction;
using engine::planFault;

// Frames loaded and saved since the test program started.
std::pair<std::uint64_t, std::uint64_t> frameCalls() {
    return {callCount(HostFunction::SX_LoadTGF), callCount(HostFunction::SX_SaveTGF)};
}

// Reverses layer 1 of the first staff and returns its text before the host has had its say on ties.
std::string reversed(EngineFixture& engine, const EREGION& region) {
    std::string text;
    engine.run([&](CProgress*) {
        {
            Reverser reverser(&region, 1, 0);
            while (reverser.NextEntry()) reverser.ReverseEntries();
        }
        text = textOf(engine.document);
        return short{1};
    });
    return text;
}

TEST(Reverser, ExchangesTheSelectedEntriesAcrossBarlines) {
    const struct {
        const char* score;
        EMUSICPOINT start, end;
        const char* after;
    } cases[] = {
        {"C 3/4 c4:q d4:q e4:q | f4:h.", {0, 1, 1, 0}, {0, 1, 2, 3071}, "f4:h. e4:q d4:q | c4:q"},
        // Both positions belong to the region; what lies outside stays, also between two entries.
        {"C 4/4 c4:q d4:q e4:q f4:q | g4:q a4:q b4:q c5:q",
         {0, 1, 1, 1024},
         {0, 1, 2, 1024},
         "c4:q a4:q g4:q f4:q | e4:q d4:q b4:q c5:q"},
        {"C 4/4 c4:q d4:q e4:q f4:q", {0, 1, 1, 1023}, {0, 1, 1, 2047}, "c4:q d4:q e4:q f4:q"},
        {"C 4/4 c4:q d4:q e4:q f4:q", {0, 1, 1, 1025}, {0, 1, 1, 4000}, "c4:q d4:q f4:q e4:q"},
        // No two entries are selected: both ends inside one entry, crossed, after the last, before the
        // first.
        {"C 2/4 c4:q d4:q", {0, 1, 1, 100}, {0, 1, 1, 900}, "c4:q d4:q"},
        {"C 2/4 c4:q d4:q", {0, 1, 1, 1024}, {0, 1, 1, 0}, "c4:q d4:q"},
        {"C 2/4 c4:q d4:q | e4:q f4:q", {0, 1, 1, 2048}, {0, 1, 2, 0}, "c4:q d4:q | e4:q f4:q"},
        {"C 2/4 c4:q d4:q | e4:q f4:q", {0, 1, 1, 1024}, {0, 1, 2, -1}, "c4:q d4:q | e4:q f4:q"},
        {"C 2/4 c4:q d4:q", {0, 1, 1, 2048}, {0, 1, 1, 5000}, "c4:q d4:q"},
        // An empty measure takes part as one rest, even where nothing is exchanged.
        {"C 4/4 c4:h d4:h | | e4:w", {0, 1, 1, 0}, {0, 1, 3, 4095}, "e4:w r:w | d4:h | c4:h"},
        {"C 3/4 | c4:h.", {0, 1, 1, 0}, {0, 1, 2, 0}, "c4:h. | r:h."},
        // Chords, tuplets and grace notes travel whole; the entry in the middle keeps its ties.
        {"C 4/4 /f5:e <c4~ e4>:h <c4^ g4>:e*3:2 d4:e*3:2 r:e*3:2 a4:q",
         {0, 1, 1, 0},
         {0, 1, 1, 4095},
         "a4:q r:e*3:2 d4:e*3:2 <c4~ g4>:e*3:2 <c4^ e4>:h /f5:e"},
        {"C 3/4 c4~:q c4^:q d4~:q", {0, 1, 1, 0}, {0, 1, 1, 3071}, "d4^:q c4^:q c4^:q"},
    };
    for (const auto& c : cases) {
        EngineFixture engine({c.score});
        const auto [loads, saves] = frameCalls();
        EXPECT_EQ(reversed(engine, {c.start, c.end}), c.after) << c.score;
        const auto measures = static_cast<std::uint64_t>(c.end.measure);
        EXPECT_EQ(frameCalls(), std::pair(loads + measures, saves + measures));
    }
}

TEST(Reverser, FillsAnEmptyMeasureWithARestOfItsOwnLength) {
    EngineFixture engine({"C 4/4 |"});
    engine.document.staffMeasure(1, 1).duration = 2560;
    reversed(engine, engine.everything());
    const auto& entries = engine.document.entries({1, 2, 0});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(+entries[0].duration, 2560);
    EXPECT_EQ(+entries[0].entryFlags, 0x81000000U);
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
        planFault(HostFunction::SX_LoadTGF, c.failing);
        const auto [loads, saves] = frameCalls();
        engine.run([&](CProgress*) {
            const EREGION region = EngineFixture::region(1, 1, c.start, c.end);
            Reverser reverser(&region, 1, 0);
            EXPECT_TRUE(reverser.failed());
            return reverser.NextEntry();
        });
        EXPECT_EQ(frameCalls(), std::pair(loads + c.loads, saves + c.saves));
        EXPECT_EQ(textOf(engine.document), c.after);
    }
}

}  // namespace
}  // namespace rovescio::test
