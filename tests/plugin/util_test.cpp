// UTF-16 functions, case-blind comparison, numbers as text, and the string that counts from 1.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

#include "util/case_compare.h"
#include "util/eu16string.h"
#include "util/number_text.h"
#include "util/platform_string.h"
#include "util/utf16_functions.h"

namespace {

// A buffer in which every unit that was not written shows.
struct Filled {
    char16_t units[12];
    Filled() { std::fill(std::begin(units), std::end(units), u'#'); }
    std::u16string first(std::size_t count) const { return {units, count}; }
};

class MacRomanLocale : public testing::Test {
  protected:
    void SetUp() override { setenv("LC_ALL", "C", 1); }
    void TearDown() override { setenv("LC_ALL", "C.UTF-8", 1); }
};
using EncodedString = MacRomanLocale;

eu16string utf8(const char* text) {
    return eu16string(reinterpret_cast<const unsigned char*>(text));
}

TEST(Utf16Functions, MeasureAndSearch) {
    const char16_t* text = u"abcabc";
    EXPECT_EQ(sx_strlen(text), 6U);
    EXPECT_EQ(sx_strlen(u"\U0001F600"), 2U);
    EXPECT_EQ(sx_strchr(text, u'b'), text + 1);
    EXPECT_EQ(sx_strchr(text, u'x'), nullptr);
    EXPECT_EQ(sx_strchr(text, 0), text + 6);
    EXPECT_EQ(sx_strstr(text, u"ca"), text + 2);
    EXPECT_EQ(sx_strstr(text, u""), text);
    EXPECT_EQ(sx_strstr(text, u"cab "), nullptr);
}

TEST(Utf16Functions, CompareUnsignedUnits) {
    EXPECT_EQ(sx_strcmp(u"ab", u"ab"), 0);
    EXPECT_EQ(sx_strcmp(u"a", u"ab"), -1);
    EXPECT_EQ(sx_strcmp(u"\uFF5E", u"a"), 1);
    EXPECT_EQ(sx_strncmp(u"abX", u"abY", 2), 0);
    EXPECT_EQ(sx_strncmp(u"abX", u"abY", 3), -1);
    EXPECT_EQ(sx_strncmp(u"a", u"b", 0), 0);
    const char16_t equalUpToTheEnd[][4] = {{u'a', 0, u'x'}, {u'a', 0, u'y'}};
    EXPECT_EQ(sx_strncmp(equalUpToTheEnd[0], equalUpToTheEnd[1], 3), 0);
}

TEST(Utf16Functions, BoundedCopyFillsUpOrLeavesUnterminated) {
    Filled padded;
    EXPECT_EQ(sx_strncpy(padded.units, u"ab", 5), padded.units);
    EXPECT_EQ(padded.first(6), std::u16string(u"ab\0\0\0#", 6));
    Filled cut;
    sx_strncpy(cut.units, u"abcdef", 3);
    EXPECT_EQ(cut.first(4), u"abc#");
}

TEST(Utf16Functions, CopyAndAppendIgnoreTheCapacity) {
    Filled buffer;
    EXPECT_EQ(sx_strcpy(buffer.units, u"xyz"), u'\0');
    EXPECT_EQ(buffer.first(5), std::u16string(u"xyz\0#", 5));
    EXPECT_EQ(sx_strcpy(buffer.units, 1, u"abcd"), buffer.units);
    EXPECT_EQ(sx_strcat(buffer.units, 2, u"efg"), buffer.units);
    EXPECT_EQ(buffer.first(9), std::u16string(u"abcdefg\0#", 9));
}

TEST(Utf16Functions, FormatByThePlatformsRules) {
    Filled buffer;
    EXPECT_EQ(sx_sprintf(buffer.units, 12, u"%d–%d", 3, -7), 4);
    EXPECT_EQ(buffer.first(6), std::u16string(u"3–-7\0#", 6));
    EXPECT_EQ(sx_sprintf(buffer.units, 12, u"<%@>", makePlatformString(u"hi").get()), 4);
    EXPECT_EQ(buffer.first(5), std::u16string(u"<hi>\0", 5));
    EXPECT_EQ(sx_sprintf(buffer.units, 4, u"%d", 123456), 3);
    EXPECT_EQ(buffer.first(5), std::u16string(u"123\0\0", 5));
    EXPECT_EQ(sx_sprintf(buffer.units, 1, u"%d", 9), 0);
    EXPECT_EQ(buffer.first(2), std::u16string(u"\0002", 2));
    EXPECT_EQ(sx_sprintf(buffer.units, 0, u"%d", 9), 0);
    EXPECT_EQ(buffer.units[0], u'\0');
}

TEST(CaseCompare, OrdersUpperCasedBytes) {
    EXPECT_EQ(stricmp("Retrograde", "rETROGRADE"), 0);
    EXPECT_EQ(stricmp("a", "B"), -1);
    EXPECT_EQ(stricmp("b", "A"), 1);
    EXPECT_EQ(stricmp("ab", "abc"), -1);
    EXPECT_EQ(stricmp("a_", "aB"), 1);  // "_" lies between the two cases, behind the upper one
    EXPECT_EQ(stricmp("\xE9", "z"), 1);
    EXPECT_EQ(strnicmp("abX", "ABy", 2), 0);
    EXPECT_EQ(strnicmp("abX", "ABy", 3), -1);
    EXPECT_EQ(strnicmp("a", "b", 0), 0);
}

TEST(NumberText, WritesEveryNumber) {
    char buffer[12];
    num2str(std::numeric_limits<int>::min(), buffer);
    EXPECT_STREQ(buffer, "-2147483648");
    num2str(7, buffer);
    EXPECT_STREQ(buffer, "7");
    EXPECT_EQ(IntToEu16Str(std::numeric_limits<std::int64_t>::min()).units(), u"-9223372036854775808");
}

TEST(NumberText, FallsBackForTheEmptyTextOnly) {
    const std::pair<const char*, int> readings[] = {{"", 42},      {"x1", 0},  {"-", 0},
                                                    {"12abc", 12}, {" 7", 7},  {"+5", 5},
                                                    {"-9", -9},    {"3.9", 3}, {"99999999999", 2147483647}};
    for (const auto& [text, expected] : readings) EXPECT_EQ(StrToIntDef(utf8(text), 42), expected) << text;
}

TEST_F(EncodedString, DecodesTheApplicationsEncodingOrUtf8) {
    EXPECT_EQ(eu16string("caf\x8E").units(), u"café");
    EXPECT_EQ(eu16string('\x8E').units(), u"é");
    EXPECT_EQ(utf8("café").units(), u"café");
    EXPECT_EQ(utf8("caf\xE9").units(), u"");
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(eu16string("caf\x8E").units(), u"");
    EXPECT_EQ(eu16string("café").units(), u"café");
}

TEST_F(EncodedString, EncodesWithQuestionMarks) {
    std::string out = "old";
    utf8("aé中b").GetStdString(out);
    EXPECT_EQ(out, "a\x8E?b");
    eu16string().GetStdString(out);
    EXPECT_EQ(out, "");
    setenv("LC_ALL", "C.UTF-8", 1);
    utf8("aé中b").GetStdString(out);
    EXPECT_EQ(out, "aé中b");
}

TEST(Eu16String, TakesCodePoints) {
    const std::pair<std::uint32_t, std::u16string> points[] = {
        {0, u""},
        {0x41, u"A"},
        {0xFFFF, u"\uFFFF"},
        {0x10000, {0xD800, 0xDC00}},
        {0x1F600, {0xD83D, 0xDE00}},
        {0x10FFFF, {0xDBFF, 0xDFFF}},
        {0x110042, u"B"},
    };
    for (const auto& [point, units] : points)
        EXPECT_EQ(eu16string(point).units(), units) << std::hex << point;
}

TEST(Eu16String, FindsPositionsFromOne) {
    EXPECT_EQ(utf8("ab").AnsiPos(utf8("b")), 2);
    EXPECT_EQ(utf8("ab").AnsiPos(utf8("ba")), 0);
    EXPECT_EQ(utf8("ab").AnsiPos(eu16string()), 1);
    EXPECT_EQ(eu16string().AnsiPos(eu16string()), 0);
}

TEST(Eu16String, DeletesAndCutsInsideItsBounds) {
    struct Case {
        int position, count;
        std::u16string deleted, part;
    };
    const Case cases[] = {
        {2, 2, u"ad", u"bc"},    {3, 9, u"ab", u"cd"}, {4, 1, u"abc", u"d"}, {0, 2, u"abcd", u"ab"},
        {-3, 2, u"abcd", u"ab"}, {5, 1, u"abcd", u""}, {2, 0, u"abcd", u""}, {2, -1, u"abcd", u""},
    };
    for (const Case& each : cases) {
        eu16string text(u"abcd");
        EXPECT_EQ(text.AnsiSubString(each.position, each.count).units(), each.part) << each.position;
        EXPECT_EQ(&text.AnsiDelete(each.position, each.count), &text);
        EXPECT_EQ(text.units(), each.deleted) << each.position;
    }
    const std::pair<int, std::u16string> lengths[] = {
        {9, u"abcd"}, {4, u"abcd"}, {1, u"a"}, {0, u""}, {-1, u""}};
    for (const auto& [length, expected] : lengths) {
        eu16string text(u"abcd");
        text.AnsiSetLength(length);
        EXPECT_EQ(text.units(), expected) << length;
    }
}

TEST(Eu16String, ReadsSpacesAndWritesTheFirstUnitOutsideItsBounds) {
    eu16string text(u"ab");
    const std::pair<int, char16_t> units[] = {{1, u'a'}, {2, u'b'}, {0, u' '}, {-1, u' '}, {3, u' '}};
    for (const auto& [index, unit] : units)
        EXPECT_EQ(std::as_const(text).AnsiCharAtIndex(index), unit) << index;
    text.AnsiCharAtIndex(2) = u'y';
    text.AnsiCharAtIndex(3) = u'x';
    EXPECT_EQ(text.units(), u"xy");
    EXPECT_EQ(eu16string().AnsiCharAtIndex(1), u'\0');
}

}  // namespace
