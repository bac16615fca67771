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
using namespace std::string_literals;
using Function = int (*)();

class BundleCodeTest : public BundleTest {
  protected:
    BundleCodeTest() {
        writeInfo(entry("CFBundleExecutable", "Sample"));
        fs::create_directories(executable_.parent_path());
    }
    ~BundleCodeTest() override {
        if (bundle_) CFBundleUnloadExecutable(bundle_.get());
    }

    /// A copy of its own for each bundle, so that no test finds code that another one loaded.
    CFBundleRef openWithCode() {
        fs::copy_file(SAMPLE_CODE, executable_);
        bundle_ = open();
        return bundle_.get();
    }

    static int call(CFBundleRef bundle, CFStringRef name = CFSTR("sampleFunction")) {
        void* found = CFBundleGetFunctionPointerForName(bundle, name);
        return found != nullptr ? reinterpret_cast<Function>(found)() : -1;
    }

    const fs::path executable_ = folder() / "Contents/MacOS/Sample";
    Held<CFBundleRef> bundle_;
};

TEST_F(BundleCodeTest, IsLoadedByTheFirstLookupAndHidesNamesThatItDoesNotDefine) {
    auto* const bundle = openWithCode();
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle));
        EXPECT_EQ(call(bundle), 1);
        EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle));
        CFBundleUnloadExecutable(bundle);
    }
    const void* variable = CFBundleGetDataPointerForName(bundle, CFSTR("sampleVariable"));
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(*static_cast<const int*>(variable), 41);
    EXPECT_EQ(CFBundleGetDataPointerForName(bundle, CFSTR("environ")), nullptr);
    for (const std::u16string& name : {u"missing"s, u"puts"s, u"SAMPLEFUNCTION"s, u"sampleFunction\0x"s})
        EXPECT_EQ(call(bundle, string(name).get()), -1) << PrintToString(name);
}

TEST_F(BundleCodeTest, SharesCodeThatWasLoadedDirectly) {
    auto* const bundle = openWithCode();
    void* handle = dlopen(executable_.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle));
    void* variable = CFBundleGetDataPointerForName(bundle, CFSTR("sampleVariable"));
    EXPECT_EQ(variable, dlsym(handle, "sampleVariable"));
    CFBundleUnloadExecutable(bundle);
    EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle));
    dlclose(handle);
    EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle));
}

TEST_F(BundleCodeTest, StaysAliveWhileItsCodeIsLoaded) {
    auto* const pointer = openWithCode();
    ASSERT_TRUE(CFBundleLoadExecutable(pointer) && CFBundleLoadExecutable(pointer));
    bundle_.reset();
    bundle_ = open();
    EXPECT_EQ(bundle_.get(), pointer);
    EXPECT_EQ(call(pointer), 1);
}

TEST_F(BundleCodeTest, WhenBrokenOrOutsideTheBundleHasNoNames) {
    for (const std::string content : {"", "not a program",
                                      "\x7F"
                                      "ELF\2\1\1",
                                      "folder", "outside"}) {
        fs::remove(executable_);
        if (content == "folder") {
            fs::create_directory(executable_);
        } else if (content == "outside") {
            fs::copy_file(SAMPLE_CODE, folder() / "Contents/Outside");
            writeInfo(entry("CFBundleExecutable", "../Outside"));
        } else {
            write("Contents/MacOS/Sample", content);
        }
        const auto bundle = open();
        EXPECT_FALSE(CFBundleLoadExecutable(bundle.get())) << content;
        EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle.get())) << content;
        EXPECT_EQ(call(bundle.get()), -1) << content;
        EXPECT_TRUE(content != "folder" || CFBundleCopyExecutableURL(bundle.get()) == nullptr);
    }
}

TEST_F(BundleCodeTest, OfTheMainBundleIsTheProgram) {
    EXPECT_EQ(call(CFBundleGetMainBundle()), 2);
    EXPECT_EQ(call(CFBundleGetMainBundle(), CFSTR("missing")), -1);
}

}  // namespace
}  // namespace platform_tests
