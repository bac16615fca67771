// Strings made from bytes of each encoding, and written back into buffers of every awkward size.
#include <cstring>

#include "support.h"

namespace platform_tests {
namespace {

HeldString decoded(std::string_view bytes, CFStringEncoding encoding, bool isExternal = false) {
    return HeldString(CFStringCreateWithBytes(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()),
        encoding, static_cast<Boolean>(isExternal)));
}

struct DecodingCase {
    std::string_view bytes;
    CFStringEncoding encoding;
    std::u16string_view text;
};

TEST(Decoding, FollowsEachEncoding) {
    const DecodingCase cases[] = {
        {"\x41\x8E\xCA\xDB\xF0\xFF", kCFStringEncodingMacRoman, u"A\u00E9\u00A0\u20AC\uF8FF\u02C7"},
        {"\x41\x8E", kCFStringEncodingASCII, u"A\u008E"},
        {"\x80\xE9", kCFStringEncodingWindowsLatin1, u"\u20AC\u00E9"},
        {"\x80\xE9", kCFStringEncodingISOLatin1, u"\u0080\u00E9"},
        {"caf\xC3\xA9 \xF0\x9F\x98\x80", kCFStringEncodingUTF8, u"caf\u00E9 \U0001F600"},
        {"\xEF\xBB\xBF\x41", kCFStringEncodingUTF8, u"A"},
        {std::string_view("\x30\x42\x00\x41", 4), kCFStringEncodingUTF16BE, u"\u3042A"},
        {std::string_view("\x42\x30\x41\x00", 4), kCFStringEncodingUTF16LE, u"\u3042A"},
        {"", kCFStringEncodingUTF8, u""},
        {"\xC0\x80", kCFStringEncodingUTF8, u"<NULL>"},          // overlong
        {"\xED\xA0\x80", kCFStringEncodingUTF8, u"<NULL>"},      // half a surrogate pair
        {"\xF4\x90\x80\x80", kCFStringEncodingUTF8, u"<NULL>"},  // above the last character
        {"ab\xE2\x82", kCFStringEncodingUTF8, u"<NULL>"},        // cut
        {"\xE2\x41\x41", kCFStringEncodingUTF8, u"<NULL>"},
        {"\x80", kCFStringEncodingUTF8, u"<NULL>"},
        {"\xFF", kCFStringEncodingUTF8, u"<NULL>"},
        {"text", 0x7777, u"<NULL>"},
    };
    for (const DecodingCase& row : cases) {
        EXPECT_EQ(units(decoded(row.bytes, row.encoding)), row.text) << ::testing::PrintToString(row.bytes);
    }
}

TEST(Decoding, TakesTheByteOrderFromTheMarkOfExternalText) {
    EXPECT_EQ(units(decoded(std::string_view("\xFE\xFF\x00\x41", 4), kCFStringEncodingUTF16, true)), u"A");
    EXPECT_EQ(units(decoded(std::string_view("\xFF\xFE\x41\x00", 4), kCFStringEncodingUTF16, true)), u"A");
}

TEST(Decoding, EveryMacRomanByteComesBack) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes.push_back(static_cast<char>(byte));
    }
    const HeldString text(
        CFStringCreateWithCString(kCFAllocatorDefault, bytes.c_str(), kCFStringEncodingMacRoman));
    char back[256] = {};
    ASSERT_TRUE(CFStringGetCString(text.get(), back, sizeof back, kCFStringEncodingMacRoman));
    EXPECT_EQ(back, bytes);
    EXPECT_FALSE(CFStringGetCString(text.get(), back, sizeof back, kCFStringEncodingISOLatin1));
}

TEST(PascalStrings, CarryUpTo255Bytes) {
    const unsigned char source[] = {3, 'c', 0x8E, '!', 'x'};
    const HeldString made(
        CFStringCreateWithPascalString(kCFAllocatorDefault, source, kCFStringEncodingMacRoman));
    EXPECT_EQ(units(made), u"c\u00E9!");

    const std::u16string longest(255, u'k');
    unsigned char buffer[400] = {};
    EXPECT_TRUE(CFStringGetPascalString(string(longest).get(), buffer, 256, kCFStringEncodingMacRoman));
    EXPECT_EQ(buffer[0], 255);
    EXPECT_EQ(buffer[255], 'k');
}

