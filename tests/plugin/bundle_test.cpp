// The built bundle as a host sees it: loaded at run time, called by name, in several languages and places;
// its texts and dialogs, complete in every language.
#include <CoreFoundation/CoreFoundation.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "contract/descriptor.h"
#include "host_double.h"
#include "util/platform_string.h"

namespace fs = std::filesystem;

namespace {

const std::string kLanguages[] = {"en", "de", "fr", "it", "es", "ja"};

using Texts = std::map<std::string, std::string>;

// The pairs of a file in plugin/resources; reports lines of another form, empty texts and repeated keys.
Texts readStringsFile(const std::string& language, const std::string& table) {
    static const std::regex pair(R"re("([0-9.,]+)" = "([^"\\]+)";)re");
    static const std::regex noPair(R"(|/\* .* \*/)");
    const std::string path = ROVESCIO_RESOURCES "/" + language + ".lproj/" + table + ".strings";
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    Texts texts;
    std::smatch match;
    for (std::string line; std::getline(file, line);) {
        if (std::regex_match(line, noPair)) continue;
        EXPECT_TRUE(std::regex_match(line, match, pair) && texts.emplace(match[1], match[2]).second)
            << path << ": " << line;
    }
    return texts;
}

// What the body returned when run in a child process under the locale; a child that crashed fails the test.
std::string runInChild(const std::string& locale, const std::function<std::string()>& body) {
    const fs::path answer = fs::path(testing::TempDir()) / ("rovescio-answer-" + std::to_string(getpid()));
    const pid_t child = fork();
    if (child == 0) {
        setenv("LC_ALL", locale.c_str(), 1);
        std::ofstream(answer) << body();
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the child process under " << locale << " came to grief";
    std::ifstream file(answer);
    fs::remove(answer);
    return {std::istreambuf_iterator<char>(file), {}};
}

const fs::path kBuiltCode = fs::path(ROVESCIO_BUNDLE) / "Contents/MacOS/Rovescio";

// The entry points of one loaded bundle. Stays loaded until the process ends.
struct Extension {
    void* image;

    explicit Extension(const fs::path& code) : image(dlopen(code.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (image == nullptr) throw std::runtime_error(dlerror());
    }
    // What it answers to a question for a command's description, after its start.
    int enumerate(short command, ExtensionDescriptor* descriptor) const {
        const char* arguments[] = {"host", nullptr};
        reinterpret_cast<int (*)(int, const char**)>(dlsym(image, "main"))(1, arguments);
        using Enumerate = int (*)(void*, short, ExtensionDescriptor*);
        return reinterpret_cast<Enumerate>(dlsym(image, "Ext_enumerate_UTF16"))(nullptr, command, descriptor);
    }
};

std::string toUtf8(std::u16string_view units) {
    char bytes[1024] = {};
    CFStringGetCString(makePlatformString(units).get(), bytes, sizeof bytes, kCFStringEncodingUTF8);
    return bytes;
}

// The texts of a command of a bundle's code in a fresh process, with the alerts they caused.
std::string textsIn(const fs::path& code, const std::string& locale = "C.UTF-8", short command = 0) {
    return runInChild(locale, [&] {
        const Extension extension(code);
        ExtensionDescriptor descriptor{};
        if (extension.enumerate(command, &descriptor) == 0) return std::string("refused");
        std::string text;
        for (const char16_t* part : {descriptor.menuText, descriptor.commandName, descriptor.helpText})
            text += toUtf8(part) + "\n";
        for (const std::string& alert : alerts) text += alert + "\n";
        return text;
    });
}

// What the entry points answer to a host otherwise, the validator asks of the built bundle.
TEST(Descriptor, SpeaksTheUsersLanguage) {
    for (const std::string locale : {"en_GB.UTF-8", "de_AT.UTF-8", "fr_CA.UTF-8", "it_IT.UTF-8",
                                     "es_MX.UTF-8", "ja_JP.UTF-8", "C", "fi_FI.UTF-8"}) {
        const std::string language = locale == "C" || locale.starts_with("fi") ? "en" : locale.substr(0, 2);
        const Texts texts = readStringsFile(language, "Localizable");
        const std::string others = texts.at("20129,1") + "\n" + texts.at("20129,2") + "\n";
        EXPECT_EQ(textsIn(kBuiltCode, locale), texts.at("20128,1") + "\n" + others) << locale;
        // A command before the first has the key of a text that is missing.
        EXPECT_EQ(textsIn(kBuiltCode, locale, -1), "20128,0\n" + others) << locale;
    }
}

TEST(Resources, NoMenuHasATextTwice) {
    for (const auto& language : kLanguages) {
        std::set<std::string> seen;
        for (const auto& [key, text] : readStringsFile(language, "Dialogs")) {
            const bool isEntry = std::count(key.begin(), key.end(), '.') == 2;
            const std::string menu = key.substr(0, key.rfind('.'));
            EXPECT_TRUE(!isEntry || seen.insert(menu + text).second) << "twice: " << language << key << text;
        }
    }
}

TEST(Resources, EveryLanguageHasEveryTextAndItFits) {
    // Keys and the most units of their texts, where there is a limit.
    const std::map<std::string, CFIndex> limits = {{"20128,1", 127},  {"20129,1", 127},  {"20129,2", 127},
                                                   {"20134,1", 999},  {"20134,2", 63},   {"20134,3", 63},
                                                   {"20134,9", 63},   {"20134,10", 63},  {"20134,11", 63},
                                                   {"20134,12", 999}, {"20134,13", 999}, {"20139,1", 63}};
    for (const auto& language : kLanguages) {
        const Texts texts = readStringsFile(language, "Localizable");
        EXPECT_EQ(texts.size(), limits.size()) << language;
        for (const auto& [key, limit] : limits) {
            SCOPED_TRACE(testing::Message() << language << " " << key);
            ASSERT_TRUE(texts.contains(key));
            const bool isRange = key == "20139,1";
            EXPECT_TRUE(!isRange || std::regex_match(texts.at(key), std::regex("[^%]*%d[^%]*%d[^%]*")));
            const PlatformOwned<CFStringRef> text(
                CFStringCreateWithCString(kCFAllocatorDefault, texts.at(key).c_str(), kCFStringEncodingUTF8));
            // Measures have up to three digits more than the format has for them.
            EXPECT_LE(CFStringGetLength(text.get()) + (isRange ? 6 : 0), limit);
        }
    }
}

// A bundle of any shape around a copy of the plug-in's code.
class ScratchBundle : public testing::Test {
  protected:
    ~ScratchBundle() override { fs::remove_all(root_); }

    void place(const fs::path& file, const std::string& content) const {
        fs::create_directories((root_ / file).parent_path());
        std::ofstream(root_ / file) << content;
    }
    void placeInfo(const fs::path& file, const std::string& key = "CFBundleExecutable",
                   const std::string& value = "Rovescio") const {
        place(file,
              "<plist version=\"1.0\"><dict><key>CFBundleDevelopmentRegion</key><string>en</string><key>" +
                  key + "</key><string>" + value + "</string></dict></plist>");
    }
    void placeTexts(const fs::path& folder, const std::string& text) const {
        place(folder / "en.lproj/Localizable.strings", "\"20128,1\" = \"" + text + "\";\n");
    }
    fs::path placeCode(const fs::path& folder) const {
        fs::create_directories(root_ / folder);
        fs::copy_file(kBuiltCode, root_ / folder / "Rovescio");
        return root_ / folder / "Rovescio";
    }

    const fs::path root_ = fs::path(testing::TempDir()) / ("rovescio-" + std::to_string(getpid()));
};

TEST_F(ScratchBundle, IsTheInnermostWithAnExecutableKey) {
    const auto code = placeCode("Contents/MacOS/deep/deeper");
    placeInfo("Contents/Info.plist");
    // Only a bundle made of an inner folder alone would have these texts.
    placeTexts("Contents", "of the folder Contents");
    placeInfo("Contents/MacOS/deep/Info.plist", "CFBundleName");
    placeTexts("Contents/MacOS/deep", "inner");
    const std::string alert = "0 Missing Localizable.strings\n";
    EXPECT_EQ(textsIn(code), "20128,1\n20129,1\n20129,2\n" + alert + alert + alert);
    placeTexts("Contents/Resources", std::string(128, 'x'));
    EXPECT_EQ(textsIn(code), std::string(127, 'x') + "\n20129,1\n20129,2\n") << "cut and terminated";
}

TEST_F(ScratchBundle, SharesTheLibraryThatItCarriesWithAHostThatHasIt) {
    fs::copy(ROVESCIO_BUNDLE, root_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    const std::string files = runInChild("C.UTF-8", [&] {
        const Extension extension(root_ / "Contents/MacOS/Rovescio");
        std::ifstream maps("/proc/self/maps");
        std::string text;
        for (std::string line; std::getline(maps, line);) {
            const bool ofLibrary = line.find("RovescioPlatform") != std::string::npos;
            const std::string path = ofLibrary ? line.substr(line.find('/')) : "";
            if (text.find(path) == std::string::npos) text += path;
        }
        return text;
    });
    EXPECT_EQ(files, ROVESCIO_BUNDLE "/Contents/Frameworks/libRovescioPlatform.so.1");
}

TEST_F(ScratchBundle, IsFoundHoweverThePathOfItsCodeIsSpelled) {
    placeCode("A/Contents/MacOS");
    for (const std::string name : {"A", "B"}) {
        placeInfo(name + "/Contents/Info.plist");
        placeTexts(name + "/Contents/Resources", name);
    }
    fs::create_directory_symlink(root_ / "A/Contents/MacOS", root_ / "folder");
    fs::create_symlink(root_ / "A/Contents/MacOS/Rovescio", root_ / "code.so");
    // Code that is a link out of its bundle.
    fs::create_directory(root_ / "B/Contents/MacOS");
    fs::create_symlink(placeCode("loose"), root_ / "B/Contents/MacOS/Rovescio");
    const std::string root = root_.string();
    const std::string relative = fs::relative(root_).string();
    const std::pair<std::string, std::string> codes[] = {
        {root + "/A/Contents/MacOS/../MacOS/Rovescio", "A"},
        {root + "//A//Contents//MacOS/./Rovescio", "A"},
        {root + "/folder/Rovescio", "A"},
        {root + "/folder/../MacOS/Rovescio", "A"},
        {root + "/code.so", "A"},
        {relative + "/A/Contents/MacOS/Rovescio", "A"},
        {root + "/B/Contents/MacOS/Rovescio", "B"},
        {root + "/B/Contents/./MacOS/../MacOS/Rovescio", "B"}};
    for (const auto& [code, text] : codes) EXPECT_EQ(textsIn(code), text + "\n20129,1\n20129,2\n") << code;
}

TEST_F(ScratchBundle, IsMissedWithAnAssertion) {
    const Extension extension(placeCode("loose"));
    ExtensionDescriptor descriptor{};
    EXPECT_DEATH(extension.enumerate(0, &descriptor),
                 "LIB/portable:176: CopyPlugInStringResource: Assertion `bundleRef != NULL' failed");
}

// The alert that the strings file is missing is the first thing a host hears of the command.
TEST_F(ScratchBundle, CatchesExceptionsOfTheHostWhileItDescribesItsCommand) {
    const auto code = placeCode("Contents/MacOS");
    placeInfo("Contents/Info.plist");
    alertThrows = true;
    EXPECT_EQ(textsIn(code), "refused");
    alertThrows = false;
}

TEST(ExportTable, HoldsTheEntryPointsAndTheTwoGlobalsOnly) {
    std::FILE* listing =
        popen((NM_PROGRAM " -D --defined-only --format=posix " + kBuiltCode.string()).c_str(), "r");
    ASSERT_NE(listing, nullptr);
    std::set<std::string> names;
    char line[512];
    while (std::fgets(line, sizeof line, listing) != nullptr) names.emplace(line, std::strcspn(line, " \n"));
    EXPECT_EQ(pclose(listing), 0);
    std::istringstream words(
        "Ext_enumerate_UTF16 Ext_getmenustatus Ext_getversion Ext_init Ext_invoke Ext_terminate QorVersion "
        "main ScorixExtensionEnumerate_UTF16 ScorixExtensionGetMenuStatus ScorixExtensionInit "
        "ScorixExtensionInvoke ScorixExtensionTerminate ScorixExtensionVersion gScorixBundle");
    EXPECT_EQ(names, (std::set<std::string>{std::istream_iterator<std::string>(words), {}}));
}

}  // namespace
