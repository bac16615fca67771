// The check of a selection before a retrograde: what it finds, where it looks, what it repairs.
#include "retrograde/selection_check.h"

#include "engine_fixture.h"
#include "retrograde/shape_removal.h"
#include "retrograde/smart_shapes.h"

namespace rovescio::test {
namespace {

constexpr std::uint32_t kVoice2 = ENTRY_VOICE2;
constexpr std::uint32_t kStartsVoice2 = ENTRY_STARTS_VOICE2;

class SelectionCheckTest : public testing::Test {
  protected:
    SelectionCheckTest() { engine.session.selection = region(1, 2, 1, 2); }

    void setFlags(const engine::FrameAddress& frame, std::size_t index, std::uint32_t entryFlags) {
        editEntries(engine.document, frame, [&](auto& entries) { entries[index].entryFlags |= entryFlags; });
    }
    std::uint16_t check(short fix = 0) {
        return static_cast<std::uint16_t>(
            engine.run([&](CProgress* progress) { return VerifyRetrogradeSelection(progress, fix); }));
    }
    [[nodiscard]] std::uint32_t entryNumber(short measure, std::size_t index) const {
        return engine.document.entries({1, measure, 0})[index].entryNumber;
    }
    // Makes a shape that is attached to entries.
    std::uint16_t addShape(short firstMeasure, short lastMeasure, std::uint32_t first, std::uint32_t last) {
        EDTSmartShape shape;
        shape.flags = SHAPE_ON_ENTRIES;
        shape.firstMeasure = firstMeasure;
        shape.lastMeasure = lastMeasure;
        shape.firstEntry = static_cast<std::int32_t>(first);
        shape.lastEntry = static_cast<std::int32_t>(last);
        std::uint16_t number = 0;
        EXPECT_EQ(engine.run([&](CProgress*) { return shape.FullCreate(number); }), 1);
        return number;
    }
    // The measures in which a shape has marks, and the entries, as "1 2 ;5 ".
    static std::string marksOf(std::uint16_t shape, const std::vector<std::uint32_t>& entries) {
        std::string text;
        const auto add = [&](auto mark, auto owner, const char* before) {
            for (std::uint16_t inci = 0; inci < 9 && mark.Load(owner, inci); ++inci)
                if (mark.shapeNumber == shape) text += before + std::to_string(owner) + " ";
        };
        for (short measure = 1; measure <= 3; ++measure) add(EDTSmartShapeMeasMark(), measure, "");
        for (const std::uint32_t entry : entries) add(EDTSmartShapeEntMark(), entry, ";");
        return text;
    }

