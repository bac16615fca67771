// Strings as texts, numbers read from them or made, comparison, identity.
#include <cmath>
#include <limits>
#include <vector>

#include "support.h"

namespace platform_tests {
namespace {

TEST(IntValue, ReadsTheNumberAtTheStart) {
    const SInt32 most = 2147483647;
    using Row = std::pair<SInt32, std::vector<std::u16string_view>>;
    const auto cases = table(
        Row{7, {u" 7"}}, Row{12, {u"12abc"}}, Row{5, {u"+5"}}, Row{9, {u"\t\r\n\u00A09"}}, Row{3, {u"3.9"}},
        Row{most, {u"2147483647", u"2147483648", u"99999999999"}}, Row{1, {u"1e3"}},
        Row{0, {u"x1", u"", u" ", u"-", u"--5", u"\uFF11\uFF12", u"0x10"}}, Row{-5, {u"- 5"}},
        Row{-most - 1, {u"-2147483648", u"-99999999999", u"-99999999999999999999999"}}, Row{10, {u"010"}});
    for (const auto& [value, texts] : cases)
        for (const auto text : texts)
            EXPECT_EQ(CFStringGetIntValue(string(text).get()), value) << PrintToString(text);
}

TEST(Compare, OrdersByUnitsUnlessFlagsSayOtherwise) {
    const CFStringCompareFlags kNoCase = kCFCompareCaseInsensitive;
    const CFStringCompareFlags kNumbers = kCFCompareNumerically;
    const std::u16string nines(25, u'9');
    const struct {
        std::u16string first, second;
        CFStringCompareFlags flags;
        CFIndex result;
    } cases[] = {
        {u"A", u"a", 0, -1},          {u"a7", u"a007b", kNumbers, -1},
        {u"ab", u"abc", 0, -1},       {u"", u"", kNoCase | kNumbers, 0},
        {u"A", u"a", kNoCase, 0},     {u"item10", u"item9", kNumbers, 1},
        {u"b", u"A", kNoCase, 1},     {u"\U00010400", u"\U00010428", kNoCase, 0},
        {u"ÉtÉ", u"éTé", kNoCase, 0}, {nines + u"8", nines + u"9", kNumbers, -1},
        {u"item10", u"item9", 0, -1}, {u"ITEM2b", u"item10a", kNoCase | kNumbers, -1},
    };
    for (const auto& [first, second, flags, result] : cases) {
        const auto left = string(first);
        const auto right = string(second);
        EXPECT_EQ(CFStringCompare(left.get(), right.get(), flags), result) << PrintToString(first);
        EXPECT_EQ(CFStringCompare(right.get(), left.get(), flags), -result) << PrintToString(first);
    }
}

TEST(Characters, AreCopiedUnitByUnit) {
    const std::u16string_view text(u"a\0\xD83D\xDE00\xDC00z", 6);
    const auto made = string(text);
    EXPECT_EQ(CFStringGetLength(made.get()), 6);
    EXPECT_EQ(units(made), text);
    EXPECT_EQ(CFStringGetCharacterAtIndex(made.get(), 2), 0xD83D);
    UniChar middle[] = {0, 0, 0x7777};
    CFStringGetCharacters(made.get(), CFRangeMake(4, 2), middle);
    EXPECT_EQ(std::u16string(std::begin(middle), std::end(middle)), u"\xDC00z\x7777");
}

TEST(Equality, IsByContentAndKind) {
    const auto text = string(u"axis");
    const int answer = 42;
    const Held<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &answer));
    EXPECT_TRUE(CFEqual(text.get(), string(u"axis").get()));
    EXPECT_TRUE(CFEqual(text.get(), CFSTR("axis")));
    EXPECT_FALSE(CFEqual(text.get(), CFSTR("Axis")));
    EXPECT_FALSE(CFEqual(string(u"42").get(), number.get()));
    EXPECT_EQ(CFGetTypeID(text.get()), CFStringGetTypeID());
    EXPECT_NE(CFGetTypeID(number.get()), CFStringGetTypeID());
}

template <class T>
void expectNumber(double number, CFNumberType type, T expected, bool isExact = true) {
    const Held<CFNumberRef> object(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &number));
    T value{};
    EXPECT_EQ(CFNumberGetValue(object.get(), type, &value) != 0, isExact) << number;
    EXPECT_TRUE(value == expected || (!isExact && expected == 0)) << number;
    if (!isExact) return;
    const Held<CFNumberRef> back(CFNumberCreate(kCFAllocatorDefault, type, &value));
    EXPECT_TRUE(CFEqual(back.get(), object.get())) << number;
    T again{};
    EXPECT_TRUE(CFNumberGetValue(back.get(), type, &again) && again == value) << number;
}

TEST(Numbers, AreReadInAnyWidthThatHoldsThem) {
    expectNumber<SInt8>(-128, kCFNumberSInt8Type, -128);
    expectNumber<SInt8>(-5, kCFNumberCharType, -5);
    expectNumber<SInt16>(30000, kCFNumberShortType, 30000);
    expectNumber<SInt16>(40000, kCFNumberSInt16Type, 0, false);
    expectNumber<int>(-70000, kCFNumberIntType, -70000);
    expectNumber<int>(2.5, kCFNumberIntType, 2, false);
    expectNumber<SInt64>(-0x1p63, kCFNumberLongLongType, std::numeric_limits<SInt64>::min());
    expectNumber<CFIndex>(-9, kCFNumberCFIndexType, -9);
    for (const double lost : {1e300, -std::numeric_limits<double>::infinity(), std::nan("")})
        expectNumber<SInt64>(lost, kCFNumberSInt64Type, 0, false);
    expectNumber<float>(0.5, kCFNumberFloatType, 0.5F);
    for (const double lost : {0.1, 0x1p24 + 1}) expectNumber<float>(lost, kCFNumberFloatType, 0, false);
    expectNumber<double>(0.1, kCFNumberFloat64Type, 0.1);
    const SInt64 wide = (1L << 24) + 1;
    const Held<CFNumberRef> whole(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &wide));
    float coarse = 0;
    EXPECT_FALSE(CFNumberGetValue(whole.get(), kCFNumberFloatType, &coarse));
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue) && !CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
    EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
}

TEST(NullArguments, EndTheProcess) {
    // NOLINTNEXTLINE(clang-analyzer-osx.coreFoundation.CFRetainRelease): the fault under test
    EXPECT_DEATH(CFRelease(nullptr), "");
    EXPECT_DEATH(CFStringGetLength(nullptr), "");
    EXPECT_DEATH(CFStringGetIntValue(nullptr), "");
    EXPECT_DEATH(HeldString(CFStringCreateWithCString(kCFAllocatorDefault, nullptr, kCFStringEncodingUTF8)),
                 "");
}

}  // namespace
}  // namespace platform_tests
