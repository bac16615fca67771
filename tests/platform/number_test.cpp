// Numbers and booleans: conversion between widths, and what a conversion loses.
#include <cmath>
#include <limits>

#include "support.h"

namespace platform_tests {
namespace {

Held<CFNumberRef> integer(SInt64 value) {
    return Held<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

Held<CFNumberRef> floating(double value) {
    return Held<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
}

template <class T>
bool fits(const Held<CFNumberRef>& number, CFNumberType type, T expected) {
    T value{};
    const bool isExact = CFNumberGetValue(number.get(), type, &value) != 0;
    return isExact && value == expected;
}

TEST(Numbers, AreReadInAnyWidthThatHoldsThem) {
    EXPECT_TRUE(fits<SInt8>(integer(-128), kCFNumberSInt8Type, -128));
    EXPECT_TRUE(fits<SInt16>(integer(30000), kCFNumberShortType, 30000));
    EXPECT_TRUE(fits<int>(floating(-7.0), kCFNumberIntType, -7));
    EXPECT_TRUE(fits<long>(integer(1L << 30), kCFNumberLongType, 1L << 30));
    EXPECT_TRUE(fits<SInt64>(integer(std::numeric_limits<SInt64>::min()), kCFNumberLongLongType,
                             std::numeric_limits<SInt64>::min()));
    EXPECT_TRUE(fits<float>(floating(0.5), kCFNumberFloatType, 0.5F));
    EXPECT_TRUE(fits<double>(integer(3), kCFNumberDoubleType, 3.0));
}

template <class T>
void expectToComeBack(CFNumberType type, T value) {
    const Held<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, type, &value));
    EXPECT_TRUE(fits<T>(number, type, value)) << type;
}

TEST(Numbers, ComeBackFromEveryType) {
    expectToComeBack<SInt8>(kCFNumberCharType, -5);
    expectToComeBack<SInt16>(kCFNumberSInt16Type, -500);
    expectToComeBack<SInt32>(kCFNumberSInt32Type, -70000);
    expectToComeBack<SInt64>(kCFNumberSInt64Type, SInt64{-1} << 60);
    expectToComeBack<CFIndex>(kCFNumberCFIndexType, -9);
    expectToComeBack<float>(kCFNumberFloat32Type, 0.1F);
    expectToComeBack<double>(kCFNumberFloat64Type, 0.1);
}

TEST(Numbers, SayWhenAConversionLosesSomething) {
    SInt16 narrow = 0;
    int whole = 0;
    SInt64 wide = 0;
    float coarse = 0;
    EXPECT_FALSE(CFNumberGetValue(integer(40000).get(), kCFNumberSInt16Type, &narrow));
    EXPECT_FALSE(CFNumberGetValue(floating(2.5).get(), kCFNumberIntType, &whole));
    EXPECT_EQ(whole, 2);
    EXPECT_FALSE(CFNumberGetValue(floating(1e300).get(), kCFNumberSInt64Type, &wide));
    EXPECT_FALSE(CFNumberGetValue(floating(-INFINITY).get(), kCFNumberSInt64Type, &wide));
    EXPECT_FALSE(CFNumberGetValue(floating(NAN).get(), kCFNumberSInt64Type, &wide));
    EXPECT_FALSE(CFNumberGetValue(floating(0.1).get(), kCFNumberFloatType, &coarse));
    EXPECT_FALSE(CFNumberGetValue(integer((1L << 24) + 1).get(), kCFNumberFloatType, &coarse));
}

TEST(Numbers, AreEqualByValue) {
    EXPECT_TRUE(CFEqual(integer(3).get(), floating(3.0).get()));
    EXPECT_FALSE(CFEqual(floating(3.5).get(), integer(3).get()));
    EXPECT_TRUE(CFEqual(integer(3).get(), integer(3).get()));
    EXPECT_EQ(CFGetTypeID(integer(3).get()), CFNumberGetTypeID());
}

TEST(Booleans, AreTheTwoConstants) {
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
    EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
}

}  // namespace
}  // namespace platform_tests
