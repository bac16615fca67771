// The built bundle as a host sees it: loaded at run time, called by name, in several languages and places.
#include <CoreFoundation/CoreFoundation.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "child_process.h"
#include "contract/descriptor.h"
#include "host_double.h"
#include "strings_file.h"
#include "util/platform_string.h"

namespace fs = std::filesystem;

namespace {

const fs::path kBuiltCode = fs::path(ROVESCIO_BUNDLE) / "Contents/MacOS/Rovescio";

// The entry points of one loaded bundle. Stays loaded until the process ends.
struct Extension {
    void* image;

    explicit Extension(const fs::path& code) : image(dlopen(code.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (image == nullptr) throw std::runtime_error(dlerror());
    }
    template <typename Type>
    Type* symbol(const char* name) const {
        void* address = dlsym(image, name);
        if (address == nullptr) throw std::runtime_error(dlerror());
        return reinterpret_cast<Type*>(address);
    }
    void start() const {
        const char* arguments[] = {"host", nullptr};
        symbol<int(int, const char**)>("main")(1, arguments);
    }
    int enumerate(short command, ExtensionDescriptor* descriptor) const {
        const auto entryPoint = symbol<int(void*, short, ExtensionDescriptor*)>("Ext_enumerate_UTF16");
        return entryPoint(nullptr, command, descriptor);
    }
};

std::string toUtf8(std::u16string_view units) {
    char bytes[1024] = {};
    CFStringGetCString(makePlatformString(units).get(), bytes, sizeof bytes, kCFStringEncodingUTF8);
    return bytes;
}

// The texts of command 0 of a bundle's code in a fresh process, with the alerts they caused.
std::string textsIn(const fs::path& code, const std::string& locale = "C.UTF-8") {
    return runInChild(locale, [&] {
        const Extension extension(code);
        extension.start();
        ExtensionDescriptor descriptor;
        extension.enumerate(0, &descriptor);
        std::string text;
        for (const char16_t* part : {descriptor.menuText, descriptor.commandName, descriptor.helpText})
            text += toUtf8(part) + "\n";
        for (const Alert& alert : alerts) text += alert.text + "\n";
        return text;
    });
}

// What the entry points answer to a host otherwise, the validator asks of the built bundle.
TEST(Descriptor, OfACommandBeforeTheFirstHasTheKeysOfTextsThatAreMissing) {
    const std::string text = runInChild("C.UTF-8", [] {
        const Extension extension(kBuiltCode);
        extension.start();
        ExtensionDescriptor descriptor;
        const int answer = extension.enumerate(-1, &descriptor);
        return std::to_string(answer) + " " + toUtf8(descriptor.menuText);
    });
    EXPECT_EQ(text, "1 20128,0");
}

TEST(Descriptor, SpeaksTheUsersLanguage) {
    for (const std::string locale : {"en_GB.UTF-8", "de_AT.UTF-8", "fr_CA.UTF-8", "it_IT.UTF-8",
                                     "es_MX.UTF-8", "ja_JP.UTF-8", "C", "fi_FI.UTF-8"}) {
        const std::string language = locale == "C" || locale.starts_with("fi") ? "en" : locale.substr(0, 2);
        const Texts texts = readStringsFile(language, "Localizable");
        EXPECT_EQ(textsIn(kBuiltCode, locale),
                  texts.at("20128,1") + "\n" + texts.at("20129,1") + "\n" + texts.at("20129,2") + "\n")
            << locale;
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
    const std::string alert = "Missing Localizable.strings\n";
    EXPECT_EQ(textsIn(code), "20128,1\n20129,1\n20129,2\n" + alert + alert + alert);
    placeTexts("Contents/Resources", std::string(128, 'x'));
    EXPECT_EQ(textsIn(code), std::string(127, 'x') + "\n20129,1\n20129,2\n") << "cut and terminated";
}

TEST_F(ScratchBundle, SharesTheLibraryThatItCarriesWithAHostThatHasIt) {
    fs::copy(ROVESCIO_BUNDLE, root_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    const std::string files = runInChild("C.UTF-8", [&] {
        const Extension extension(root_ / "Contents/MacOS/Rovescio");
        std::ifstream maps("/proc/self/maps");
        std::set<std::string> paths;
        for (std::string line; std::getline(maps, line);) {
            if (line.find("RovescioPlatform") != std::string::npos) paths.insert(line.substr(line.find('/')));
        }
        std::string text;
        for (const std::string& path : paths) text += path;
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
    ExtensionDescriptor descriptor;
    EXPECT_DEATH(extension.enumerate(0, &descriptor),
                 "LIB/portable:176: CopyPlugInStringResource: Assertion `bundleRef != NULL' failed");
}

// The alert that the strings file is missing is the first thing a host hears of the command.
TEST_F(ScratchBundle, CatchesExceptionsOfTheHostWhileItDescribesItsCommand) {
    const auto code = placeCode("Contents/MacOS");
    placeInfo("Contents/Info.plist");
    const std::string answer = runInChild("C.UTF-8", [&] {
        const Extension extension(code);
        extension.start();
        alertThrows = true;
        ExtensionDescriptor descriptor;
        return std::to_string(extension.enumerate(0, &descriptor));
    });
    EXPECT_EQ(answer, "0");
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
