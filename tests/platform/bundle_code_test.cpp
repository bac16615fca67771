// Code of bundles: loading on first use, lookup in the bundle's own code only, unloading, broken code.
#include <dlfcn.h>

#include "support.h"

/// Has the same name as a function of the bundle under test, which must not be mistaken for this one.
extern "C" __attribute__((visibility("default"))) int sampleFunction();
int sampleFunction() {
    return 2;
}

namespace platform_tests {
namespace {

namespace fs = std::filesystem;
using Function = int (*)();

class BundleCodeTest : public BundleTest {
  protected:
    BundleCodeTest() {
        writeInfo("<key>CFBundleExecutable</key><string>Sample</string>");
        fs::create_directories(folder() / "Contents/MacOS");
    }

    /// A copy of its own for each bundle, so that no test finds code that another one loaded.
    [[nodiscard]] Held<CFBundleRef> openWithCode() const {
        fs::copy_file(SAMPLE_CODE, folder() / "Contents/MacOS/Sample");
        return open();
    }

    static int call(CFBundleRef bundle, CFStringRef name) {
        void* found = CFBundleGetFunctionPointerForName(bundle, name);
        return found != nullptr ? reinterpret_cast<Function>(found)() : -1;
    }
};

TEST_F(BundleCodeTest, IsLoadedByTheFirstLookup) {
    const auto bundle = openWithCode();
    EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle.get()));
    EXPECT_EQ(call(bundle.get(), CFSTR("sampleFunction")), 1);
    EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle.get()));
    CFBundleUnloadExecutable(bundle.get());
    EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle.get()));
    EXPECT_EQ(call(bundle.get(), CFSTR("sampleFunction")), 1);
    CFBundleUnloadExecutable(bundle.get());
}

TEST_F(BundleCodeTest, GivesVariables) {
    const auto bundle = openWithCode();
    const void* variable = CFBundleGetDataPointerForName(bundle.get(), CFSTR("sampleVariable"));
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(*static_cast<const int*>(variable), 41);
    EXPECT_EQ(CFBundleGetDataPointerForName(bundle.get(), CFSTR("environ")), nullptr);
    CFBundleUnloadExecutable(bundle.get());
}

TEST_F(BundleCodeTest, HidesNamesThatItDoesNotDefine) {
    const auto bundle = openWithCode();
    EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle.get(), CFSTR("missing")), nullptr);
    EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle.get(), CFSTR("puts")), nullptr);
    EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle.get(), CFSTR("SAMPLEFUNCTION")), nullptr);
    EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle.get(), string({u"sampleFunction\0x", 16}).get()),
              nullptr);
    CFBundleUnloadExecutable(bundle.get());
}

TEST_F(BundleCodeTest, SharesCodeThatWasLoadedDirectly) {
    const auto bundle = openWithCode();
    void* handle = dlopen((folder() / "Contents/MacOS/Sample").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle.get()));
    EXPECT_EQ(CFBundleGetDataPointerForName(bundle.get(), CFSTR("sampleVariable")),
              dlsym(handle, "sampleVariable"));
    CFBundleUnloadExecutable(bundle.get());
    EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle.get()));
    dlclose(handle);
    EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle.get()));
}

TEST_F(BundleCodeTest, StaysAliveWhileItsCodeIsLoaded) {
    auto bundle = openWithCode();
    ASSERT_TRUE(CFBundleLoadExecutable(bundle.get()));
    ASSERT_TRUE(CFBundleLoadExecutable(bundle.get()));
    auto* const pointer = bundle.get();
    bundle.reset();
    EXPECT_EQ(open().get(), pointer);
    EXPECT_EQ(call(pointer, CFSTR("sampleFunction")), 1);
    CFBundleUnloadExecutable(pointer);
}

TEST_F(BundleCodeTest, WithBrokenCodeHasNoNames) {
    const auto executable = folder() / "Contents/MacOS/Sample";
    for (const char* content : {"", "not a program",
                                "\x7F"
                                "ELF\2\1\1"}) {
        fs::remove(executable);
        write("Contents/MacOS/Sample", content);
        const auto bundle = open();
        EXPECT_FALSE(CFBundleLoadExecutable(bundle.get()));
        EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle.get(), CFSTR("sampleFunction")), nullptr);
    }
    fs::remove(executable);
    fs::create_directory(executable);
    const auto bundle = open();
    EXPECT_FALSE(CFBundleLoadExecutable(bundle.get()));
    EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle.get()));
    EXPECT_EQ(CFBundleCopyExecutableURL(bundle.get()), nullptr);
}

TEST_F(BundleCodeTest, NeverLeavesTheBundle) {
    fs::copy_file(SAMPLE_CODE, folder() / "Contents/Outside");
    writeInfo("<key>CFBundleExecutable</key><string>../Outside</string>");
    EXPECT_FALSE(CFBundleLoadExecutable(open().get()));
}

TEST_F(BundleCodeTest, OfTheMainBundleIsTheProgram) {
    EXPECT_EQ(call(CFBundleGetMainBundle(), CFSTR("sampleFunction")), 2);
    EXPECT_EQ(CFBundleGetFunctionPointerForName(CFBundleGetMainBundle(), CFSTR("missing")), nullptr);
}

}  // namespace
}  // namespace platform_tests
