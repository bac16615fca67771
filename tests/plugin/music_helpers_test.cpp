// Note values, points and regions of the score, and the keyboard that plays no part in it.
#include "util/music_helpers.h"

#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "host_function.h"
#include "kit/engine_bundle.h"
#include "kit/music_points.h"
#include "shell/keyboard.h"

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

// The keys with the codes 0, 9 and 127 are held down.
HOST_DOUBLE void GetKeys(KeyMap keys) {
    UInt8 bytes[16] = {1, 2};
    bytes[15] = 0x80;
    std::memcpy(keys, bytes, sizeof bytes);
}

namespace {

TEST(NoteValues, HaveABaseDotsAndAFraction) {
    const struct {
        int duration, log2, base, dots, numerator, denominator;
    } cases[] = {
        {1, 0, 1, 0, 1, 1},
        {1023, 9, 512, 9, 1023, 1},
        {1024, 10, 1024, 0, 1, 1024},
        {1536, 10, 1024, 1, 3, 512},
        {1792, 10, 1024, 2, 7, 256},
        {2048, 11, 2048, 0, 1, 2048},
        {4096, 12, 4096, 0, 2, 2048},
        {6144, 12, 4096, 1, 3, 2048},
        // So near to 2 to the 28th that its logarithm is taken for 28.
        {0x0FFFFFFF, 28, 0x08000000, 27, 0x0FFFFFFF, 1},
        {0x7FFFFFFF, 31, 0x40000000, 30, 0x7FFFFFFF, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.duration);
        int numerator = 0;
        int denominator = 0;
        EXPECT_EQ(IntLog2(c.duration), c.log2);
        EXPECT_EQ(DotsBase(c.duration), c.base);
        EXPECT_EQ(CountDots(c.duration), c.dots);
        EXPECT_EQ(CalcNumDen(c.duration, numerator, denominator), c.numerator);
        EXPECT_EQ(std::pair(numerator, denominator), std::pair(c.numerator, c.denominator));
    }
    EXPECT_EQ(DotsBase(0) + DotsBase(-8), 0);
}

TEST(ValidPointer, IsNoneWithTheSameByteFourTimesAtItsEnd) {
    const std::pair<std::uintptr_t, bool> cases[] = {
        {0, false},         {0x12121212, false}, {0xFFFFFFFF, false},  {0x712121212, false},
        {0x12121213, true}, {0x13121212, true},  {0x700000000, false}, {0x12131212, true},
    };
    for (const auto& [address, valid] : cases)
        EXPECT_EQ(ValidPointer(reinterpret_cast<const void*>(address)), valid) << address;
}

TEST(Keyboard, HasAKeyDownForEveryBitOfItsMap) {
    std::set<int> down;
    for (int code = -130; code < 260; ++code) {
        const short answer = KbdUtilKeyIsDown(static_cast<short>(code));
        EXPECT_TRUE(answer == 0 || (answer == 1 && down.insert(code).second)) << code;
    }
    EXPECT_EQ(down, (std::set<int>{0, 9, 127}));
}

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

TEST(MusicPoints, AreEqualInAllFourNumbers) {
    const EMUSICPOINT point{5, 1, 3, 64};
    EXPECT_TRUE(MusicPointsEqual(point, point));
    for (const EMUSICPOINT& other : {EMUSICPOINT{4, 1, 3, 64}, {5, 2, 3, 64}, {5, 1, 2, 64}, {5, 1, 3, 63}})
        EXPECT_FALSE(MusicPointsEqual(point, other));
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
