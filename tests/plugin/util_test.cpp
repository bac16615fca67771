// Texts: the string that counts from 1, the C string functions for UTF-16, comparison, numbers. Note values,
// points and regions of the score, and the keyboard that plays no part in it.
#include <Carbon/Carbon.h>
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "host_function.h"
#include "kit/engine_bundle.h"
#include "kit/music_points.h"
#include "shell/keyboard.h"
#include "util/case_compare.h"
#include "util/eu16string.h"
#include "util/music_helpers.h"
#include "util/number_text.h"
#include "util/utf16_functions.h"

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

eu16string utf8(const char* text) {
    return eu16string(reinterpret_cast<const unsigned char*>(text));
}

TEST(Eu16String, IsDecodedFromTheApplicationsEncodingOrUtf8AndEncodedWithQuestionMarks) {
    std::string out = "old";
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(eu16string("caf\x8E").units(), u"café");
    EXPECT_EQ(eu16string('\x8E').units(), u"é");
    EXPECT_EQ(utf8("café").units(), u"café");
    EXPECT_EQ(utf8("caf\xE9").units(), u"");
    utf8("aé中b").GetStdString(out);
    EXPECT_EQ(out, "a\x8E?b");
    eu16string().GetStdString(out);
    EXPECT_EQ(out, "");
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(eu16string("caf\x8E").units(), u"");
    EXPECT_EQ(eu16string("café").units(), u"café");
    utf8("aé中b").GetStdString(out);
    EXPECT_EQ(out, "aé中b");
}

TEST(Eu16String, FindsDeletesAndCutsCountingFromOneInsideItsBounds) {
    EXPECT_EQ(utf8("ab").AnsiPos(utf8("b")), 2);
    EXPECT_EQ(utf8("ab").AnsiPos(utf8("ba")), 0);
    EXPECT_EQ(utf8("ab").AnsiPos(eu16string()), 1);
    EXPECT_EQ(eu16string().AnsiPos(eu16string()), 0);
    // Place, count, what is left of "abcd" without the part there, and the part.
    const std::tuple<int, int, std::u16string, std::u16string> cases[] = {
        {2, 2, u"ad", u"bc"},    {3, 9, u"ab", u"cd"}, {4, 1, u"abc", u"d"}, {0, 2, u"abcd", u"ab"},
        {-3, 2, u"abcd", u"ab"}, {5, 1, u"abcd", u""}, {2, 0, u"abcd", u""}, {2, -1, u"abcd", u""},
    };
    for (const auto& [place, count, deleted, part] : cases) {
        eu16string text(u"abcd");
        EXPECT_EQ(text.AnsiSubString(place, count).units(), part) << place;
        EXPECT_EQ(text.AnsiDelete(place, count).units(), deleted) << place;
        EXPECT_EQ(text.units(), deleted);
    }
    const std::pair<int, std::u16string> lengths[] = {{9, u"ab"}, {2, u"ab"}, {1, u"a"}, {0, u""}, {-1, u""}};
    for (const auto& [length, cut] : lengths) {
        eu16string text(u"ab");
        text.AnsiSetLength(length);
        EXPECT_EQ(text.units(), cut);
    }
    const std::tuple<int, char16_t, std::u16string> units[] = {
        {1, u'a', u"#b"}, {2, u'b', u"a#"}, {0, u' ', u"#b"}, {-1, u' ', u"#b"}, {3, u' ', u"#b"}};
    for (const auto& [index, read, written] : units) {
        eu16string text(u"ab");
        EXPECT_EQ(std::as_const(text).AnsiCharAtIndex(index), read) << index;
        text.AnsiCharAtIndex(index) = u'#';
        EXPECT_EQ(text.units(), written) << index;
    }
    EXPECT_EQ(eu16string().AnsiCharAtIndex(1), u'\0');
}

TEST(Eu16String, HoldsACodePointInOneUnitOrTwo) {
    const std::pair<std::uint32_t, std::u16string> cases[] = {{0, u""},
                                                              {0x41, u"A"},
                                                              {0xFFFF, {0xFFFF}},
                                                              {0x10000, {0xD800, 0xDC00}},
                                                              {0x1F600, {0xD83D, 0xDE00}},
                                                              {0x10FFFF, {0xDBFF, 0xDFFF}},
                                                              {0x110041, u"A"}};
    for (const auto& [codePoint, units] : cases) EXPECT_EQ(eu16string(codePoint).units(), units) << codePoint;
}

TEST(Comparison, IsOfUnsignedNumbersUpToTheTerminatorOrTheCount) {
    const struct {
        std::string left, right;
        int whole, firstTwo, withoutCase;
    } cases[] = {
        {"", "", 0, 0, 0},     {"ab", "abc", -1, 0, -1}, {"abd", "abc", 1, 0, 1}, {"b", "ab", 1, 1, 1},
        {"aB", "Ab", 1, 1, 0}, {"ab", "AC", 1, 1, -1},   {"\xE9", "a", 1, 1, 1},  {"Z", "a", -1, -1, 1},
        {"a[", "aZ", 1, 1, 1}, {"a_", "az", -1, -1, 1},  {"a\xFF", "a", 1, 1, 1},
    };
    const auto compare = [](const std::string& a, const std::string& b, int whole, int two, int withoutCase) {
        SCOPED_TRACE(a + " and " + b);
        std::u16string wide[2];
        for (const char c : a) wide[0] += static_cast<char16_t>(static_cast<unsigned char>(c) * 257);
        for (const char c : b) wide[1] += static_cast<char16_t>(static_cast<unsigned char>(c) * 257);
        EXPECT_EQ(sx_strcmp(wide[0].c_str(), wide[1].c_str()), whole);
        EXPECT_EQ(sx_strncmp(wide[0].c_str(), wide[1].c_str(), 99), whole);
        EXPECT_EQ(sx_strncmp(wide[0].c_str(), wide[1].c_str(), 2), two);
        EXPECT_EQ(stricmp(a.c_str(), b.c_str()), withoutCase);
        EXPECT_EQ(sx_strncmp(wide[0].c_str(), wide[1].c_str(), 0), 0);
        EXPECT_EQ(strnicmp(a.c_str(), b.c_str(), 0), 0);
    };
    for (const auto& c : cases) {
        compare(c.left, c.right, c.whole, c.firstTwo, c.withoutCase);
        compare(c.right, c.left, -c.whole, -c.firstTwo, -c.withoutCase);
    }
    EXPECT_EQ(strnicmp("abX", "ABy", 2), 0);
    EXPECT_EQ(strnicmp("abX", "ABy", 3), -1);
}

