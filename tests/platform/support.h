// Helpers of the platform tests: owned objects, texts, and bundles built in a folder that goes away.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

namespace platform_tests {

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

template <class Ref>
using Held = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;
using HeldString = Held<CFStringRef>;

using ::testing::PrintToString;

template <class... Rows>
auto table(Rows... rows) {
    return std::array{rows...};
}

inline HeldString string(std::u16string_view units) {
    const std::basic_string<UniChar> copy(units.begin(), units.end());
    return HeldString(
        CFStringCreateWithCharacters(kCFAllocatorDefault, copy.data(), static_cast<CFIndex>(copy.size())));
}

/// The units of a string; the word NULL in angle brackets for a null one.
inline std::u16string units(CFStringRef text) {
    if (text == nullptr) return u"<NULL>";
    std::basic_string<UniChar> buffer(static_cast<std::size_t>(CFStringGetLength(text)), 0);
    CFStringGetCharacters(text, CFRangeMake(0, CFStringGetLength(text)), buffer.data());
    return {buffer.begin(), buffer.end()};
}

inline std::u16string units(const HeldString& text) {
    return units(text.get());
}

inline Held<CFURLRef> url(const std::filesystem::path& path, bool isDirectory = true) {
    const std::string& bytes = path.native();
    return Held<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()),
        static_cast<Boolean>(isDirectory)));
}

inline Held<CFBundleRef> openBundle(const std::filesystem::path& path) {
    const auto address = url(path);
    return Held<CFBundleRef>(CFBundleCreate(kCFAllocatorDefault, address.get()));
}

inline std::string pathOf(const Held<CFURLRef>& address) {
    UInt8 buffer[4096] = {};
    const bool isWritten =
        address && CFURLGetFileSystemRepresentation(address.get(), 1, buffer, sizeof buffer) != 0;
    return isWritten ? reinterpret_cast<const char*>(buffer) : "<NULL>";
}

constexpr const char* kTable = "Contents/Resources/Localizable.strings";
constexpr std::u16string_view kMiss = u"<miss>";

/// One pair of an XML property list.
inline std::string entry(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
}

inline std::string xmlPropertyList(std::string_view pairs) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + std::string(pairs) +
           "</dict></plist>\n";
}

/// A test whose bundle is built file by file in a temporary folder, for a user without preferred languages.
class BundleTest : public ::testing::Test {
  protected:
    BundleTest() {
        ::setenv("LC_ALL", "C", 1);
        std::string pattern = (std::filesystem::temp_directory_path() / "bundle-test-").native();
        pattern.append(6, 'X');  // replaced by letters of its own
        folder_ = std::filesystem::canonical(::mkdtemp(pattern.data()));
    }
    ~BundleTest() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

    void write(const std::filesystem::path& name, std::string_view content) const {
        std::filesystem::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }

    void writeInfo(std::string_view pairs) const { write("Contents/Info.plist", xmlPropertyList(pairs)); }

    [[nodiscard]] Held<CFBundleRef> open() const { return openBundle(folder_); }

    /// Looks a key up in a fresh bundle, so that earlier reading does not matter; a miss gives "<miss>".
    [[nodiscard]] std::u16string localized(std::u16string_view key, CFStringRef table = nullptr) const {
        const auto bundle = open();
        const auto name = string(key);
        const HeldString text(CFBundleCopyLocalizedString(bundle.get(), name.get(), CFSTR("<miss>"), table));
        return units(text);
    }

  private:
    std::filesystem::path folder_;
};

}  // namespace platform_tests
