// Resource files and tables of strings: names, folders, syntax, encodings, and what a miss gives.
#include "support.h"

namespace platform_tests {
namespace {

TEST_F(BundleTest, ResourcesAreFoundByNameTypeAndFolder) {
    for (const char* name :
         {"data.txt", "dialogs/main.txt", "en.lproj/only.txt", "en.lproj/dialogs/pitch.txt"})
        write(std::string("Contents/Resources/") + name, "x");
    write("Contents/outside.txt", "x");
    const std::u16string outside = (folder() / "Contents/outside").u16string();
    // Empty parts are absent ones; a path is below the resources.
    const struct {
        std::u16string name, type, directory;
        const char* path;
    } cases[] = {
        {u"", u"txt", u"", nullptr},         {u"data", u".txt", u"", "data.txt"},
        {u"data", u"", u"", nullptr},        {u"outside", u"txt", u"..", nullptr},
        {u"Data", u"txt", u"", nullptr},     {u"../outside", u"txt", u"", nullptr},
        {u"data", u"bin", u"", nullptr},     {{u"data\0", 5}, u"txt", u"", nullptr},
        {u"main", u"txt", u"", nullptr},     {u"only", u"txt", u"", "en.lproj/only.txt"},
        {outside, u"txt", u"", nullptr},     {u"main", u"txt", u"dialogs", "dialogs/main.txt"},
        {u"data", u"txt", u"", "data.txt"},  {u"pitch", u"txt", u"dialogs", "en.lproj/dialogs/pitch.txt"},
        {u"data.txt", u"", u"", "data.txt"},
    };
    const auto part = [](const std::u16string& text) { return text.empty() ? nullptr : string(text); };
    for (const auto& [name, type, directory, path] : cases) {
        const Held<CFURLRef> found(
            CFBundleCopyResourceURL(open().get(), part(name).get(), part(type).get(), part(directory).get()));
        EXPECT_EQ(pathOf(found), path ? (folder() / "Contents/Resources" / path).native() : "<NULL>")
            << PrintToString(name);
    }
    EXPECT_EQ(CFBundleCopyResourceURL(open().get(), CFSTR(""), nullptr, nullptr), nullptr);
}

using TableCase = std::tuple<std::string_view, std::u16string_view, std::u16string_view>;

TEST_F(BundleTest, TablesAreReadInTheirWholeSyntaxAndEveryAnnouncedEncoding) {
    const std::string_view little("\xFF\xFEk\0=\0\"\0\xE9\0\"\0;\0", 14);
    const std::string_view big("\xFE\xFF\0k\0=\0\"\0\xE9\0\"\0;", 14);
    const std::string_view binary(
        "bplist00\xD1\1\2\x51k\x51v\x08\x0B\x0D\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\3\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
        "\x0F",
        50);
    const std::string xml = xmlPropertyList(entry("k", "xml"));
    std::string wideXml = "\xFF\xFE";
    for (const char c : xml) wideXml += {c, '\0'};
    const std::string bareLetter("\xFF\xFEk\0=\0\xE9\0;\0", 10);  // a bare value may not hold the letter
    const TableCase cases[] = {
        {"\"20134,13\" = \"Nothing chosen\";", u"20134,13", u"Nothing chosen"},
        {"/* a */ \"k\" /* b */ = // c\n \"v\" /* d */ ; // e", u"k", u"v"},
        {"bare_Key.1 = bare-value/2;", u"bare_Key.1", u"bare-value/2"},
        {"'single \"k\"' = 'v';", u"single \"k\"", u"v"},
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
        {"\xEF\xBB\xBFk = \"\xC3\xA9\";", u"k", u"\u00E9"},
        {"k = \"\x8E\";", u"k", kMiss},
        {little, u"k", u"\u00E9"},
        {little.substr(2), u"k", kMiss},
        {bareLetter, u"k", kMiss},
        {big, u"k", u"\u00E9"},
        {big.substr(2), u"k", kMiss},
        {big.substr(0, 13), u"k", kMiss},
        {xml, u"k", u"xml"},
        {wideXml, u"k", u"xml"},
        {binary, u"k", u"v"},
    };
    for (const auto& [content, key, value] : cases) {
        write(kTable, content);
        EXPECT_EQ(localized(key), value) << PrintToString(content);
    }
    for (const std::string_view fault :
         {"k = v; x = y", "k = v x = y;", "k = v; x = ;", "k = v; x = \"open;", "k = v; = y;",
          "k = v; x = (a b);", "k = v; x = <0g>;", "k = v; x = <012>;", "{ k = v; ", "{ k = v; } junk",
          "k = v; }", "k = v; x = { y = z };", "k = v; \"\\", "k = v; x = (a, b;", "k = v; x = y; *",
          "k = v; x y = z;"}) {
        write(kTable, fault);
        EXPECT_EQ(localized(u"k"), kMiss) << fault;
    }
}

TEST_F(BundleTest, AMissGivesTheValueOrTheKeyItself) {
    write(kTable, "empty = \"\"; k = v;");
    const auto bundle = open();
    const auto key = string(u"absent");
    const auto copy = [&](CFStringRef name, CFStringRef instead) {
        return HeldString(CFBundleCopyLocalizedString(bundle.get(), name, instead, nullptr));
    };
    EXPECT_EQ(copy(key.get(), nullptr).get(), key.get());
    EXPECT_EQ(copy(key.get(), CFSTR("")).get(), key.get());
    EXPECT_EQ(units(copy(key.get(), CFSTR("instead"))), u"instead");
    EXPECT_EQ(units(copy(nullptr, nullptr)), u"");
    EXPECT_EQ(units(copy(nullptr, CFSTR("instead"))), u"instead");
    EXPECT_EQ(units(copy(CFSTR("empty"), CFSTR("instead"))), u"");
}

}  // namespace
}  // namespace platform_tests