TEST(PascalStrings, LeaveTheBufferAloneWhenTheTextDoesNotFit) {
    const std::u16string tooLong(256, u'k');
    const std::u16string tooLongInBytes(128, u'\u00E9');
    struct Case {
        std::u16string_view text;
        CFIndex size;
        CFStringEncoding encoding;
    } const cases[] = {
        {tooLong, 256, kCFStringEncodingMacRoman},    {tooLong, 300, kCFStringEncodingMacRoman},
        {tooLong, 300, kCFStringEncodingUTF8},        {u"abc", 3, kCFStringEncodingMacRoman},
        {tooLongInBytes, 300, kCFStringEncodingUTF8}, {u"", 0, kCFStringEncodingMacRoman},
    };
    for (const Case& row : cases) {
        unsigned char buffer[400];
        std::memset(buffer, 0xAA, sizeof buffer);
        EXPECT_FALSE(CFStringGetPascalString(string(row.text).get(), buffer, row.size, row.encoding));
        EXPECT_EQ(std::count(std::begin(buffer), std::end(buffer), 0xAA), 400) << row.size;
    }
}

TEST(PascalStrings, AreEmptyWhenTheEncodingLacksACharacter) {
    unsigned char buffer[8] = {9};
    EXPECT_FALSE(CFStringGetPascalString(string(u"a\u4E2D").get(), buffer, 8, kCFStringEncodingMacRoman));
    EXPECT_EQ(buffer[0], 0);
}

struct CTextCase {
    std::u16string_view text;
    CFIndex size;
    CFStringEncoding encoding;
    bool isWritten;
    char firstByte;  ///< '~' where the buffer stays untouched
};

TEST(CStrings, AreWholeOrEmpty) {
    const CTextCase cases[] = {
        {u"abc", 4, kCFStringEncodingASCII, true, 'a'},
        {u"abc", 3, kCFStringEncodingASCII, false, '\0'},
        {u"abc", 0, kCFStringEncodingASCII, false, '~'},
        {u"", 1, kCFStringEncodingASCII, true, '\0'},
        {u"caf\u00E9", 16, kCFStringEncodingASCII, false, '\0'},
        {u"\u4E2D", 16, kCFStringEncodingMacRoman, false, '\0'},
        {u"e\u0301", 16, kCFStringEncodingMacRoman, false, '\0'},
        {u"caf\u00E9", 6, kCFStringEncodingUTF8, true, 'c'},
        {u"caf\u00E9", 5, kCFStringEncodingUTF8, false, '\0'},
        {u"\xD800", 16, kCFStringEncodingUTF8, false, '\0'},
        {u"a", 16, 0x7777, false, '\0'},
    };
    for (const CTextCase& row : cases) {
        char buffer[16] = "~~~~~~~~~~~~~~~";
        const bool isWritten =
            CFStringGetCString(string(row.text).get(), buffer, row.size, row.encoding) != 0;
        EXPECT_EQ(isWritten, row.isWritten) << ::testing::PrintToString(row.text) << row.size;
        EXPECT_EQ(buffer[0], row.firstByte) << ::testing::PrintToString(row.text) << row.size;
    }
}

struct BytesCase {
    std::u16string_view text;
    CFStringEncoding encoding;
    UInt8 lossByte;
    CFIndex capacity;  ///< negative: no buffer, only counting
    CFIndex units;
    std::string_view bytes;  ///< what is written, or as many bytes as are counted
};