TEST(Utf16Functions, FindUnitsAndTexts) {
    const char16_t* const text = u"banana";
    EXPECT_EQ(sx_strlen(text) + sx_strlen(u""), 6U);
    const std::pair<char16_t, std::ptrdiff_t> units[] = {{u'b', 0}, {u'n', 2}, {u'\0', 6}};
    for (const auto& [unit, place] : units) EXPECT_EQ(sx_strchr(text, unit) - text, place);
    const std::pair<const char16_t*, std::ptrdiff_t> parts[] = {{u"", 0}, {u"ana", 1}, {u"na", 2}, {text, 0}};
    for (const auto& [part, place] : parts) EXPECT_EQ(sx_strstr(text, part) - text, place);
    EXPECT_TRUE(sx_strchr(text, u'x') == nullptr && sx_strstr(text, u"nab") == nullptr);
}

// A buffer of six units after the work on it, as "ab0###".
template <class Work>
std::string bufferAfter(Work&& work) {
    char16_t buffer[] = u"######";
    work(buffer);
    std::string text(buffer, buffer + 6);
    std::replace(text.begin(), text.end(), '\0', '0');
    return text;
}

TEST(Utf16Functions, CopyWithoutHeedingTheCapacityAndFormatIntoIt) {
    for (const auto& [count, after] : std::map<std::size_t, std::string>{
             {0, "######"}, {1, "a#####"}, {2, "ab####"}, {3, "ab0###"}, {5, "ab000#"}}) {
        EXPECT_EQ(bufferAfter([n = count](char16_t* to) { EXPECT_EQ(sx_strncpy(to, u"ab", n), to); }), after);
    }
    EXPECT_EQ(bufferAfter([](char16_t* to) { EXPECT_EQ(sx_strcpy(to, u"abc"), 0); }), "abc0##");
    EXPECT_EQ(bufferAfter([](char16_t* to) {
                  EXPECT_TRUE(sx_strcpy(to, 1, u"ab") == to && sx_strcat(to, 1, u"cd") == to);
              }),
              "abcd0#");
    const char* const formatted[] = {"######", "0#####", "70####", "7-0###", "7-x0##", "7-xy0#", "7-xy0#"};
    for (std::size_t capacity = 0; capacity <= 6; ++capacity) {
        int written = -1;
        EXPECT_EQ(
            bufferAfter([&](char16_t* to) { written = sx_sprintf(to, capacity, u"%d-%@", 7, CFSTR("xy")); }),
            formatted[capacity]);
        EXPECT_EQ(written, std::min(std::max(static_cast<int>(capacity) - 1, 0), 4));
    }
}

TEST(Numbers, AreWrittenAndRead) {
    for (const int value : {0, 7, -30, INT_MAX, INT_MIN}) {
        char buffer[12] = "###########";
        num2str(value, buffer);
        EXPECT_EQ(buffer, std::to_string(value));
    }
    EXPECT_EQ(IntToEu16Str(INT64_MIN).units(), u"-9223372036854775808");
    const std::pair<const char16_t*, std::int32_t> texts[] = {
        {u"", 99}, {u"x1", 0}, {u"12ab", 12}, {u"-3", -3}, {u"99999999999", INT_MAX}};
    for (const auto& [text, value] : texts) EXPECT_EQ(StrToIntDef(eu16string(text), 99), value);
}

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
        int top = 0;
        int bottom = 0;
        EXPECT_EQ(CalcNumDen(c.duration, top, bottom), c.numerator) << c.duration;
        EXPECT_EQ(
            (std::vector{IntLog2(c.duration), DotsBase(c.duration), CountDots(c.duration), top, bottom}),
            (std::vector{c.log2, c.base, c.dots, c.numerator, c.denominator}))
            << c.duration;
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

TEST(MusicPoints, AreEqualInAllFourNumbersAndMovedToTheListOfAllStaves) {
    InitializeGlobals();
    const EMUSICPOINT point{5, 1, 3, 64};
    EXPECT_TRUE(MusicPointsEqual(point, point));
    for (const EMUSICPOINT& other : {EMUSICPOINT{4, 1, 3, 64}, {5, 2, 3, 64}, {5, 1, 2, 64}, {5, 1, 3, 63}})
        EXPECT_FALSE(MusicPointsEqual(point, other));
    EREGION region{point, {5, 2, 6, 0}};
    EXPECT_FALSE(TranslateRegionToGlobalStaffList(region));
    EXPECT_TRUE(MusicPointsEqual(region.start, {0, 30, 3, 64}) && MusicPointsEqual(region.end, {0, 0, 6, 0}));
    region = {point, {0, 8, 6, 0}};
    EXPECT_TRUE(TranslateRegionToGlobalStaffList(region) && region.end.slot == 8);
}

}  // namespace
