// The built bundle as a host sees it: loaded at run time, called by name, in several languages and places.
#include <CoreFoundation/CoreFoundation.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "bundle_at.h"
#include "child_process.h"
#include "contract/descriptor.h"
#include "host_double.h"
#include "strings_file.h"

namespace fs = std::filesystem;

namespace {

struct DialogCall {
    short resourceId;
    SXDialogProc handler;
    SXWindow parent;
    short flags;
    void* userData;
    std::uint32_t version;
};
std::vector<DialogCall> dialogs;

const fs::path kBuiltCode = fs::path(ROVESCIO_BUNDLE) / "Contents/MacOS/Rovescio";

}  // namespace

HOST_DOUBLE std::intptr_t SX_Dialog(short resourceId, SXDialogProc handler, SXWindow parent, short flags,
                                    void* userData, std::uint32_t version) {
    dialogs.push_back({resourceId, handler, parent, flags, userData, version});
    return 2;
}

namespace {

// The entry points of one loaded bundle, under their long or short names. Stays loaded until the process
// ends.
struct Extension {
    void* image;
    bool aliased;

    explicit Extension(const fs::path& code, bool shortNames = false)
        : image(dlopen(code.c_str(), RTLD_NOW | RTLD_LOCAL)), aliased(shortNames) {
        if (image == nullptr) throw std::runtime_error(dlerror());
    }

    template <typename Type>
    Type* symbol(const char* name) const {
        void* address = dlsym(image, name);
        if (address == nullptr) throw std::runtime_error(dlerror());
        return reinterpret_cast<Type*>(address);
    }

    template <typename Type, typename... Arguments>
    auto call(const char* longName, const char* alias, Arguments... arguments) const {
        return symbol<Type>(aliased ? alias : longName)(arguments...);
    }

