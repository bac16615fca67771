// What the environment decides where there is no user database: languages, text encoding, keyboard.
#include <Carbon/Carbon.h>

#include <array>
#include <cstring>

#include "support.h"

namespace platform_tests {
namespace {

constexpr std::array kVariables = {"LC_ALL", "LC_MESSAGES", "LC_CTYPE", "LANG", "LANGUAGE"};

using Setting = std::pair<const char*, const char*>;

void setLocale(std::initializer_list<Setting> settings) {
    for (const char* name : kVariables) {
        ::unsetenv(name);
    }
    for (const auto& [name, value] : settings) {
        ::setenv(name, value, 1);
    }
}

class EnvironmentTest : public BundleTest {
  protected:
    EnvironmentTest() {
        for (std::size_t i = 0; i < kVariables.size(); ++i) {
            const char* value = std::getenv(kVariables[i]);
            saved_[i] = value != nullptr ? value : "";
        }
    }
    ~EnvironmentTest() override {
        setLocale({});
        for (std::size_t i = 0; i < kVariables.size(); ++i) {
            if (!saved_[i].empty()) {
                ::setenv(kVariables[i], saved_[i].c_str(), 1);
            }
        }
    }

    void addLanguage(const std::string& name) const {
        write("Contents/Resources/" + name + ".lproj/Localizable.strings", "k = \"" + name + "\";");
    }

  private:
    std::array<std::string, kVariables.size()> saved_;
};

struct LanguageCase {
    std::initializer_list<Setting> settings;
    std::u16string_view folder;
};

TEST_F(EnvironmentTest, TheUsersLanguageChoosesTheFolder) {
    for (const char* name : {"en", "German", "de_AT", "pt-BR", "zh-Hant", "zh-Hans", "nb", "Base"}) {
        addLanguage(name);
    }
    const LanguageCase cases[] = {
        {{{"LANG", "de_DE.UTF-8"}}, u"German"},
        {{{"LANG", "de_AT.UTF-8@euro"}}, u"de_AT"},
        {{{"LANG", "en_US"}, {"LC_MESSAGES", "de"}}, u"German"},
        {{{"LANG", "de"}, {"LC_ALL", "en_GB.UTF-8"}}, u"en"},
        {{{"LANG", "pt_PT"}}, u"pt-BR"},
        {{{"LANG", "zh_TW.UTF-8"}}, u"zh-Hant"},
        {{{"LANG", "zh_CN.UTF-8"}}, u"zh-Hans"},
        {{{"LANG", "no_NO"}}, u"nb"},
        {{{"LANG", "it_IT"}, {"LANGUAGE", "fr:de_AT:en"}}, u"de_AT"},
        {{{"LANG", "de"}, {"LANGUAGE", ":::"}}, u"German"},
        {{{"LANG", "C"}, {"LANGUAGE", "de"}}, u"en"},
        {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, u"en"},
        {{{"LC_ALL", "POSIX"}, {"LANG", "de"}}, u"en"},
        {{{"LANG", "it_IT"}}, u"en"},
        {{}, u"en"},
        {{{"LANG", "../en"}}, u"en"},
    };
    for (const LanguageCase& row : cases) {
        setLocale(row.settings);
        std::string name;
        for (const auto& [variable, value] : row.settings) {
            name += std::string(variable) + "=" + value + " ";
        }
        EXPECT_EQ(localized(u"k"), row.folder) << name;
    }
}

TEST_F(EnvironmentTest, OtherFoldersFillWhatTheBestOneLacks) {
    addLanguage("fr");
    addLanguage("Base");
    write("Contents/Resources/de.lproj/Other.strings", "k = german;");
    writeInfo("<key>CFBundleDevelopmentRegion</key><string>French</string>");
    setLocale({{"LANG", "de_DE"}});
    EXPECT_EQ(localized(u"k"), u"fr");
    EXPECT_EQ(localized(u"k", CFSTR("Other")), u"german");
}

TEST_F(EnvironmentTest, ABundleKeepsItsLanguage) {
    addLanguage("de");
    addLanguage("en");
    setLocale({{"LANG", "de_DE"}});
    const auto bundle = open();
    EXPECT_EQ(localized(u"k"), u"de");
    setLocale({{"LANG", "en_GB"}});
    EXPECT_EQ(localized(u"k"), u"de");
}

TEST_F(EnvironmentTest, TheLocaleNamesTheTextEncoding) {
    const struct {
        std::initializer_list<Setting> settings;
        TextEncoding encoding;
    } cases[] = {
        {{{"LANG", "de_AT.UTF-8"}}, kCFStringEncodingUTF8},
        {{{"LANG", "de_AT.utf8@euro"}}, kCFStringEncodingUTF8},
        {{{"LC_CTYPE", "C.UTF-8"}, {"LANG", "C"}}, kCFStringEncodingUTF8},
        {{{"LC_ALL", "C"}, {"LC_CTYPE", "C.UTF-8"}}, kCFStringEncodingMacRoman},
        {{{"LANG", "de_AT.ISO-8859-1"}}, kCFStringEncodingMacRoman},
        {{}, kCFStringEncodingMacRoman},
    };
    for (const auto& row : cases) {
        setLocale(row.settings);
        EXPECT_EQ(GetApplicationTextEncoding(), row.encoding);
        EXPECT_EQ(CFStringGetSystemEncoding(), row.encoding);
    }
}

TEST(Keyboard, HasNoKeyDown) {
    KeyMap keys;
    std::memset(keys, 0xFF, sizeof keys);
    GetKeys(keys);
    KeyMapByteArray bytes;
    static_assert(sizeof keys == sizeof bytes);
    std::memcpy(bytes, keys, sizeof bytes);
    EXPECT_EQ(std::count(std::begin(bytes), std::end(bytes), 0), 16);
}

}  // namespace
}  // namespace platform_tests
