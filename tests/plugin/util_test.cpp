// UTF-16 functions, case-blind comparison, numbers as text, the string that counts from 1, and keys held.
#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

#include "shell/keyboard.h"
#include "util/case_compare.h"
#include "util/eu16string.h"
#include "util/number_text.h"
#include "util/platform_string.h"
#include "util/utf16_functions.h"

static UInt8 heldKeys[16];

// Stands in for the platform's own.
extern "C" __attribute__((visibility("default"))) void GetKeys(KeyMap keys) {
    std::memcpy(keys, heldKeys, sizeof heldKeys);
}

namespace {

using namespace std::string_literals;

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

TEST(Utf16Functions, MeasureSearchAndCompareUnsignedUnits) {
    const char16_t* text = u"abcabc";
    EXPECT_EQ(sx_strlen(text), 6U);
    EXPECT_EQ(sx_strlen(u"\U0001F600"), 2U);
    EXPECT_EQ(sx_strchr(text, u'b'), text + 1);
    EXPECT_EQ(sx_strchr(text, u'x'), nullptr);
    EXPECT_EQ(sx_strchr(text, 0), text + 6);
    EXPECT_EQ(sx_strstr(text, u"ca"), text + 2);
    EXPECT_EQ(sx_strstr(text, u""), text);
    EXPECT_EQ(sx_strstr(text, u"cab "), nullptr);
    EXPECT_EQ(sx_strcmp(u"ab", u"ab"), 0);
    EXPECT_EQ(sx_strcmp(u"a", u"ab"), -1);
    EXPECT_EQ(sx_strcmp(u"\uFF5E", u"a"), 1);
    EXPECT_EQ(sx_strncmp(u"abX", u"abY", 2), 0);
    EXPECT_EQ(sx_strncmp(u"abX", u"abY", 3), -1);
    EXPECT_EQ(sx_strncmp(u"a", u"b", 0), 0);
    EXPECT_EQ(sx_strncmp(u"a\0x", u"a\0y", 3), 0);
}

TEST(Utf16Functions, CopyAndAppendIgnoringTheCapacityUnlessBounded) {
    Filled padded;
    EXPECT_EQ(sx_strncpy(padded.units, u"ab", 5), padded.units);
    EXPECT_EQ(padded.first(6), u"ab\0\0\0#"s);
    sx_strncpy(padded.units, u"xyzdef", 3);
    EXPECT_EQ(padded.first(6), u"xyz\0\0#"s);
    Filled buffer;
    EXPECT_EQ(sx_strcpy(buffer.units, u"xyz"), u'\0');
    EXPECT_EQ(buffer.first(5), u"xyz\0#"s);
    EXPECT_EQ(sx_strcpy(buffer.units, 1, u"abcd"), buffer.units);
    EXPECT_EQ(sx_strcat(buffer.units, 2, u"efg"), buffer.units);
    EXPECT_EQ(buffer.first(9), u"abcdefg\0#"s);
}

TEST(Utf16Functions, FormatByThePlatformsRulesUpToTheCapacity) {
    Filled buffer;
    EXPECT_EQ(sx_sprintf(buffer.units, 12, u"%d–%d", 3, -7), 4);
    EXPECT_EQ(buffer.first(6), u"3–-7\0#"s);
    EXPECT_EQ(sx_sprintf(buffer.units, 12, u"<%@>", makePlatformString(u"hi").get()), 4);
    EXPECT_EQ(buffer.first(5), u"<hi>\0"s);
    const std::pair<std::size_t, std::u16string> cuts[] = {
        {4, u"123\0\0"s}, {1, u"\00023"s}, {0, u"\00023"s}};
    for (const auto& [capacity, text] : cuts) {
        EXPECT_EQ(sx_sprintf(buffer.units, capacity, u"%d", 123456), capacity > 0 ? capacity - 1 : 0);
        EXPECT_EQ(buffer.first(text.size()), text);
    }
}

TEST(CaseCompare, OrdersUpperCasedBytes) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"Retrograde", "rETROGRADE", 0},
        {"a", "B", -1},
        {"b", "A", 1},
        {"ab", "abc", -1},
        {"a_", "aB", 1},  // "_" lies between the two cases, behind the upper one
        {"\xE9", "z", 1},
    };
    for (const auto& [first, second, order] : cases) EXPECT_EQ(stricmp(first, second), order) << first;
    EXPECT_EQ(strnicmp("abX", "ABy", 2), 0);
    EXPECT_EQ(strnicmp("abX", "ABy", 3), -1);
    EXPECT_EQ(strnicmp("a", "b", 0), 0);
}

