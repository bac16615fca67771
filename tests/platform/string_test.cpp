// Strings as texts: lengths, numbers read from them, comparison, identity.
#include "support.h"

namespace platform_tests {
namespace {

struct IntegerCase {
    std::u16string_view text;
    SInt32 value;
};

TEST(IntValue, ReadsTheNumberAtTheStart) {
    const IntegerCase cases[] = {
        {u"x1", 0},
        {u"", 0},
        {u" ", 0},
        {u"-", 0},
        {u"--5", 0},
        {u"\uFF11\uFF12", 0},
        {u"12abc", 12},
        {u" 7", 7},
        {u"\t\r\n\u00A09", 9},
        {u"+5", 5},
        {u"- 5", -5},
        {u"3.9", 3},
        {u"1e3", 1},
        {u"0x10", 0},
        {u"010", 10},
        {u"2147483647", 2147483647},
        {u"2147483648", 2147483647},
        {u"-2147483648", -2147483647 - 1},
        {u"99999999999", 2147483647},
        {u"-99999999999999999999999", -2147483647 - 1},
    };
    for (const IntegerCase& row : cases) {
        EXPECT_EQ(CFStringGetIntValue(string(row.text).get()), row.value)
            << ::testing::PrintToString(row.text);
    }
}

struct CompareCase {
    std::u16string_view first;
    std::u16string_view second;
    CFStringCompareFlags flags;
    CFComparisonResult result;
};

TEST(Compare, OrdersByUnitsUnlessFlagsSayOtherwise) {
    const CFStringCompareFlags kPlain = 0;
    const CFStringCompareFlags kBoth = kCFCompareCaseInsensitive | kCFCompareNumerically;
    const CompareCase cases[] = {
        {u"A", u"a", kPlain, kCFCompareLessThan},
        {u"A", u"a", kCFCompareCaseInsensitive, kCFCompareEqualTo},
        {u"\u00C9t\u00C9", u"\u00E9T\u00E9", kCFCompareCaseInsensitive, kCFCompareEqualTo},
        {u"\U00010400", u"\U00010428", kCFCompareCaseInsensitive, kCFCompareEqualTo},
        {u"b", u"A", kCFCompareCaseInsensitive, kCFCompareGreaterThan},
        {u"item10", u"item9", kPlain, kCFCompareLessThan},
        {u"item10", u"item9", kCFCompareNumerically, kCFCompareGreaterThan},
        {u"ITEM2b", u"item10a", kBoth, kCFCompareLessThan},
        {u"bar 99999999999999999999999998", u"bar 99999999999999999999999999", kCFCompareNumerically,
         kCFCompareLessThan},
        {u"a7", u"a007b", kCFCompareNumerically, kCFCompareLessThan},
        {u"ab", u"abc", kPlain, kCFCompareLessThan},
        {u"", u"", kBoth, kCFCompareEqualTo},
        {u"", u"a", kPlain, kCFCompareLessThan},
        {u"same", u"same", kPlain, kCFCompareEqualTo},
    };
    for (const CompareCase& row : cases) {
        const auto first = string(row.first);
        const auto second = string(row.second);
        const auto name =
            ::testing::PrintToString(row.first) + " and " + ::testing::PrintToString(row.second);
        EXPECT_EQ(CFStringCompare(first.get(), second.get(), row.flags), row.result) << name;
        EXPECT_EQ(CFStringCompare(second.get(), first.get(), row.flags), -row.result) << name;
    }
}

TEST(Characters, AreCopiedUnitByUnit) {
    const std::u16string_view text(u"a\0\xD83D\xDE00\xDC00z", 6);
    const auto made = string(text);
    EXPECT_EQ(CFStringGetLength(made.get()), 6);
    EXPECT_EQ(units(made), text);
    EXPECT_EQ(CFStringGetCharacterAtIndex(made.get(), 2), 0xD83D);
    UniChar middle[3] = {0, 0, 0x7777};
    CFStringGetCharacters(made.get(), CFRangeMake(4, 2), middle);
    EXPECT_EQ(middle[0], 0xDC00);
    EXPECT_EQ(middle[1], u'z');
    EXPECT_EQ(middle[2], 0x7777);
}

TEST(Equality, IsByContentAndKind) {
    const auto text = string(u"axis");
    const auto twin = string(u"axis");
    const int answer = 42;
    const Held<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &answer));
    EXPECT_TRUE(CFEqual(text.get(), twin.get()));
    EXPECT_TRUE(CFEqual(text.get(), CFSTR("axis")));
    EXPECT_FALSE(CFEqual(text.get(), CFSTR("Axis")));
    EXPECT_FALSE(CFEqual(string(u"42").get(), number.get()));
    EXPECT_EQ(CFGetTypeID(text.get()), CFStringGetTypeID());
    EXPECT_NE(CFGetTypeID(number.get()), CFStringGetTypeID());
}

TEST(References, KeepAnObjectUntilTheLastIsGivenBack) {
    auto text = string(u"kept");
    const HeldString copy(CFStringCreateCopy(kCFAllocatorDefault, text.get()));
    const HeldString retained(static_cast<CFStringRef>(CFRetain(text.get())));
    text.reset();
    EXPECT_EQ(units(copy), u"kept");
    EXPECT_EQ(units(retained), u"kept");
}

TEST(Constants, OutliveEveryRelease) {
    const auto constant = [] { return CFSTR("constant text"); };
    for (int i = 0; i < 3; ++i) {
        // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount): one release too many is the point
        CFRelease(constant());
    }
    EXPECT_EQ(units(constant()), u"constant text");
    EXPECT_EQ(constant(), constant());
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
