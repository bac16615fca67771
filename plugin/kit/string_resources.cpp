// The plug-in's localised texts, fetched by 32-bit string ids.
#undef NDEBUG  // the check below holds in every build, so the platform's assertion facility is needed in all
#include "kit/string_resources.h"

#include <Carbon/Carbon.h>
#include <dlfcn.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <filesystem>

#include "kit/host_api.h"
#include "util/platform_string.h"

namespace {

constexpr std::uint16_t kStaticCapacity = 1024;

// Its address lies in the plug-in's own image, wherever that was loaded from.
const char kAnchor[] = "dlbundle";

[[noreturn]] void failBundleAssertion() {
    constexpr const char* kExpression = "bundleRef != NULL";
    constexpr const char* kFile = "LIB/portable";
    constexpr const char* kFunction = "CopyPlugInStringResource";
    constexpr int kLine = 176;
#ifdef __APPLE__
    __assert_rtn(kFunction, kFile, kLine, kExpression);
#else
    __assert_fail(kExpression, kFile, kLine, kFunction);
#endif
}

PlatformOwned<CFBundleRef> openBundle(const std::filesystem::path& directory) {
    const PlatformOwned<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(directory.c_str()),
        static_cast<CFIndex>(directory.native().size()), true));
    if (!url) return nullptr;
    PlatformOwned<CFBundleRef> bundle(CFBundleCreate(kCFAllocatorDefault, url.get()));
    const bool hasExecutable =
        bundle && CFBundleGetValueForInfoDictionaryKey(bundle.get(), kCFBundleExecutableKey) != nullptr;
    return hasExecutable ? std::move(bundle) : nullptr;
}

// The nearest bundle around a file; null when there is none up to the root.
//
// A bundle keeps its information dictionary in the folder Contents; read on its own, that folder would look
// like an old flat bundle, with neither the resources nor the code where that has them.
CFBundleRef bundleAround(const std::filesystem::path& file) {
    std::filesystem::path directory = file;
    while (directory.has_relative_path()) {
        directory = directory.parent_path();
        if (directory.filename() == "Contents") continue;
        if (auto bundle = openBundle(directory)) return bundle.release();
    }
    return nullptr;
}

// The loader knows the image by the path that it was loaded with, however that was spelled. Where the code
// lies tells the bundle; code that is a link out of its bundle leaves the spelled path to tell it.
CFBundleRef findPluginBundle() {
    Dl_info image;
    if (dladdr(kAnchor, &image) == 0) return nullptr;
    std::error_code error;
    if (CFBundleRef bundle = bundleAround(std::filesystem::canonical(image.dli_fname, error))) return bundle;
    return bundleAround(std::filesystem::absolute(image.dli_fname, error).lexically_normal());
}

// Found once and kept, never released.
CFBundleRef GetPluginBundle() {
    static CFBundleRef bundleRef = nullptr;
    if (bundleRef == nullptr) bundleRef = findPluginBundle();
    if (bundleRef == nullptr) failBundleAssertion();
    return bundleRef;
}

PlatformOwned<CFStringRef> makeKey(std::uint32_t id) {
    const int table = static_cast<std::int16_t>(id >> 16);
    const int index = static_cast<std::int16_t>(id);
    return PlatformOwned<CFStringRef>(
        table == 0 ? CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%d"), index)
                   : CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%d,%d"), table, index));
}

std::uint32_t idFromDecimal(std::uint32_t decimalId) {
    constexpr std::uint32_t kTableStep = 1000;
    constexpr std::uint32_t kDefaultTable = 20000;
    if (decimalId < kTableStep) decimalId += kDefaultTable;
    const std::uint32_t index = decimalId % kTableStep;
    return (decimalId - index) << 16 | index;
}

}  // namespace

CFStringRef CopyPlugInStringResource(std::uint32_t id) {
    CFBundleRef bundle = GetPluginBundle();
    const auto key = makeKey(id);
    CFStringRef text = CFBundleCopyLocalizedString(bundle, key.get(), key.get(), nullptr);
    if (text != nullptr && CFStringCompare(text, key.get(), 0) != kCFCompareEqualTo) return text;
    const PlatformOwned<CFURLRef> file(
        CFBundleCopyResourceURL(bundle, CFSTR("Localizable"), CFSTR("strings"), nullptr));
    if (!file) SX_AlertMessage(nullptr, 0, 0, "Missing Localizable.strings");
    return text;
}

char16_t* PlugIn_GetStringResource(std::uint32_t id, char16_t* buffer, std::uint16_t capacity) {
    if (capacity == 0) return nullptr;
    buffer[0] = 0;
    if (const PlatformOwned<CFStringRef> text(CopyPlugInStringResource(id)); text) {
        const CFIndex count = std::min<CFIndex>(CFStringGetLength(text.get()), capacity - 1);
        copyPlatformUnits(text.get(), count, buffer);
        buffer[count] = 0;
    }
    buffer[capacity - 1] = 0;
    return buffer;
}

char* PlugIn_GetStringResource(std::uint32_t id, char* buffer, std::uint16_t capacity) {
    if (capacity == 0) return nullptr;
    // One byte more than a length-prefixed string takes, for the terminator after 255 bytes.
    unsigned char prefixed[257] = {};
    if (const PlatformOwned<CFStringRef> text(CopyPlugInStringResource(id)); text) {
        if (!CFStringGetPascalString(text.get(), prefixed, 256, GetApplicationTextEncoding()))
            prefixed[0] = 0;
    }
    prefixed[1 + prefixed[0]] = 0;
    std::strncpy(buffer, reinterpret_cast<const char*>(prefixed) + 1, capacity);
    buffer[capacity - 1] = 0;
    return buffer;
}

std::int16_t LoadIndString(std::uint16_t table, std::uint16_t index, char* buffer, std::uint16_t capacity) {
    const std::uint32_t id = static_cast<std::uint32_t>(table) << 16 | index;
    const char* text = PlugIn_GetStringResource(id, buffer, capacity);
    return text == nullptr ? std::int16_t{0} : static_cast<std::int16_t>(std::strlen(text));
}

const char* GetResourceCString(std::uint32_t decimalId) {
    static char text[kStaticCapacity];
    return PlugIn_GetStringResource(idFromDecimal(decimalId), text, kStaticCapacity);
}

const char16_t* GetResourceCString_UTF16(std::uint32_t decimalId) {
    static char16_t text[kStaticCapacity];
    return PlugIn_GetStringResource(idFromDecimal(decimalId), text, kStaticCapacity);
}