TEST(NumberText, WritesEveryNumberAndFallsBackForTheEmptyTextOnly) {
    char buffer[12];
    num2str(std::numeric_limits<int>::min(), buffer);
    EXPECT_STREQ(buffer, "-2147483648");
    num2str(7, buffer);
    EXPECT_STREQ(buffer, "7");
    EXPECT_EQ(IntToEu16Str(std::numeric_limits<std::int64_t>::min()).units(), u"-9223372036854775808");
    // How texts are read is the platform's business.
    const std::pair<const char*, int> readings[] = {{"", 42}, {"x1", 0}, {"12abc", 12}, {"-9", -9}};
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
        {0, u""},         {0x10000, {0xD800, 0xDC00}},  {0x41, u"A"},        {0x1F600, {0xD83D, 0xDE00}},
        {0x110042, u"B"}, {0x10FFFF, {0xDBFF, 0xDFFF}}, {0xFFFF, u"\uFFFF"},
    };
    for (const auto& [point, units] : points)
        EXPECT_EQ(eu16string(point).units(), units) << std::hex << point;
}

TEST(Eu16String, FindsDeletesAndCutsCountingFromOneInsideItsBounds) {
    EXPECT_EQ(utf8("ab").AnsiPos(utf8("b")), 2);
    EXPECT_EQ(utf8("ab").AnsiPos(utf8("ba")), 0);
    EXPECT_EQ(utf8("ab").AnsiPos(eu16string()), 1);
    EXPECT_EQ(eu16string().AnsiPos(eu16string()), 0);
    const std::tuple<int, int, std::u16string, std::u16string> cases[] = {
        {2, 2, u"ad", u"bc"},    {3, 9, u"ab", u"cd"}, {4, 1, u"abc", u"d"}, {0, 2, u"abcd", u"ab"},
        {-3, 2, u"abcd", u"ab"}, {5, 1, u"abcd", u""}, {2, 0, u"abcd", u""}, {2, -1, u"abcd", u""},
    };
    for (const auto& [position, count, deleted, part] : cases) {
        eu16string text(u"abcd");
        EXPECT_EQ(text.AnsiSubString(position, count).units(), part) << position;
        EXPECT_EQ(&text.AnsiDelete(position, count), &text);
        EXPECT_EQ(text.units(), deleted) << position;
    }
    for (const int length : {9, 4, 1, 0, -1}) {
        eu16string text(u"abcd");
        text.AnsiSetLength(length);
        EXPECT_EQ(text.units(), std::u16string(u"abcd", length < 0   ? 0
                                                        : length > 4 ? 4
                                                                     : static_cast<std::size_t>(length)));
    }
}

TEST(Eu16String, ReadsSpacesAndWritesTheFirstUnitOutsideItsBounds) {
    eu16string text(u"ab");
    std::u16string read;
    for (int index = -1; index <= 3; ++index) read += std::as_const(text).AnsiCharAtIndex(index);
    EXPECT_EQ(read, u"  ab ");
    text.AnsiCharAtIndex(2) = u'y';
    text.AnsiCharAtIndex(3) = u'x';
    EXPECT_EQ(text.units(), u"xy");
    EXPECT_EQ(eu16string().AnsiCharAtIndex(1), u'\0');
}

TEST(Keyboard, ReadsOneBitPerKey) {
    heldKeys[0] = 0x80;   // key 7
    heldKeys[2] = 0x01;   // key 16
    heldKeys[15] = 0x80;  // key 127
    for (short key = -40; key <= 200; ++key) {
        EXPECT_EQ(KbdUtilKeyIsDown(key), key == 7 || key == 16 || key == 127 ? 1 : 0) << key;
    }
}

}  // namespace
