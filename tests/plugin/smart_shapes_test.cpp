// Smart shapes with their marks and center shapes, and the two layouts of their record.
#include "retrograde/smart_shapes.h"

#include <gtest/gtest.h>

#include "record_host.h"

namespace {

class SmartShapes : public testing::Test {
  protected:
    SmartShapes() {
        InitializeGlobals();
        recordHost = {};
        QorVersion = kKitVersion;
        ot_smartshape = kSmartShapeTag;
        sizeofsmartshape = sizeof(EDTOldSmartShape);
    }
    static EDTSmartShape shapeOver(short first, short last, std::uint32_t flags = 0) {
        EDTSmartShape shape;
        shape.firstMeasure = first;
        shape.lastMeasure = last;
        shape.firstEntry = 21;
        shape.lastEntry = 22;
        shape.flags = flags;
        return shape;
    }
    // Measure marks | center shapes | entry marks
    static std::string parts() {
        return recordHost.listing(kMeasureMarkTag) + "| " + recordHost.listing(kCenterShapeTag) + "| " +
               recordHost.listing(kEntryMarkTag);
    }
};

TEST_F(SmartShapes, LeaveMarksWhereTheyPassAndTakeThemAlong) {
    const struct {
        short first, last;
        std::uint32_t flags;
        const char* parts;
    } cases[] = {
        {3, 3, 0, "3.0=7,0 3.1=1,0 | | 21.0.0=7,0 "},
        {3, 4, SHAPE_ON_ENTRIES, "3.0=7,0 3.1=1,0 4.0=1,0 | | 21.0.0=7,0 21.0.1=1,0 22.0.0=1,0 "},
        {1, 3, ~SHAPE_ON_ENTRIES, "1.0=1,0 2.0=1,1 3.0=7,0 3.1=1,0 | 1.1.0=0,0 | 21.0.0=7,0 "},
        {1, 4, 0, "1.0=1,0 2.0=1,1 3.0=7,0 3.1=1,2 4.0=1,0 | 1.1.0=0,0 1.2.0=0,0 | 21.0.0=7,0 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.parts);
        recordHost = {};
        std::uint16_t inci = 0;
        EDTSmartShapeMeasMark(7).Create(3, inci);
        EDTSmartShapeEntMark(7).Create(21, inci);
        const std::string others = parts();
        std::uint16_t number = 0;
        EXPECT_TRUE(shapeOver(c.first, c.last, c.flags).FullCreate(number));
        EXPECT_EQ(number, 1);
        EXPECT_EQ(parts(), c.parts);
        EDTSmartShape loaded;
        EXPECT_TRUE(loaded.Load(1));
        EXPECT_TRUE(loaded.FullErase(1));
        EXPECT_EQ(parts(), others);
        EXPECT_FALSE(loaded.Load(1));
    }
}

TEST_F(SmartShapes, GoOnWhenTheHostRefusesAStep) {
    std::uint16_t number = 0;
    recordHost.answer = [](const std::string& call) -> short { return !call.starts_with("create 4f085378"); };
    EXPECT_FALSE(shapeOver(1, 1).FullCreate(number));
    EXPECT_EQ(number, kAppendNumber);
    EXPECT_EQ(parts(), "1.0=65535,0 | | ");
    // A mark that stays is passed over; the rest of the shape goes.
    recordHost = {};
    EXPECT_TRUE(shapeOver(1, 3).FullCreate(number));
    recordHost.answer = [](const std::string& call) -> short { return call != "delete 6f744d78 2.0"; };
    EXPECT_TRUE(shapeOver(1, 3).FullErase(number));
    EXPECT_EQ(parts(), "2.0=1,1 | | ");
    recordHost.answer = {};
    EXPECT_TRUE(EDTSmartShapeMeasMark::FindAndEraseMarkOnly(2, 1));
    EXPECT_TRUE(shapeOver(1, 3).FullSave(9) && shapeOver(1, 3).FullSave(9));
    EXPECT_TRUE(EDTSmartShapeMeasMark::FindAndEraseMarkOnly(2, 9));
    EXPECT_EQ(parts(), "1.0=9,0 1.1=9,0 3.0=9,0 3.1=9,0 | 9.1.0=0,0 9.2.0=0,0 | ");
    EXPECT_TRUE(shapeOver(1, 3).FullErase(9));
    EXPECT_EQ(parts(), "| 9.1.0=0,0 9.2.0=0,0 | ");
}

TEST_F(SmartShapes, OldHostsKeepTheHalvesTheOtherWayRound) {
    const struct {
        std::uint32_t version;
        std::int32_t entry, swapped, back, next;
        std::uint32_t flags, rotated;
    } cases[] = {
        {0x0AFFFFFF, 0x00010002, 0x00020001, 0x00010002, 0x00010002, 0x40001234, 0x12344000},
        {0x0B000000, 0x00010002, 0x00010002, 0x00010002, 0x00020001, 0x40001234, 0x40001234},
        // The division cuts toward zero.
        {0, -0x10000, -1, -0x10000, -0x10000, 0x80000001, 0x00018000},
        {0, -0x10001, -0x10001, -0x10001, -0x10001, 1, 0x10000},
        {0, -0x7FFFF, 0x0000FFF9, -0x70000, -0x70000, 1, 0x10000},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.entry);
        recordHost = {};
        QorVersion = c.version;
        EDTSmartShape shape = shapeOver(1, 1, c.flags);
        shape.firstEntry = shape.lastEntry = c.entry;
        std::uint16_t number = 0;
        EXPECT_TRUE(shape.CreateShapeOnly(number) && shape.SaveShapeOnly(number));
        EXPECT_EQ(+shape.firstEntry, c.entry);
        EXPECT_EQ(+shape.flags, c.flags);
        EDTOldSmartShape kept{};
        EDTSmartShape next;
        ASSERT_TRUE(sx_loadsmartshape(number, &kept) && shape.Load(number));
        EXPECT_TRUE(next.Next(number = 0) && !next.Next(number));
        EXPECT_EQ((std::vector{+kept.firstEntry, +kept.lastEntry, +shape.lastEntry, +next.firstEntry}),
                  (std::vector{c.swapped, c.swapped, c.back, c.next}));
        EXPECT_EQ((std::vector{+kept.flags, +shape.flags, +next.flags}),
                  (std::vector{c.rotated, c.flags, c.rotated}));
    }
}

TEST_F(SmartShapes, TheOldLayoutIsTurnedOnByHandOrWhenTheCurrentSizeGrows) {
    EDTSmartShape shape;
    recordHost.records[kSmartShapeTag][{1, 0}].assign(60, 0);
    EXPECT_TRUE(shape.Load(1));
    EXPECT_EQ(sizeofsmartshape, 92U);
    for (const auto& [size, after] : std::map<std::uint32_t, std::uint32_t>{{91, 91}, {93, 84}}) {
        sizeofsmartshape = 92;
        recordHost.answer = [grown = size](const std::string&) -> short {
            sizeofsmartshape = grown;
            return 1;
        };
        shape.Load(1);
        EXPECT_EQ(sizeofsmartshape, after);
    }
    EXPECT_EQ(ot_smartshape, 0x4F075378U);
    recordHost = {};
    std::uint16_t number = 0;
    EXPECT_TRUE(shape.CreateShapeOnly(number));
    EXPECT_EQ((recordHost.records[0x4F075378][{1, 0}].size()), 42U);
}

TEST_F(SmartShapes, AreDrawnThroughTheirRecord) {
    std::uint16_t number = 0;
    shapeOver(1, 2).CreateShapeOnly(number);
    EXPECT_FALSE(TSmartShape(2).exists());
    TSmartShape drawn(number);
    drawn.SetVertical(TSmartShape::kFirstPoint, -30);
    drawn.Straighten();
    drawn.SetKind(SHAPE_LINE);
    drawn.SetText(5);
    EXPECT_TRUE(drawn.exists() && drawn.Save());
    const TSmartShape again(number);
    EXPECT_EQ(again.GetVertical(TSmartShape::kLastPoint), -30);
    EXPECT_EQ((std::vector{again.GetKind(), again.GetText()}), (std::vector<std::uint16_t>{SHAPE_LINE, 5}));
}

}  // namespace
