// The check of a selection before a retrograde: what it finds, where it looks, what it repairs.
#include "retrograde/selection_check.h"

#include <array>

#include "engine_fixture.h"
#include "retrograde/shape_removal.h"
#include "retrograde/smart_shapes.h"

namespace rovescio::test {
namespace {

using engine::FrameAddress;
using engine::PackedEntries;

constexpr std::uint32_t kVoice2 = 0x10000000;
constexpr std::uint32_t kStartsVoice2 = 0x20000000;

class SelectionCheckTest : public testing::Test {
  protected:
    SelectionCheckTest() { engine.session.selection = EngineFixture::region(1, 2, 1, 2); }

    void setFlags(const FrameAddress& frame, std::size_t index, std::uint32_t entryFlags) {
        editEntries(engine.document, frame, [&](auto& entries) { entries[index].entryFlags |= entryFlags; });
    }

    std::uint16_t check(short fix = 0) {
        return static_cast<std::uint16_t>(engine.run([&](CProgress* progress) {
            return static_cast<short>(VerifyRetrogradeSelection(progress, fix));
        }));
    }

    // The flags of second voices of each entry in a measure of the first staff, 1 for a member, 2 for a
    // start.
    [[nodiscard]] std::string voices(short measure) const {
        std::string text;
        for (const auto& entry : engine.document.entries({1, measure, 0}))
            text += std::to_string(entry.entryFlags >> 28 & 3);
        return text;
    }

