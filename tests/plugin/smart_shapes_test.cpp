// Slurs, hairpins and lines as records: under old hosts, in the old layout, with their marks.
#include "retrograde/smart_shapes.h"

#include "record_host.h"

namespace {

class SmartShapes : public RecordHostTest {
  protected:
    SmartShapes() {
        ot_smartshape = kSmartShapeTag;
        sizeofsmartshape = sizeof(EDTOldSmartShape);
    }
};

TEST_F(SmartShapes, AreKeptByOldHostsWithTheirHalvesTheOtherWayRound) {
    // Of an old or new host: a field of entries, as the host keeps it, as it comes back, as a walk gives it.
    const struct {
        std::uint32_t version;
        std::int32_t entry, kept, back, next;
        std::uint32_t flags, keptFlags;
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
        EDTSmartShape shape;
        shape.flags = c.flags;
        shape.firstEntry = shape.lastEntry = c.entry;
        std::uint16_t number = 0;
        EXPECT_TRUE(shape.CreateShapeOnly(number) && shape.SaveShapeOnly(number));
        EXPECT_EQ(std::pair(+shape.firstEntry, +shape.flags), std::pair(c.entry, c.flags));
        EDTOldSmartShape kept{};
        EDTSmartShape next;
        ASSERT_TRUE(sx_loadsmartshape(number, &kept) && shape.Load(number));
        EXPECT_TRUE(next.Next(number = 0) && !next.Next(number));
        EXPECT_EQ((std::vector{+kept.firstEntry, +kept.lastEntry, +shape.lastEntry, +next.firstEntry}),
                  (std::vector{c.kept, c.kept, c.back, c.next}));
        EXPECT_EQ((std::vector{+kept.flags, +shape.flags, +next.flags}),
                  (std::vector{c.keptFlags, c.flags, c.keptFlags}));
    }
}

TEST_F(SmartShapes, HaveTheOldLayoutSelectedByTheSizeOfTheCurrentOne) {
    EDTSmartShape shape;
    std::uint16_t number = 0;
    EXPECT_TRUE(shape.CreateShapeOnly(number));
    recordHost.records[kSmartShapeTag].at({number, 0}).resize(60);
    EXPECT_TRUE(shape.Load(number)) << "of a size that the host tells";
    EXPECT_EQ(ot_smartshape, kSmartShapeTag);
    recordHost.answer = [](const std::string&) -> short { return ++sizeofsmartshape > 0; };
    EXPECT_TRUE(shape.Load(number)) << "while the size grows";
    EXPECT_EQ(std::pair(ot_smartshape, sizeofsmartshape), std::pair(kOldSmartShapeTag, 84U));
    recordHost = {};
    EXPECT_TRUE(shape.CreateShapeOnly(number) && shape.SaveShapeOnly(number));
    EXPECT_EQ(recordHost.records[kOldSmartShapeTag].at({1, 0}).size(), 42U);
    EXPECT_TRUE(shape.Next(number = 0) && shape.EraseShapeOnly(number) && !shape.EraseShapeOnly(number));
    EXPECT_EQ(recordHost.keyed.size(), 1U);
}

TEST_F(SmartShapes, AreMadeAndErasedWithTheirMarks) {
    const auto marks = [] {
        std::string text;
        for (const std::uint32_t tag : {kSmartShapeTag, kMeasureMarkTag, kCenterShapeTag, kEntryMarkTag})
            text += std::to_string(recordHost.records[tag].size());
        return text;
    };
    EDTSmartShape shape;
    shape.firstMeasure = 2;
    shape.lastMeasure = 5;
    shape.flags = SHAPE_ON_ENTRIES;
    shape.firstEntry = 70000;
    shape.lastEntry = 6;
    std::uint16_t number = 0;
    EXPECT_TRUE(shape.FullCreate(number));
    EXPECT_EQ(recordHost.listing(kMeasureMarkTag), "2.0=1,0 3.0=1,1 4.0=1,2 5.0=1,0 ");
    EXPECT_EQ(recordHost.listing(kEntryMarkTag), "6.0.0=1,0 4464.1.0=1,0 ");
    EXPECT_TRUE(shape.FullSave(number)) << "marks it once more";
    EXPECT_EQ(marks(), "1844");
    EXPECT_TRUE(EDTSmartShapeMeasMark::FindAndEraseMarkOnly(3, number) &&
                EDTSmartShapeMeasMark::FindAndEraseMarkOnly(2, 9) &&  // of another shape
                EDTSmartShapeMeasMark::FindAndEraseWithCenterShapes(4, number));
    EXPECT_EQ(marks(), "1424");
    EXPECT_EQ(recordHost.listing(kCenterShapeTag), "1.1.0=0,0 1.3.0=0,0 ");
    const EDTSmartShape onEntries = shape;
    shape.flags = 0;
    EXPECT_TRUE(shape.FullErase(number) && !shape.FullErase(number));
    EXPECT_EQ(marks(), "0024");
    onEntries.EraseCenterShapesAndMarkers(number);
    EXPECT_EQ(marks(), "0020");
    EDTCenterShape center;
    std::uint16_t centerNumber = 0;
    recordHost.answer = [](const std::string& call) -> short { return !call.starts_with("create 6f744d78"); };
    EXPECT_FALSE(center.FullCreate(3, number, centerNumber)) << "without its mark";
    EXPECT_TRUE(center.Load(number, centerNumber) && center.Save(number, centerNumber));
    EXPECT_TRUE(center.EraseShapeOnly(number, centerNumber) && !center.EraseShapeOnly(number, centerNumber));
    // Drawing helpers work on the record alone.
    EXPECT_TRUE(shape.CreateShapeOnly(number = 0));
    TSmartShape drawn(number);
    drawn.SetVertical(TSmartShape::kFirstPoint, 12);
    drawn.Straighten();
    EXPECT_TRUE(drawn.Save() && TSmartShape(number).exists() && !TSmartShape(9).exists());
    EXPECT_EQ(TSmartShape(number).GetVertical(TSmartShape::kLastPoint), 12);
}

}  // namespace
