// Objects, bundles and tables used by several threads at once.
#include <array>
#include <atomic>
#include <thread>

#include "support.h"

namespace platform_tests {
namespace {

template <class Work>
void inParallel(Work&& work) {
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread(work);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(Threads, ShareReferences) {
    const auto text = string(u"shared");
    inParallel([&] {
        for (int i = 0; i < 10000; ++i) {
            CFRelease(CFRetain(text.get()));
        }
    });
    EXPECT_EQ(units(text), u"shared");
}

TEST_F(BundleTest, ThreadsMayOpenReadAndCloseTheSameBundle) {
    writeInfo("<key>CFBundleIdentifier</key><string>org.rovescio.tests.threads</string>");
    write("Contents/Resources/en.lproj/Localizable.strings", "k = v;");
    std::atomic<int> wrong{0};
    inParallel([&] {
        for (int i = 0; i < 200; ++i) {
            const auto bundle = open();
            const HeldString text(CFBundleCopyLocalizedString(bundle.get(), CFSTR("k"), nullptr, nullptr));
            const bool isRight =
                units(text) == u"v" && open().get() == bundle.get() &&
                CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.tests.threads")) == bundle.get();
            wrong += isRight ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.tests.threads")), nullptr);
}

}  // namespace
}  // namespace platform_tests
