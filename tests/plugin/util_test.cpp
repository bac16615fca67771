// Texts: the string that counts from 1, the C string functions for UTF-16, comparison, numbers.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "util/case_compare.h"
#include "util/eu16string.h"
#include "util/number_text.h"
#include "util/utf16_functions.h"

namespace {

class EncodedString : public testing::Test {
  protected:
    void SetUp() override { setenv("LC_ALL", "C", 1); }
    void TearDown() override { setenv("LC_ALL", "C.UTF-8", 1); }
};

eu16string utf8(const char* text) {
    return eu16string(reinterpret_cast<const unsigned char*>(text));
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
        EXPECT_EQ(text.units(),
                  std::u16string_view(u"abcd").substr(0, static_cast<std::size_t>(std::clamp(length, 0, 4))));
    }
}

TEST(Eu16String, ReadsAndWritesUnitsCountingFromOne) {
    const std::tuple<int, char16_t, std::u16string> cases[] = {
        {1, u'a', u"#b"}, {2, u'b', u"a#"}, {0, u' ', u"#b"}, {-1, u' ', u"#b"}, {3, u' ', u"#b"}};
    for (const auto& [index, read, written] : cases) {
        eu16string text(u"ab");
        EXPECT_EQ(std::as_const(text).AnsiCharAtIndex(index), read) << index;
        text.AnsiCharAtIndex(index) = u'#';
        EXPECT_EQ(text.units(), written) << index;
    }
    EXPECT_EQ(eu16string().AnsiCharAtIndex(1), u'\0');
}

TEST(Eu16String, HoldsACodePointInOneUnitOrTwo) {
    const std::pair<std::uint32_t, std::u16string> cases[] = {
        {0, u""},
        {0x41, u"A"},
        {0xFFFF, {0xFFFF}},
        {0x10000, {0xD800, 0xDC00}},
        {0x1F600, {0xD83D, 0xDE00}},
        {0x10FFFF, {0xDBFF, 0xDFFF}},
        {0x110041, u"A"},
    };
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
    for (const auto& c : cases) {
        SCOPED_TRACE(c.left + " and " + c.right);
        const auto wide = [](const std::string& text) {
            std::u16string units;
            for (const char byte : text)
                units += static_cast<char16_t>(static_cast<unsigned char>(byte) * 257);
            return units;
        };
        const std::u16string left = wide(c.left);
        const std::u16string right = wide(c.right);
        for (const int sign : {1, -1}) {
            const auto [a, b] = sign > 0 ? std::pair(left, right) : std::pair(right, left);
            EXPECT_EQ(sx_strcmp(a.c_str(), b.c_str()), sign * c.whole);
            EXPECT_EQ(sx_strncmp(a.c_str(), b.c_str(), 99), sign * c.whole);
            EXPECT_EQ(sx_strncmp(a.c_str(), b.c_str(), 2), sign * c.firstTwo);
            EXPECT_EQ(sx_strncmp(a.c_str(), b.c_str(), 0), 0);
            const auto [first, second] = sign > 0 ? std::pair(c.left, c.right) : std::pair(c.right, c.left);
            EXPECT_EQ(stricmp(first.c_str(), second.c_str()), sign * c.withoutCase);
            EXPECT_EQ(strnicmp(first.c_str(), second.c_str(), 0), 0);
        }
    }
    EXPECT_EQ(strnicmp("abX", "ABy", 2), 0);
    EXPECT_EQ(strnicmp("abX", "ABy", 3), -1);
}

TEST(Utf16Functions, FindUnitsAndTexts) {
    const char16_t* const text = u"banana";
    EXPECT_EQ(sx_strlen(text), 6U);
    EXPECT_EQ(sx_strlen(u""), 0U);
    const std::pair<char16_t, std::ptrdiff_t> units[] = {{u'b', 0}, {u'n', 2}, {u'\0', 6}};
    for (const auto& [unit, place] : units) EXPECT_EQ(sx_strchr(text, unit) - text, place);
    EXPECT_EQ(sx_strchr(text, u'x'), nullptr);
    const std::pair<const char16_t*, std::ptrdiff_t> parts[] = {{u"", 0}, {u"ana", 1}, {u"na", 2}, {text, 0}};
    for (const auto& [part, place] : parts) EXPECT_EQ(sx_strstr(text, part) - text, place);
    EXPECT_EQ(sx_strstr(text, u"nab"), nullptr);
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

TEST(Utf16Functions, CopyWithoutHeedingTheCapacity) {
    for (const auto& [count, after] : std::map<std::size_t, std::string>{
             {0, "######"}, {1, "a#####"}, {2, "ab####"}, {3, "ab0###"}, {5, "ab000#"}}) {
        EXPECT_EQ(bufferAfter([n = count](char16_t* to) { EXPECT_EQ(sx_strncpy(to, u"ab", n), to); }), after);
    }
    EXPECT_EQ(bufferAfter([](char16_t* to) { EXPECT_EQ(sx_strcpy(to, u"abc"), 0); }), "abc0##");
    EXPECT_EQ(bufferAfter([](char16_t* to) {
                  EXPECT_EQ(sx_strcpy(to, 1, u"ab"), to);
                  EXPECT_EQ(sx_strcat(to, 1, u"cd"), to);
              }),
              "abcd0#");
}

TEST(Utf16Functions, FormatIntoTheCapacity) {
    const std::string whole = "7-xy";
    for (std::size_t capacity = 0; capacity <= 6; ++capacity) {
        const std::string kept = whole.substr(0, capacity == 0 ? 0 : capacity - 1);
        const std::string after = bufferAfter([&](char16_t* to) {
            EXPECT_EQ(sx_sprintf(to, capacity, u"%d-%@", 7, CFSTR("xy")), static_cast<int>(kept.size()));
        });
        EXPECT_EQ(after, (kept + (capacity == 0 ? "" : "0") + "######").substr(0, 6)) << capacity;
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

}  // namespace
