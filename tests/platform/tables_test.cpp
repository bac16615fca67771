// Tables of strings: their syntax, their encodings, and what a miss gives.
#include "support.h"

namespace platform_tests {
namespace {

constexpr const char* kTable = "Contents/Resources/Localizable.strings";

struct TableCase {
    std::string_view content;
    std::u16string_view key;
    std::u16string_view value;
};

constexpr std::u16string_view kMiss = u"<miss>";

TEST_F(BundleTest, TablesAreReadInTheirWholeSyntax) {
    const TableCase cases[] = {
        {"\"20134,13\" = \"Nothing chosen\";", u"20134,13", u"Nothing chosen"},
        {"/* a */ \"k\" /* b */ = // c\n \"v\" /* d */ ; // e", u"k", u"v"},
        {"bare_Key.1 = bare-value/2;", u"bare_Key.1", u"bare-value/2"},
        {"'single \"k\"' = 'v';", u"single \"k\"", u"v"},
        {"{ k = v; }", u"k", u"v"},
        {"{ k = v; } // end", u"k", u"v"},
        {"\"a\"=\"1\";\r\"b\"=\"2\";\r\n\"c\"=\"3\";", u"c", u"3"},
        {R"(k = "a\nb\tc\rd\"e\\f\U00e9\101\u00e9";)", u"k", u"a\nb\tc\rd\"e\\f\u00E9Au00e9"},
        {"k = \"two\nlines\";", u"k", u"two\nlines"},
        {"\"short\"; k = v;", u"short", u"short"},
        {"k = first; k = last;", u"k", u"last"},
        {"k = v; /* never closed", u"k", u"v"},
        {"k = \"\";", u"k", u""},
        {"d = { x = (1, 2,); y = <0f 1E>; }; k = v;", u"k", u"v"},
        {"k = { x = y; };", u"k", kMiss},
        {"", u"k", kMiss},
        {"K = v;", u"k", kMiss},
        {"\"k \xE2\x99\xAD\" = \"\xF0\x9F\x98\x80\";", u"k \u266D", u"\U0001F600"},
    };
    for (const TableCase& row : cases) {
        write(kTable, row.content);
        EXPECT_EQ(localized(row.key), row.value) << row.content;
    }
}

TEST_F(BundleTest, TablesWithAFaultAreRefusedWhole) {
    const std::string_view faults[] = {
        "k = v; x = y", "k = v x = y;",      "k = v; x = ;",     "k = v; x = \"open;",
        "k = v; = y;",  "k = v; x = (a b);", "k = v; x = <0g>;", "k = v; x = <012>;",
        "{ k = v; ",    "{ k = v; } junk",   "k = v; }",         "k = v; x = { y = z };",
        "k = v; \"\\",  "k = v; x = (a, b;", "k = v; x = y; *",  "k = v; x y = z;",
    };
    for (const std::string_view fault : faults) {
        write(kTable, fault);
        EXPECT_EQ(localized(u"k"), kMiss) << fault;
    }
}

TEST_F(BundleTest, TablesAreReadInEveryAnnouncedEncoding) {
    const std::string_view little("\xFF\xFEk\0=\0\xE9\0;\0", 10);  // a bare value may not hold the letter
    const std::string_view quoted("\xFF\xFEk\0=\0\"\0\xE9\0\"\0;\0", 14);
    const std::string_view big("\xFE\xFF\0k\0=\0\"\0\xE9\0\"\0;", 14);
    const TableCase cases[] = {
        {quoted, u"k", u"\u00E9"},
        {big, u"k", u"\u00E9"},
        {little, u"k", kMiss},
        {"\xEF\xBB\xBFk = \"\xC3\xA9\";", u"k", u"\u00E9"},
        {quoted.substr(2), u"k", kMiss},
        {big.substr(2), u"k", kMiss},
        {big.substr(0, 13), u"k", kMiss},
        {"k = \"\x8E\";", u"k", kMiss},
        {"<?xml version=\"1.0\"?><plist><dict><key>k</key><string>xml</string></dict></plist>", u"k", u"xml"},
        {std::string_view("bplist00\xD1\1\2\x51k\x51v\x08\x0B\x0D\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\3\0\0\0\0\0\0"
                          "\0\0\0\0\0\0\0\0\0\x0F",
                          50),
         u"k", u"v"},
    };
    for (const TableCase& row : cases) {
        write(kTable, row.content);
        EXPECT_EQ(localized(row.key), row.value) << ::testing::PrintToString(row.content);
    }
}

TEST_F(BundleTest, XmlMayBeUtf16) {
    std::string wide = "\xFF\xFE";
    for (const char c : xmlPropertyList("<key>k</key><string>wide</string>")) {
        wide += {c, '\0'};
    }
    write(kTable, wide);
    EXPECT_EQ(localized(u"k"), u"wide");
}

TEST_F(BundleTest, AMissGivesTheValueOrTheKeyItself) {
    write(kTable, "empty = \"\"; k = v;");
    const auto bundle = open();
    const auto key = string(u"absent");
    const auto value = string(u"instead");
    const auto copy = [&](CFStringRef name, CFStringRef instead) {
        return HeldString(CFBundleCopyLocalizedString(bundle.get(), name, instead, nullptr));
    };
    EXPECT_EQ(copy(key.get(), nullptr).get(), key.get());
    EXPECT_EQ(copy(key.get(), CFSTR("")).get(), key.get());
    EXPECT_EQ(units(copy(key.get(), value.get())), u"instead");
    EXPECT_EQ(units(copy(nullptr, nullptr)), u"");
    EXPECT_EQ(units(copy(nullptr, value.get())), u"instead");
    EXPECT_EQ(units(copy(CFSTR("empty"), value.get())), u"");
}

TEST_F(BundleTest, TablesAreNamedExactly) {
    write(kTable, "k = default;");
    write("Contents/Resources/Other.strings", "k = other;");
    EXPECT_EQ(localized(u"k", nullptr), u"default");
    EXPECT_EQ(localized(u"k", CFSTR("")), u"default");
    EXPECT_EQ(localized(u"k", CFSTR("Localizable")), u"default");
    EXPECT_EQ(localized(u"k", CFSTR("Other")), u"other");
    EXPECT_EQ(localized(u"k", CFSTR("OTHER")), kMiss);
    EXPECT_EQ(localized(u"k", CFSTR("Missing")), kMiss);
    EXPECT_EQ(localized(u"k", CFSTR("../Resources/Other")), kMiss);
}

TEST_F(BundleTest, TablesOutsideLanguageFoldersComeFirst) {
    write("Contents/Resources/en.lproj/Localizable.strings", "k = english;");
    EXPECT_EQ(localized(u"k"), u"english");
    write(kTable, "k = root;");
    EXPECT_EQ(localized(u"k"), u"root");
}

TEST_F(BundleTest, FlatBundlesHaveTablesToo) {
    write("en.lproj/Localizable.strings", "k = flat;");
    EXPECT_EQ(localized(u"k"), u"flat");
}

}  // namespace
}  // namespace platform_tests
