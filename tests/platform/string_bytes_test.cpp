// Strings made from bytes of each encoding, and written back into buffers of every awkward size.
#include <cstring>

#include "support.h"

namespace platform_tests {
namespace {

constexpr auto kAscii = kCFStringEncodingASCII;
constexpr auto kRoman = kCFStringEncodingMacRoman;
constexpr auto kUtf8 = kCFStringEncodingUTF8;
constexpr auto kUtf16 = kCFStringEncodingUTF16;
constexpr auto kBig = kCFStringEncodingUTF16BE;
constexpr auto kLittle = kCFStringEncodingUTF16LE;
constexpr auto kWindows = kCFStringEncodingWindowsLatin1;
constexpr CFStringEncoding kUnknown = 0x7777;

HeldString decoded(std::string_view bytes, CFStringEncoding encoding, bool isExternal = false) {
    return HeldString(CFStringCreateWithBytes(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()),
        encoding, static_cast<Boolean>(isExternal)));
}

TEST(Decoding, FollowsEachEncoding) {
    struct Row {
        std::string_view bytes;
        CFStringEncoding encoding;
        std::u16string_view text;
    };
    const auto cases = table(Row{"\x41\x8E\xCA\xDB\xF0\xFF", kRoman, u"Aé\u00A0€\uF8FF\u02C7"},
                             Row{"\x41\x8E", kAscii, u"A\u008E"}, Row{"\x80\xE9", kWindows, u"€é"},
                             Row{"\x80\xE9", kCFStringEncodingISOLatin1, u"\u0080é"},
                             Row{"caf\xC3\xA9 \xF0\x9F\x98\x80", kUtf8, u"café \U0001F600"},
                             Row{"\xEF\xBB\xBF\x41", kUtf8, u"A"}, Row{{"\x30\x42\x00\x41", 4}, kBig, u"あA"},
                             Row{{"\x42\x30\x41\x00", 4}, kLittle, u"あA"}, Row{"", kUtf8, u""},
                             Row{"text", kUnknown, u"<NULL>"});
    for (const auto& [bytes, encoding, text] : cases)
        EXPECT_EQ(units(decoded(bytes, encoding)), text) << PrintToString(bytes);
    // Overlong, half a surrogate pair, above the last character, cut, interrupted, and no first bytes.
    for (const char* bytes :
         {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "ab\xE2\x82", "\xE2\x41\x41", "\x80", "\xFF"})
        EXPECT_FALSE(decoded(bytes, kUtf8)) << PrintToString(bytes);
    for (const std::string_view marked :
         {std::string_view("\xFE\xFF\x00\x41", 4), std::string_view("\xFF\xFE\x41\x00", 4)})
        EXPECT_EQ(units(decoded(marked, kUtf16, true)), u"A");
}

TEST(PascalStrings, CarryUpTo255BytesOrLeaveTheBufferAlone) {
    const unsigned char source[] = {3, 'c', 0x8E, '!', 'x'};
    EXPECT_EQ(units(HeldString(CFStringCreateWithPascalString(kCFAllocatorDefault, source, kRoman))), u"cé!");
    unsigned char buffer[400] = {};
    EXPECT_TRUE(CFStringGetPascalString(string(std::u16string(255, u'k')).get(), buffer, 256, kRoman));
    EXPECT_EQ(std::string(buffer, buffer + 257), "\xFF" + std::string(255, 'k') + '\0');
    const std::u16string tooLong(256, u'k');
    const std::u16string tooLongInBytes(128, u'é');
    struct Row {
        std::u16string_view text;
        CFIndex size;
        CFStringEncoding encoding;
    };
    const auto cases = table(Row{tooLong, 256, kRoman}, Row{tooLong, 300, kRoman}, Row{tooLong, 300, kUtf8},
                             Row{u"abc", 3, kRoman}, Row{tooLongInBytes, 300, kUtf8}, Row{u"", 0, kRoman});
    for (const auto& [text, size, encoding] : cases) {
        std::memset(buffer, 0xAA, sizeof buffer);
        EXPECT_FALSE(CFStringGetPascalString(string(text).get(), buffer, size, encoding));
        EXPECT_EQ(std::count(std::begin(buffer), std::end(buffer), 0xAA), 400) << size;
    }
    EXPECT_FALSE(CFStringGetPascalString(string(u"a中").get(), buffer, 8, kRoman));
    EXPECT_EQ(buffer[0], 0) << "the encoding lacks a character";
}

TEST(Bytes, StopOrSubstituteWhereTheEncodingOrTheBufferEnds) {
    const struct {
        std::u16string_view text;
        CFStringEncoding encoding;
        UInt8 lossByte;
        CFIndex capacity;  ///< negative: no buffer, only counting
        CFIndex units;
        std::string_view bytes;  ///< what is written, or as many bytes as are counted
    } cases[] = {
        {u"ab", kUtf8, 0, 1, 1, "a"},          {u"€A", kLittle, 0, 2, 1, "\xAC\x20"},
        {u"a中b", kRoman, 0, 32, 1, "a"},      {u"abcdef", kAscii, 0, -1, 6, "abcdef"},
        {u"café", kUtf8, 0, 4, 3, "caf"},      {u"€é", kWindows, 0, 32, 2, "\x80\xE9"},
        {u"café", kAscii, 0, 32, 3, "caf"},    {u"\U0001F600x", kRoman, '?', 32, 3, "?x"},
        {u"€A", kBig, 0, 3, 1, "\x20\xAC"},    {u"\U0001F600x", kAscii, '?', 32, 3, "\?\?x"},
        {u"abc", kUnknown, '?', 32, 0, ""},    {u"\u2019\u2026", kAscii, '?', 32, 2, "\?\?"},
        {u"a中b", kRoman, '?', 32, 3, "a?b"},  {u"中é", kUtf8, 0, 32, 2, "\xE4\xB8\xAD\xC3\xA9"},
        {u"abcdef", kAscii, 0, 3, 3, "abc"},   {u"\U0001F600", kUtf8, 0, 4, 2, "\xF0\x9F\x98\x80"},
        {u"café", kAscii, '?', 32, 4, "caf?"},
    };
    for (const auto& row : cases) {
        const auto text = string(row.text);
        char buffer[32];
        CFIndex used = -1;
        EXPECT_EQ(CFStringGetBytes(
                      text.get(), CFRangeMake(0, CFStringGetLength(text.get())), row.encoding, row.lossByte,
                      0, row.capacity < 0 ? nullptr : reinterpret_cast<UInt8*>(buffer), row.capacity, &used),
                  row.units)
            << PrintToString(row.text);
        ASSERT_EQ(used, static_cast<CFIndex>(row.bytes.size())) << PrintToString(row.text);
        EXPECT_TRUE(row.capacity < 0 || row.bytes == std::string_view(buffer, row.bytes.size())) << row.bytes;
    }
}

}  // namespace
}  // namespace platform_tests