    EngineFixture engine{
        {"C 4/4 c4:q d4:q e4:q f4:q | g4:q a4:q b4:q c5:q | d5:w", "C 4/4 e4:w | f4:w | g4:w"}};
};

TEST_F(SelectionCheckTest, FindsProblemsInsideTheSelectionAlone) {
    setFlags({1, 1, 0}, 1, kStartsVoice2);
    setFlags({1, 1, 0}, 2, kVoice2);
    // Layers that are not shown are checked like the others.
    addLayer(engine.document, 1, 1, "g4:h. a4:q | |");
    setFlags({1, 1, 1}, 1, kVoice2);
    engine.session.layerShown = {true, false, false, false};
    engine.document.staffMeasure(2, 2).changesInside = true;
    const struct {
        short startSlot, endSlot, startMeasure, endMeasure;
        std::int32_t start, end;
        int problems;
    } cases[] = {
        {1, 2, 1, 2, 0, 4095, 12}, {1, 1, 1, 2, 0, 4095, 4},    {1, 1, 1, 1, 2048, 2048, 4},
        {1, 1, 1, 1, 0, 2047, 0},  {1, 1, 1, 1, 2049, 3071, 0}, {1, 2, 2, 1, 0, 4095, 0},
        {2, 1, 1, 2, 0, 4095, 0},  {1, 1, 1, 1, 2049, 4095, 4}, {1, 2, 2, 2, 0, 0, 8},
    };
    for (const auto& c : cases) {
        engine.session.selection =
            region(c.startSlot, c.endSlot, c.startMeasure, c.endMeasure, c.start, c.end);
        EXPECT_EQ(check(), c.problems)
            << c.startMeasure << ':' << c.start << " - " << c.endMeasure << ':' << c.end;
    }
    engine.session.selection.reset();
    EXPECT_EQ(check() + check(1), 4);
}

TEST_F(SelectionCheckTest, PollsForEveryFrameUntilItHasFoundEveryProblem) {
    engine.document.staffMeasure(1, 2).changesInside = true;
    {
        const CallTrace trace;
        EXPECT_EQ(check(), 8);
        EXPECT_TRUE(trace.walk().starts_with("poll s1m1l0 poll s1m2l0 poll s1m1l1 poll s1m2l1 poll s1m1l2 "))
            << trace.walk();
    }
    engine.front.cancelAfter = engine.front.polls + 5;
    EXPECT_EQ(check(), 0);
    EXPECT_TRUE(engine.cancelled);
    CProgress progress;
    progress.cancelled = 1;
    EXPECT_EQ(VerifyRetrogradeSelection(&progress, 0), 0);
    engine.front.cancelAfter = -1;
    setFlags({1, 2, 0}, 1, kVoice2);
    addShape(2, 2, entryNumber(2, 2), entryNumber(2, 3));
    const CallTrace trace;
    EXPECT_EQ(check(), 268);
    EXPECT_EQ(trace.walk(), "poll s1m1l0 poll s1m2l0 ");
    engine.session.selection = region(1, 1, 2, 2, 2048, 2048);
    EXPECT_EQ(check(), 0x108);
}

TEST_F(SelectionCheckTest, RepairsSecondVoices) {
    // Flags, then the entries that are left and whether each starts a second voice.
    const std::tuple<std::vector<std::uint32_t>, const char*, const char*> cases[] = {
        {{0, kStartsVoice2, kVoice2, 0}, "c4:q d4:q f4:q", "000"},
        {{kStartsVoice2, kVoice2, kStartsVoice2, kVoice2}, "c4:q e4:q", "00"},
        // The first entry has none before it.
        {{kVoice2, kStartsVoice2, 0, 0}, "d4:q e4:q f4:q", "200"},
        {{kVoice2, kVoice2, kVoice2, kVoice2}, "", ""},
        {{kStartsVoice2, 0, 0, 0}, "c4:q d4:q e4:q f4:q", "2000"},
    };
    const engine::PackedEntries original = engine.document.entries({1, 1, 0}).copy();
    for (const auto& [flags, after, voicesAfter] : cases) {
        for (std::size_t i = 0; i < flags.size(); ++i) setFlags({1, 1, 0}, i, flags[i]);
        EXPECT_EQ(check(1), 0);
        EXPECT_EQ(textOf(engine.document), std::string(after) + " | g4:q a4:q b4:q c5:q | d5:w");
        std::string voices;
        for (const auto& entry : engine.document.entries({1, 1, 0}))
            voices += std::to_string(entry.entryFlags >> 28 & 3);
        EXPECT_EQ(voices, voicesAfter);
        engine::PackedEntries clean = original.copy();
        engine.document.exchangeEntries({1, 1, 0}, clean);
    }
}

// After a deletion the entry before it is looked at once more, even outside the selection.
TEST_F(SelectionCheckTest, RepairLooksAtTheEntryBeforeADeletedOne) {
    const std::uint32_t ends[] = {entryNumber(1, 0), entryNumber(1, 1)};
    const std::uint16_t shape = addShape(1, 1, ends[0], ends[1]);
    setFlags({1, 1, 0}, 2, kVoice2);
    engine.session.selection = region(1, 1, 1, 1, 2048, 4095);
    EXPECT_EQ(check(1), 0);
    EXPECT_EQ(textOf(engine.document), "c4:q d4:q f4:q | g4:q a4:q b4:q c5:q | d5:w");
    EXPECT_EQ(marksOf(shape, {ends[0], ends[1]}), ";" + std::to_string(ends[0]) + " ");
}

TEST_F(SelectionCheckTest, DeleteSmartShapesRemovesEveryShapeOfTheEntryAndNoOther) {
    const std::uint16_t twice = addShape(1, 3, 5, 5);
    const std::uint16_t lost = addShape(1, 3, 5, 6);
    const std::uint16_t other = addShape(1, 3, 6, 7);
    engine.run([&](CProgress*) { return EDTSmartShape().EraseShapeOnly(lost); });
    EXPECT_EQ(marksOf(twice, {5}), "1 2 3 ;5 ;5 ");
    EXPECT_EQ(engine.run([&](CProgress*) { return DeleteSmartShapes(5, 2); }), 0);
    EXPECT_EQ(marksOf(twice, {5, 6, 7}), "");
    EXPECT_EQ(marksOf(lost, {5, 6, 7}), "1 3 ;6 ") << "without its record it is sought in one measure";
    EXPECT_EQ(marksOf(other, {5, 6, 7}), "1 2 3 ;6 ;7 ");
    EXPECT_FALSE(EDTCenterShape().Load(twice, 1));
    EXPECT_TRUE(EDTCenterShape().Load(other, 1));
}

}  // namespace
}  // namespace rovescio::test
