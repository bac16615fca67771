// The string that counts from 1: its encodings and its bounds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <tuple>

#include "util/eu16string.h"

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

}  // namespace
