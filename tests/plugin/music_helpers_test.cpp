// Points and regions of the score.
#include "util/music_helpers.h"

#include <gtest/gtest.h>

#include "kit/engine_bundle.h"
#include "kit/music_points.h"

#define HOST_DOUBLE extern "C" __attribute__((visibility("default"), used)) inline

// The score's measures are twice as long as those of staff 2; nothing is known of staff 9.
HOST_DOUBLE std::int32_t SX_GetMeasureDuration(short staff, short /*measure*/, std::uint32_t /*version*/) {
    return staff == 9 ? 0 : staff == 2 ? 2048 : 4096;
}

// Staff list 5 shows staves 3 and 4 in slots 1 and 2; of all staves, staff 4 has no slot.
HOST_DOUBLE short SX_SlotToInst(short slot, std::uint16_t /*staffList*/, std::uint32_t /*version*/) {
    return static_cast<short>(slot + 2);
}
HOST_DOUBLE short SX_InstToSlot(short staff, std::uint16_t staffList, std::uint32_t /*version*/) {
    return staffList == 0 && staff == 3 ? 30 : 0;
}

namespace {

TEST(MusicPoints, LieInARegionWithBothItsEnds) {
    InitializeGlobals();
    const EREGION region{{0, 1, 2, 1024}, {0, 1, 4, 2048}};
    const EREGION fromStart{{0, 1, 2, 0}, {0, 1, 2, 100}};
    const EREGION late{{0, 1, 2, 0x7FFFFFFE}, {0, 1, 2, 0x7FFFFFFF}};
    const struct {
        const EREGION& region;
        int measure, position, staff;
        bool inside;
    } cases[] = {
        {region, 1, 4000, 0, false},   {region, 2, 1023, 0, false}, {region, 2, 1024, 0, true},
        {region, 3, -9, 0, true},      {region, 4, 2048, 0, true},  {region, 4, 2049, 0, false},
        {region, 5, 0, 0, false},      {region, 2, 511, 2, false},  {region, 2, 512, 2, true},
        {region, 4, 1025, 2, false},   {region, 2, 1024, 3, true},  {fromStart, 2, -5, 0, true},
        {fromStart, 2, 101, 0, false}, {region, 2, 1, 9, true},     {late, 2, 0x7FFFFFFE, 3, true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(InRegion(c.measure, c.position, c.staff, c.region, 1), c.inside)
            << c.measure << ':' << c.position << " staff " << c.staff;
    }
    EXPECT_EQ(SafeGetMeasureDuration(9, 1), 1);
}

TEST(MusicPoints, AreMovedToTheListOfAllStaves) {
    InitializeGlobals();
    const EMUSICPOINT point{5, 1, 3, 64};
    EREGION region{point, {5, 2, 6, 0}};
    EXPECT_FALSE(TranslateRegionToGlobalStaffList(region));
    EXPECT_TRUE(MusicPointsEqual(region.start, {0, 30, 3, 64}));
    EXPECT_TRUE(MusicPointsEqual(region.end, {0, 0, 6, 0}));
    region = {point, {0, 8, 6, 0}};
    EXPECT_TRUE(TranslateRegionToGlobalStaffList(region));
    EXPECT_EQ(+region.end.slot, 8);
}

}  // namespace