    int start(int count, const char** vector) const {
        return symbol<int(int, const char**)>("main")(count, vector);
    }
    int start() const {
        const char* arguments[] = {"host", nullptr};
        return start(1, arguments);
    }
    std::uint32_t version(std::uint32_t host) const {
        return call<std::uint32_t(std::uint32_t)>("ScorixExtensionVersion", "Ext_getversion", host);
    }
    int init(std::uint32_t* output) const {
        return call<int(void*, std::uint32_t*)>("ScorixExtensionInit", "Ext_init", nullptr, output);
    }
    int enumerate(short command, ExtensionDescriptor* descriptor) const {
        return call<int(void*, short, ExtensionDescriptor*)>(
            "ScorixExtensionEnumerate_UTF16", "Ext_enumerate_UTF16", nullptr, command, descriptor);
    }
    int invoke(SXWindow parent, short command) const {
        return call<int(SXWindow, short, EREGION*, EREGION*)>("ScorixExtensionInvoke", "Ext_invoke", parent,
                                                              command, nullptr, nullptr);
    }
    int menuStatus() const { return call<int()>("ScorixExtensionGetMenuStatus", "Ext_getmenustatus"); }
    void terminate() const { call<void()>("ScorixExtensionTerminate", "Ext_terminate"); }
    CFBundleRef engine() const { return *symbol<CFBundleRef>("gScorixBundle"); }
};

ExtensionDescriptor blankDescriptor() {
    ExtensionDescriptor descriptor;
    std::memset(&descriptor, 0xEE, sizeof descriptor);
    return descriptor;
}

std::string toUtf8(std::u16string_view units) {
    char bytes[1024] = {};
    CFStringGetCString(makePlatformString(units).get(), bytes, sizeof bytes, kCFStringEncodingUTF8);
    return bytes;
}

// Menu text of command 0 of a bundle's code in a fresh process, with the alerts it caused.
std::string menuTextIn(const fs::path& code) {
    return runInChild("C.UTF-8", [&] {
        const Extension extension(code);
        extension.start();
        auto descriptor = blankDescriptor();
        extension.enumerate(0, &descriptor);
        std::string text = toUtf8(descriptor.menuText);
        for (const Alert& alert : alerts) text += "|" + alert.text;
        return text;
    });
}

class EntryPoints : public testing::TestWithParam<bool> {
  protected:
    const Extension extension_{kBuiltCode, GetParam()};
};

TEST_P(EntryPoints, NegotiateAsTheInterfaceSays) {
    EXPECT_EQ(extension_.start(), 1);
    EXPECT_EQ(extension_.version(0x1B000001), kKitVersion);
    EXPECT_EQ(*extension_.symbol<std::uint32_t>("QorVersion"), 0x1B000001U);
    std::uint32_t output = 0xEEEEEEEE;
    EXPECT_EQ(extension_.init(&output), 1);
    EXPECT_EQ(output, 0U);
    EXPECT_EQ(extension_.menuStatus(), 1);
    extension_.terminate();
    EXPECT_EQ(*extension_.symbol<std::uint32_t>("QorVersion"), 0x1B000001U) << "terminate keeps everything";
}

TEST_P(EntryPoints, OfferExactlyOneCommand) {
    const auto blank = blankDescriptor();
    auto descriptor = blank;
    EXPECT_EQ(extension_.enumerate(1, &descriptor), 0);
    EXPECT_EQ(std::memcmp(&descriptor, &blank, sizeof blank), 0) << "a refused command writes nothing";
    EXPECT_EQ(extension_.enumerate(0, &descriptor), 1);
    EXPECT_EQ(descriptor.reserved, 0U);
    EXPECT_EQ(extension_.enumerate(-1, &descriptor), 1);
    EXPECT_EQ(std::u16string(descriptor.menuText), u"20128,0") << "no text of that number, so its key";
}

TEST_P(EntryPoints, InvokeOpensTheMainDialogOverTheHostsWindow) {
    ASSERT_EQ(extension_.start(), 1);
    int window = 0;
    for (const short command : {short{0}, short{-1}, short{1}}) {
        dialogs.clear();
        EXPECT_EQ(extension_.invoke(&window, command), 0) << "whatever the dialog's own result";
        ASSERT_EQ(dialogs.size(), command > 0 ? 0U : 1U);
        if (command > 0) continue;
        const DialogCall& call = dialogs.front();
        EXPECT_EQ(call.resourceId, 20130);
        EXPECT_NE(call.handler, nullptr);
        EXPECT_EQ(call.parent, &window);
        EXPECT_EQ(call.flags, 0x3000);
        EXPECT_EQ(call.userData, nullptr);
        EXPECT_EQ(call.version, kKitVersion);
    }
    EXPECT_TRUE(alerts.empty());
}

INSTANTIATE_TEST_SUITE_P(Names, EntryPoints, testing::Bool(),
                         [](const auto& names) { return names.param ? "Short" : "Long"; });

TEST(Descriptor, SpeaksTheUsersLanguage) {
    EXPECT_EQ(readStringsFile("de", "Localizable").at("20134,13"), "Es ist keine Verwandlung gewählt");
    const std::pair<std::string, std::string> locales[] = {
        {"en_GB.UTF-8", "en"}, {"de_AT.UTF-8", "de"}, {"fr_CA.UTF-8", "fr"}, {"it_IT.UTF-8", "it"},
        {"es_MX.UTF-8", "es"}, {"ja_JP.UTF-8", "ja"}, {"C", "en"},           {"fi_FI.UTF-8", "en"}};
    for (const auto& [locale, language] : locales) {
        const Texts texts = readStringsFile(language, "Localizable");
        EXPECT_EQ(runInChild(locale,
                             [] {
                                 auto descriptor = blankDescriptor();
                                 Extension(kBuiltCode).enumerate(0, &descriptor);
                                 return toUtf8(descriptor.menuText) + "\n" + toUtf8(descriptor.commandName) +
                                        "\n" + toUtf8(descriptor.helpText);
                             }),
                  texts.at("20128,1") + "\n" + texts.at("20129,1") + "\n" + texts.at("20129,2"))
            << locale;
    }
}

// Bundles of any shape, around copies of the plug-in's code where wanted.
class ScratchBundles : public testing::Test {
  protected:
    void SetUp() override { fs::create_directories(root_); }
    void TearDown() override { fs::remove_all(root_); }

    fs::path placeCode(const fs::path& directory) const {
        fs::create_directories(root_ / directory);
        fs::copy_file(kBuiltCode, root_ / directory / "Rovescio");
        return root_ / directory / "Rovescio";
    }
    void place(const fs::path& file, const std::string& content) const {
        fs::create_directories((root_ / file).parent_path());
        std::ofstream(root_ / file) << content;
    }
    void placeInfo(const fs::path& file, const std::string& key = "CFBundleExecutable",
                   const std::string& value = "Rovescio") const {
        place(file,
              R"(<plist version="1.0"><dict><key>CFBundleDevelopmentRegion</key><string>en</string><key>)" +
                  key + "</key><string>" + value + "</string></dict></plist>");
    }
    void placeMenuText(const fs::path& resources, const std::string& text) const {
        place(resources / "en.lproj/Localizable.strings", "\"20128,1\" = \"" + text + "\";\n");
    }