    EngineFixture engine{
        {"C 4/4 c4:q d4:q e4:q f4:q | g4:q a4:q b4:q c5:q | d5:w", "C 4/4 e4:w | f4:w | g4:w"}};
};

TEST_F(SelectionCheckTest, FindsProblemsInsideTheSelectionAlone) {
    setFlags({1, 1, 0}, 1, kStartsVoice2);
    setFlags({1, 1, 0}, 2, kVoice2);
    addLayer(engine.document, 1, 1, "g4:h a4:h | |");
    setFlags({1, 1, 1}, 1, kVoice2);
    engine.session.layerShown = {true, false, false, false};
    engine.document.staffMeasure(2, 2).changesInside = true;
    const struct {
        short startSlot, endSlot, startMeasure, endMeasure;
        std::int32_t start, end;
        int problems;
    } cases[] = {
        {1, 2, 1, 2, 0, 4095, 12}, {1, 1, 1, 2, 0, 4095, 4},    {1, 1, 1, 1, 2048, 2048, 4},
        {1, 1, 1, 1, 0, 2047, 0},  {1, 1, 1, 1, 2049, 4095, 0}, {1, 2, 2, 1, 0, 4095, 0},
        {2, 1, 1, 2, 0, 4095, 0},  {1, 2, 2, 2, 0, 0, 8},
    };
    for (const auto& c : cases) {
        engine.session.selection =
            EngineFixture::region(c.startSlot, c.endSlot, c.startMeasure, c.endMeasure, c.start, c.end);
        EXPECT_EQ(check(), c.problems)
            << c.startMeasure << ':' << c.start << " - " << c.endMeasure << ':' << c.end;
    }
    // Layers that are not shown are checked like the others.
    setFlags({1, 2, 0}, 0, 0);
    engine.session.selection = EngineFixture::region(1, 1, 1, 1, 2049, 4095);
    addLayer(engine.document, 1, 2, "r:h. g4:q | |");
    setFlags({1, 1, 2}, 1, kVoice2);
    EXPECT_EQ(check(), 4);
    engine.session.selection.reset();
    EXPECT_EQ(check(), 2);
    EXPECT_EQ(check(1), 2);
}

TEST_F(SelectionCheckTest, PollsForEveryFrameAndGivesNothingAfterACancel) {
    engine.document.staffMeasure(1, 1).changesInside = true;
    CallTrace trace;
    EXPECT_EQ(check(), 8);
    EXPECT_TRUE(trace.walk().starts_with("poll s1m1l0 poll s1m2l0 poll s1m1l1 poll s1m2l1 poll s1m1l2 "))
        << trace.walk();
    engine.front.cancelAfter = engine.front.polls + 5;
    EXPECT_EQ(check(), 0);
    EXPECT_TRUE(engine.cancelled);
    CProgress progress;
    progress.cancelled = 1;
    EXPECT_EQ(VerifyRetrogradeSelection(&progress, 0), 0);
}

TEST_F(SelectionCheckTest, RepairsSecondVoices) {
    const struct {
        std::array<std::uint32_t, 4> flags;
        const char* after;
        const char* voices;
    } cases[] = {
        {{0, kStartsVoice2, kVoice2, 0}, "c4:q d4:q f4:q", "000"},
        {{kStartsVoice2, kVoice2, kStartsVoice2, kVoice2}, "c4:q e4:q", "00"},
        // The first entry has none before it.
        {{kVoice2, kStartsVoice2, 0, 0}, "d4:q e4:q f4:q", "200"},
        {{kVoice2, kVoice2, kVoice2, kVoice2}, "", ""},
        {{kStartsVoice2, 0, 0, 0}, "c4:q d4:q e4:q f4:q", "2000"},
    };
    const PackedEntries original = engine.document.entries({1, 1, 0}).copy();
    for (const auto& c : cases) {
        for (std::size_t i = 0; i < c.flags.size(); ++i) setFlags({1, 1, 0}, i, c.flags[i]);
        EXPECT_EQ(check(1), 0);
        std::string expected = c.after;
        expected += " | g4:q a4:q b4:q c5:q | d5:w";
        EXPECT_EQ(textOf(engine.document), expected);
        EXPECT_EQ(voices(1), c.voices);
        EXPECT_EQ(check(), 0);
        PackedEntries clean = original.copy();
        engine.document.exchangeEntries({1, 1, 0}, clean);
    }
}

// With shapes attached to entries.
class ShapesTest : public SelectionCheckTest {
  protected:
    std::uint16_t addShape(short firstMeasure, short lastMeasure, std::uint32_t firstEntry,
                           std::uint32_t lastEntry) {
        EDTSmartShape shape;
        shape.flags = SHAPE_ON_ENTRIES;
        shape.firstMeasure = firstMeasure;
        shape.lastMeasure = lastMeasure;
        shape.firstEntry = static_cast<std::int32_t>(firstEntry);
        shape.lastEntry = static_cast<std::int32_t>(lastEntry);
        std::uint16_t number = 0;
        engine.run([&](CProgress*) { return shape.FullCreate(number); });
        EXPECT_NE(number, 0);
        return number;
    }
    [[nodiscard]] std::uint32_t entryNumber(short measure, std::size_t index) const {
        return engine.document.entries({1, measure, 0})[index].entryNumber;
    }
    void deleteShapes(std::uint32_t entry, int measure) {
        engine.run([&](CProgress*) {
            EXPECT_FALSE(DeleteSmartShapes(entry, measure));
            return short{1};
        });
    }
    // The measures in which a shape has marks, and the entries, as "1 2 ; 5".
    static std::string marksOf(std::uint16_t shape, const std::vector<std::uint32_t>& entries) {
        std::ostringstream text;
        EDTSmartShapeMeasMark measureMark;
        for (short measure = 1; measure <= 3; ++measure) {
            for (std::uint16_t inci = 0; inci < 9 && measureMark.Load(measure, inci); ++inci)
                if (measureMark.shapeNumber == shape) text << measure << ' ';
        }
        EDTSmartShapeEntMark entryMark;
        for (const std::uint32_t entry : entries) {
            for (std::uint16_t inci = 0; inci < 9 && entryMark.Load(entry, inci); ++inci)
                if (entryMark.shapeNumber == shape) text << "; " << entry;
        }
        return text.str();
    }
};

TEST_F(ShapesTest, StopsOnceItHasFoundEveryProblem) {
    setFlags({1, 2, 0}, 1, kVoice2);
    addShape(2, 2, entryNumber(2, 2), entryNumber(2, 3));
    engine.document.staffMeasure(1, 2).changesInside = true;
    const CallTrace trace;
    EXPECT_EQ(check(), 268);
    EXPECT_EQ(trace.walk(), "poll s1m1l0 poll s1m2l0 ");
    engine.session.selection = EngineFixture::region(1, 1, 2, 2, 2048, 2048);
    EXPECT_EQ(check(), 0x108);
}

// After a deletion the entry before it is looked at once more, even outside the selection.
TEST_F(ShapesTest, RepairLooksAtTheEntryBeforeADeletedOne) {
    const std::uint32_t ends[] = {entryNumber(1, 0), entryNumber(1, 1)};
    const std::uint16_t shape = addShape(1, 1, ends[0], ends[1]);
    setFlags({1, 1, 0}, 2, kVoice2);
    engine.session.selection = EngineFixture::region(1, 1, 1, 1, 2048, 4095);
    EXPECT_EQ(check(1), 0);
    EXPECT_EQ(textOf(engine.document), "c4:q d4:q f4:q | g4:q a4:q b4:q c5:q | d5:w");
    EXPECT_EQ(marksOf(shape, {ends[0], ends[1]}), "; " + std::to_string(ends[0]));
}

TEST_F(ShapesTest, DeleteSmartShapesRemovesEveryShapeOfTheEntryAndNoOther) {
    const std::uint16_t twice = addShape(1, 3, 5, 5);
    const std::uint16_t lost = addShape(1, 3, 5, 6);
    const std::uint16_t other = addShape(1, 3, 6, 7);
    engine.run([&](CProgress*) { return EDTSmartShape().EraseShapeOnly(lost); });
    EXPECT_EQ(marksOf(twice, {5}), "1 2 3 ; 5; 5");
    deleteShapes(5, 2);
    EXPECT_EQ(marksOf(twice, {5, 6, 7}), "");
    EXPECT_EQ(marksOf(lost, {5, 6, 7}), "1 3 ; 6") << "without its record it is sought in one measure";
    EXPECT_EQ(marksOf(other, {5, 6, 7}), "1 2 3 ; 6; 7");
    EXPECT_FALSE(EDTCenterShape().Load(twice, 1));
    EXPECT_TRUE(EDTCenterShape().Load(other, 1));
}

}  // namespace
}  // namespace rovescio::test
