// What the environment decides where there is no user database: languages, text encoding, keyboard.
#include <Carbon/Carbon.h>

#include <cstring>
#include <sstream>
#include <vector>

#include "support.h"

namespace platform_tests {
namespace {

/// Settings are written as "LANG=de LC_ALL=C"; the other variables are unset.
void setLocale(const std::string& settings) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LC_CTYPE", "LANG", "LANGUAGE"}) ::unsetenv(name);
    std::istringstream words(settings);
    for (std::string word; words >> word;)
        ::setenv(word.substr(0, word.find('=')).c_str(), word.substr(word.find('=') + 1).c_str(), 1);
}

class EnvironmentTest : public BundleTest {
  protected:
    ~EnvironmentTest() override { setLocale("LC_ALL=C"); }

    void addLanguages(std::initializer_list<std::string> names) const {
        for (const std::string& name : names)
            write("Contents/Resources/" + name + ".lproj/Localizable.strings", "k = \"" + name + "\";");
    }
};

TEST_F(EnvironmentTest, TheUsersLanguageChoosesTheFolder) {
    addLanguages({"en", "German", "de_AT", "pt-BR", "zh-Hant", "zh-Hans", "nb", "Base"});
    const std::pair<std::u16string_view, std::vector<const char*>> cases[] = {
        {u"German", {"LANG=de_DE.UTF-8", "LANG=en_US LC_MESSAGES=de", "LANG=de LANGUAGE=:::"}},
        {u"de_AT", {"LANG=de_AT.UTF-8@euro", "LANG=it_IT LANGUAGE=fr:de_AT:en"}},
        {u"en",
         {"LANG=de LC_ALL=en_GB.UTF-8", "LANG=C LANGUAGE=de", "LANG=C.UTF-8 LANGUAGE=de",
          "LC_ALL=POSIX LANG=de", "LANG=it_IT", "", "LANG=../en"}},
        {u"pt-BR", {"LANG=pt_PT"}},
        {u"zh-Hant", {"LANG=zh_TW.UTF-8"}},
        {u"zh-Hans", {"LANG=zh_CN.UTF-8"}},
        {u"nb", {"LANG=no_NO"}},
    };
    for (const auto& [language, choices] : cases) {
        for (const char* settings : choices) {
            setLocale(settings);
            EXPECT_EQ(localized(u"k"), language) << settings;
        }
    }
}

TEST_F(EnvironmentTest, OtherFoldersFillWhatTheBestOneLacksAndABundleKeepsItsLanguage) {
    addLanguages({"fr", "Base"});
    write("Contents/Resources/de.lproj/Other.strings", "k = german;");
    writeInfo(entry("CFBundleDevelopmentRegion", "French"));
    setLocale("LANG=de_DE");
    const auto bundle = open();
    EXPECT_EQ(localized(u"k"), u"fr");
    EXPECT_EQ(localized(u"k", CFSTR("Other")), u"german");
    addLanguages({"de", "en"});
    setLocale("LANG=en_GB");
    EXPECT_EQ(localized(u"k", CFSTR("Other")), u"german");
}

TEST_F(EnvironmentTest, TheLocaleNamesTheTextEncoding) {
    const std::pair<const char*, TextEncoding> cases[] = {
        {"LANG=de_AT.UTF-8", kCFStringEncodingUTF8},
        {"LANG=de_AT.utf8@euro", kCFStringEncodingUTF8},
        {"LC_CTYPE=C.UTF-8 LANG=C", kCFStringEncodingUTF8},
        {"LC_ALL=C LC_CTYPE=C.UTF-8", kCFStringEncodingMacRoman},
        {"LANG=de_AT.ISO-8859-1", kCFStringEncodingMacRoman},
        {"", kCFStringEncodingMacRoman},
    };
    for (const auto& [settings, encoding] : cases) {
        setLocale(settings);
        EXPECT_EQ(GetApplicationTextEncoding(), encoding) << settings;
        EXPECT_EQ(CFStringGetSystemEncoding(), encoding) << settings;
    }
}

TEST(Keyboard, HasNoKeyDown) {
    KeyMapByteArray bytes;
    KeyMap keys;
    static_assert(sizeof keys == sizeof bytes);
    std::memset(keys, 0xFF, sizeof keys);
    GetKeys(keys);
    std::memcpy(bytes, keys, sizeof bytes);
    EXPECT_EQ(std::count(std::begin(bytes), std::end(bytes), 0), 16);
}

}  // namespace
}  // namespace platform_tests