    const fs::path root_ = fs::path(testing::TempDir()) / ("rovescio-" + std::to_string(getpid()));
};
using EngineBundle = ScratchBundles;
using Location = ScratchBundles;

TEST_F(EngineBundle, IsTheMainBundleUntilOneWithTheIdentifierIsThereAtTheStart) {
    placeInfo("NotationEngine.bundle/Contents/Info.plist", "CFBundleIdentifier",
              "org.rovescio.NotationEngine");
    const std::string path = root_ / "NotationEngine.bundle";
    EXPECT_EQ("none main main", runInChild("C", [&] {
                  const Extension extension(kBuiltCode);
                  PlatformOwned<CFBundleRef> engine;
                  const char* nobody[] = {nullptr};
                  extension.start(0, nobody);
                  extension.start(1, nullptr);
                  std::string found = extension.engine() == nullptr ? "none" : "some";
                  for (int i = 0; i < 2; ++i) {
                      extension.start();
                      found += extension.engine() == CFBundleGetMainBundle() ? " main" : " other";
                      engine = bundleAt(path);
                  }
                  return found;
              }));
    EXPECT_EQ("engine", runInChild("C", [&] {
                  const auto engine = bundleAt(path);
                  const Extension extension(kBuiltCode);
                  return extension.start() == 1 && extension.engine() == engine.get() ? "engine" : "other";
              }));
}

TEST_F(Location, DirectoriesWithoutAnExecutableKeyAreClimbedOver) {
    const auto code = placeCode("A.bundle/Contents/MacOS/deep/deeper");
    placeInfo("A.bundle/Contents/Info.plist");
    placeMenuText("A.bundle/Contents/Resources", "outer");
    placeInfo("A.bundle/Contents/MacOS/deep/Info.plist", "CFBundleName");
    placeMenuText("A.bundle/Contents/MacOS/deep", "inner");
    EXPECT_EQ(menuTextIn(code), "outer");
}

TEST_F(Location, EveryMissWithoutAStringsFileAlerts) {
    const auto code = placeCode("A.bundle/Contents/MacOS");
    placeInfo("A.bundle/Contents/Info.plist");
    // Only a bundle made of the inner folder alone would have this text.
    placeMenuText("A.bundle/Contents", "of the folder Contents");
    const std::string alert = "|Missing Localizable.strings";
    EXPECT_EQ(menuTextIn(code), "20128,1" + alert + alert + alert);
}

TEST_F(Location, TextsTooLongForTheDescriptorAreCutAndTerminated) {
    const auto code = placeCode("A.bundle/Contents/MacOS");
    placeInfo("A.bundle/Contents/Info.plist");
    placeMenuText("A.bundle/Contents/Resources", std::string(128, 'x'));
    EXPECT_EQ(menuTextIn(code), std::string(127, 'x'));
}

TEST_F(Location, OutsideOfAnyBundleTheProcessStopsWithTheAssertion) {
    const auto code = placeCode("A.bundle/Contents/MacOS");
    const auto enumerate = [](const fs::path& path) {
        auto descriptor = blankDescriptor();
        Extension(path).enumerate(0, &descriptor);
    };
    const char* message = "LIB/portable:176: CopyPlugInStringResource: .*bundleRef != NULL";
    EXPECT_EXIT(enumerate(code), testing::KilledBySignal(SIGABRT), message) << "up to the root";

    // A relative path ends at the working directory, which is not tried.
    placeInfo("A.bundle/Contents/Info.plist");
    EXPECT_EXIT(
        {
            fs::current_path(root_ / "A.bundle");
            enumerate("Contents/MacOS/Rovescio");
        },
        testing::KilledBySignal(SIGABRT), message);
}

TEST(ExportTable, HoldsTheEntryPointsAndTheTwoGlobalsOnly) {
    std::FILE* listing =
        popen((NM_PROGRAM " -D --defined-only --format=posix " + kBuiltCode.string()).c_str(), "r");
    ASSERT_NE(listing, nullptr);
    std::set<std::string> names;
    char line[512];
    while (std::fgets(line, sizeof line, listing) != nullptr) names.emplace(line, std::strcspn(line, " \n"));
    EXPECT_EQ(pclose(listing), 0);
    const std::set<std::string> expected = {"Ext_enumerate_UTF16",
                                            "Ext_getmenustatus",
                                            "Ext_getversion",
                                            "Ext_init",
                                            "Ext_invoke",
                                            "Ext_terminate",
                                            "QorVersion",
                                            "ScorixExtensionEnumerate_UTF16",
                                            "ScorixExtensionGetMenuStatus",
                                            "ScorixExtensionInit",
                                            "ScorixExtensionInvoke",
                                            "ScorixExtensionTerminate",
                                            "ScorixExtensionVersion",
                                            "gScorixBundle",
                                            "main"};
    EXPECT_EQ(names, expected);
}

}  // namespace
