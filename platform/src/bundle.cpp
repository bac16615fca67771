// A bundle's layout on disk, its information dictionary and the addresses of its parts.
#include "bundle.h"

#include <system_error>
#include <utility>

#include "bundle_registry.h"
#include "encodings.h"
#include "file_bytes.h"
#include "url.h"

using namespace rovescio::platform;
namespace fs = std::filesystem;

const CFStringRef kCFBundleExecutableKey = CFSTR("CFBundleExecutable");
const CFStringRef kCFBundleIdentifierKey = CFSTR("CFBundleIdentifier");
const CFStringRef kCFBundleDevelopmentRegionKey = CFSTR("CFBundleDevelopmentRegion");

namespace {

bool isDirectory(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

Layout layoutOf(const fs::path& directory) {
    const fs::path contents = directory / "Contents";
    if (isDirectory(contents)) {
        return {contents / "MacOS", contents / "Resources", contents / "Info.plist"};
    }
    const fs::path resources = directory / "Resources";
    return {directory, isDirectory(resources) ? resources : directory, directory / "Info.plist"};
}

Dictionary readInfo(const fs::path& file) {
    const auto bytes = readFile(file);
    return bytes ? parsePropertyList(*bytes) : Dictionary{};
}

CFURLRef createUrl(const fs::path& path, bool isDirectory) {
    return new __CFURL(path.native(), isDirectory);
}

}  // namespace

__CFBundle::__CFBundle(fs::path bundleDirectory, fs::path place, Role bundleRole)
    : Object(Kind::kBundle, bundleRole == Role::kMain ? Lifetime::kForever : Lifetime::kCounted),
      directory(std::move(bundleDirectory)),
      canonicalDirectory(std::move(place)),
      role(bundleRole),
      layout(layoutOf(directory)),
      info(readInfo(layout.infoFile)) {}

__CFBundle::~__CFBundle() {
    forgetBundle(this);
}

std::u16string __CFBundle::description() const {
    return __CFURL(directory.native(), true).description();
}

CFStringRef __CFBundle::infoString(CFStringRef key) const {
    const auto found = info.find(key->text);
    const bool isString = found != info.end() && found->second->kind() == Kind::kString;
    return isString ? static_cast<CFStringRef>(found->second.get()) : nullptr;
}

std::optional<fs::path> __CFBundle::executable() const {
    const CFStringRef name = infoString(kCFBundleExecutableKey);
    const auto fileName = name != nullptr ? encodeName(name->text) : std::nullopt;
    // A name with a slash could lead out of the bundle.
    if (!fileName || fileName->empty() || fileName->find('/') != std::string::npos) {
        return std::nullopt;
    }
    fs::path path = layout.executables / *fileName;
    std::error_code error;
    return fs::is_regular_file(path, error) ? std::optional(std::move(path)) : std::nullopt;
}

CFTypeID CFBundleGetTypeID() {
    return static_cast<CFTypeID>(Kind::kBundle);
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
    return required(bundle, __func__).infoString(kCFBundleIdentifierKey);
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
    const __CFBundle& source = required(bundle, __func__);
    if (key == nullptr) {
        return nullptr;
    }
    if (const Object* localized = source.tableEntry(u"InfoPlist", key->text)) {
        return localized;
    }
    const auto found = source.info.find(key->text);
    return found != source.info.end() ? found->second.get() : nullptr;
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
    return createUrl(required(bundle, __func__).directory, true);
}

CFURLRef CFBundleCopyExecutableURL(CFBundleRef bundle) {
    const __CFBundle& source = required(bundle, __func__);
    std::error_code error;
    const auto path = source.role == Role::kMain ? fs::read_symlink("/proc/self/exe", error)
                                                 : source.executable().value_or(fs::path());
    return path.empty() ? nullptr : createUrl(path, false);
}