TEST(Bytes, StopOrSubstituteWhereTheEncodingOrTheBufferEnds) {
    const BytesCase cases[] = {
        {u"caf\u00E9", kCFStringEncodingASCII, '?', 32, 4, "caf?"},
        {u"caf\u00E9", kCFStringEncodingASCII, 0, 32, 3, "caf"},
        {u"a\u4E2Db", kCFStringEncodingMacRoman, '?', 32, 3, "a?b"},
        {u"a\u4E2Db", kCFStringEncodingMacRoman, 0, 32, 1, "a"},
        {u"\U0001F600x", kCFStringEncodingMacRoman, '?', 32, 3, "?x"},
        {u"\U0001F600x", kCFStringEncodingASCII, '?', 32, 3, "\?\?x"},
        {u"\u2019\u2026", kCFStringEncodingASCII, '?', 32, 2, "\?\?"},
        {u"abcdef", kCFStringEncodingASCII, 0, 3, 3, "abc"},
        {u"abcdef", kCFStringEncodingASCII, 0, -1, 6, "abcdef"},
        {u"caf\u00E9", kCFStringEncodingUTF8, 0, 4, 3, "caf"},
        {u"\u4E2D\u00E9", kCFStringEncodingUTF8, 0, 32, 2, "\xE4\xB8\xAD\xC3\xA9"},
        {u"ab", kCFStringEncodingUTF8, 0, 1, 1, "a"},
        {u"\U0001F600", kCFStringEncodingUTF8, 0, 4, 2, "\xF0\x9F\x98\x80"},
        {u"\u20ACA", kCFStringEncodingUTF16BE, 0, 3, 1, "\x20\xAC"},
        {u"\u20ACA", kCFStringEncodingUTF16LE, 0, 2, 1, "\xAC\x20"},
        {u"\u20AC\u00E9", kCFStringEncodingWindowsLatin1, 0, 32, 2, "\x80\xE9"},
        {u"abc", 0x7777, '?', 32, 0, ""},
    };
    for (const BytesCase& row : cases) {
        const auto text = string(row.text);
        UInt8 buffer[32];
        CFIndex used = -1;
        const CFIndex converted =
            CFStringGetBytes(text.get(), CFRangeMake(0, CFStringGetLength(text.get())), row.encoding,
                             row.lossByte, 0, row.capacity < 0 ? nullptr : buffer, row.capacity, &used);
        const auto name = ::testing::PrintToString(row.text);
        EXPECT_EQ(converted, row.units) << name;
        ASSERT_EQ(used, static_cast<CFIndex>(row.bytes.size())) << name;
        if (row.capacity >= 0) {
            EXPECT_EQ(std::string_view(reinterpret_cast<char*>(buffer), row.bytes.size()), row.bytes) << name;
        }
    }
}

TEST(Bytes, OfARangeWithAByteOrderMarkReadBackAlike) {
    const auto text = string(u"xNote \u266Dy");
    UInt8 buffer[32];
    CFIndex used = 0;
    EXPECT_EQ(
        CFStringGetBytes(text.get(), CFRangeMake(1, 6), kCFStringEncodingUTF16, 0, 1, buffer, 32, &used), 6);
    ASSERT_EQ(used, 14);
    const std::string_view bytes(reinterpret_cast<char*>(buffer), 14);
    EXPECT_EQ(units(decoded(bytes, kCFStringEncodingUTF16, true)), u"Note \u266D");
}

TEST(Bytes, HaveNoRoomForHalfAByteOrderMark) {
    UInt8 buffer[2] = {7, 7};
    CFIndex used = -1;
    EXPECT_EQ(CFStringGetBytes(CFSTR("a"), CFRangeMake(0, 1), kCFStringEncodingUTF16, 0, 1, buffer, 1, &used),
              0);
    EXPECT_EQ(used, 0);
    EXPECT_EQ(buffer[0], 7);
}

TEST(MaximumSize, HoldsForTheWorstText) {
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingMacRoman), 10);
    EXPECT_GE(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF8), 30);
    EXPECT_GE(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF16), 20);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, 0x7777), kCFNotFound);
}

}  // namespace
}  // namespace platform_tests
