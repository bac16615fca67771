// Formatted strings: the conversions that the plug-in and the host use, their modifiers, and broken formats.
#include <clocale>

#include "support.h"

namespace platform_tests {
namespace {

template <class... Arguments>
std::u16string format(const char* pattern, Arguments... arguments) {
    const HeldString text(CFStringCreateWithCString(kCFAllocatorDefault, pattern, kCFStringEncodingUTF8));
    const HeldString made(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, text.get(), arguments...));
    return units(made);
}

TEST(Format, WritesIntegersOfEveryWidth) {
    EXPECT_EQ(format("%d,%d", 3, -7), u"3,-7");
    EXPECT_EQ(format("%i|%u|%hd|%hhu", -1, 4294967295U, 70000, 300), u"-1|4294967295|4464|44");
    EXPECT_EQ(format("%ld %lu", -5000000000L, 5000000000UL), u"-5000000000 5000000000");
    EXPECT_EQ(format("%lld %llu %qd", -1LL, ~0ULL, 8LL), u"-1 18446744073709551615 8");
    EXPECT_EQ(format("%zd %jd %td", 1L, 2LL, 3L), u"1 2 3");
    EXPECT_EQ(format("%x %X %#x %o", 0xBEEF, 0xBEEF, 255, 8), u"beef BEEF 0xff 10");
}

TEST(Format, WritesFlagsWidthAndPrecision) {
    EXPECT_EQ(format("[%5d|%-5d|%05d|%+d|% d|%.3d]", 42, 42, 42, 42, 42, 7),
              u"[   42|42   |00042|+42| 42|007]");
    EXPECT_EQ(format("[%*d|%-*d|%.*f]", 4, 7, 4, 7, 2, 1.239), u"[   7|7   |1.24]");
    EXPECT_EQ(format("[%*d]", -4, 7), u"[7   ]");
    EXPECT_EQ(format("[%5s|%-5s|%.2s]", "ab", "ab", "abc"), u"[   ab|ab   |ab]");
}

TEST(Format, WritesFloatingNumbersWithAPointInAnyLocale) {
    // Where this locale is installed, printf alone would write a comma.
    (void)std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ(format("%f %.1f %g %e %Lg", 1.5, 2.25, 0.0001, 12345.678, 0.5L),
              u"1.500000 2.2 0.0001 1.234568e+04 0.5");
    (void)std::setlocale(LC_ALL, "C");
}

TEST(Format, WritesTextsAndCharacters) {
    const UniChar wide[] = {0x4E2D, u'b', 0};
    EXPECT_EQ(format("%s:%S:%c%C", "one", wide, 'x', 0x20AC), u"one:\u4E2Db:x\u20AC");
    EXPECT_EQ(format("%s", static_cast<const char*>(nullptr)), u"(null)");
    EXPECT_EQ(format("%p", reinterpret_cast<void*>(0x1F)), u"0x1f");
    EXPECT_EQ(format("100%%"), u"100%");
    EXPECT_EQ(format("\xE2\x99\xAD %d", 2), u"\u266D 2");
}

TEST(Format, WritesObjectsAndTakesArgumentsByPosition) {
    const auto word = string(u"hi");
    const int answer = 42;
    const double half = 0.5;
    const Held<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &answer));
    const Held<CFNumberRef> fraction(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &half));
    EXPECT_EQ(format("%@ %5@ <%@>", word.get(), word.get(), static_cast<CFStringRef>(nullptr)),
              u"hi hi <(null)>");
    EXPECT_EQ(format("%2$@ %1$@ %3$@", number.get(), fraction.get(), word.get()), u"0.5 42 hi");
    EXPECT_EQ(format("%1$d %1$d %2$s", 7, "x"), u"7 7 x");
    EXPECT_EQ(format("%3$d %1$s", "unnamed second", 2L, 9), u"9 unnamed second");
}

TEST(Format, KeepsGoingAfterWhatItDoesNotKnow) {
    EXPECT_EQ(format("abc%"), u"abc");
    EXPECT_EQ(format("abc%5"), u"abc");
    EXPECT_EQ(format("%y|%d", 1, 2), u"y|1");
    EXPECT_EQ(format("%999$d|%d", 1), u"d|1");
    EXPECT_EQ(format("%hhhd|%d", 1), u"d|1");
    EXPECT_EQ(format("[%1$d|%1$.1f]", 1.5), u"[|1.5]");
    int written = 0;
    EXPECT_EQ(format("a%nb", &written), u"anb");
    EXPECT_EQ(written, 0);
    EXPECT_EQ(format("").size(), 0U);
}

}  // namespace
}  // namespace platform_tests
