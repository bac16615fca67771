// Loading, starting and calling of a plug-in bundle.
#include "engine/interface/plugin_bundle.h"

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

#include "contract/descriptor.h"
#include "engine/interface/gate.h"
#include "engine/interface/utf.h"

namespace rovescio::engine {

namespace {

constexpr const char* kReinstall = "Install Rovescio again";

// The version that this host gives its plug-ins: late enough for the newest record layouts.
constexpr std::uint32_t kHostVersion = 0x19500000;

struct Release {
    void operator()(const void* object) const { CFRelease(object); }
};
template <class Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;

CFBundleRef openBundle(const std::string& path) {
    const Owned<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
        true));
    return url ? CFBundleCreate(kCFAllocatorDefault, url.get()) : nullptr;
}

void* functionNamed(CFBundleRef bundle, const std::string& name) {
    const Owned<CFStringRef> text(toPlatformString(name));
    return CFBundleGetFunctionPointerForName(bundle, text.get());
}

// A text of one of the bundle's tables in the user's language; the key itself when it is missing.
std::string localised(CFBundleRef bundle, const std::string& key, const char* table) {
    const Owned<CFStringRef> keyText(toPlatformString(key));
    const Owned<CFStringRef> tableText(toPlatformString(table));
    const Owned<CFStringRef> text(
        CFBundleCopyLocalizedString(bundle, keyText.get(), keyText.get(), tableText.get()));
    return text ? toUtf8(text.get()) : key;
}

}  // namespace

struct PluginBundle::EntryPoints {
    int (*main)(int, char**);
    std::uint32_t (*version)(std::uint32_t);
    int (*init)(void*, std::uint32_t*);
    int (*enumerate)(void*, short, ExtensionDescriptor*);
    int (*invoke)(SXWindow, short, EREGION*, EREGION*);
    void (*terminate)();
    int (*menuStatus)();
};

Result<Done> registerEngineBundle(const std::string& path) {
    CFBundleRef bundle = openBundle(path);  // stays known for the life of the process
    if (!bundle) return Problem{"the engine bundle is missing", path, 0, {}, kReinstall};
    for (int i = 0; i < static_cast<int>(HostFunction::count); ++i) {
        const std::string name(hostFunctionName(static_cast<HostFunction>(i)));
        if (!functionNamed(bundle, name)) {
            return Problem{"the engine lacks the host function " + name, path, 0, {}, kReinstall};
        }
    }
    return Done{};
}

Result<PluginBundle> PluginBundle::load(const std::string& path) {
    CFBundleRef bundle = openBundle(path);
    if (!bundle) {
        return Problem{"there is no plug-in bundle here",
                       path,
                       0,
                       {},
                       "Name an existing bundle with --plugin, or install Rovescio again"};
    }
    EntryPoints entryPoints{};
    std::string missing;
    const auto find = [&](auto& entry, const char* name) {
        entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(functionNamed(bundle, name));
        if (!entry && missing.empty()) missing = name;
    };
    find(entryPoints.main, "main");
    find(entryPoints.version, "ScorixExtensionVersion");
    find(entryPoints.init, "ScorixExtensionInit");
    find(entryPoints.enumerate, "ScorixExtensionEnumerate_UTF16");
    find(entryPoints.invoke, "ScorixExtensionInvoke");
    find(entryPoints.terminate, "ScorixExtensionTerminate");
    find(entryPoints.menuStatus, "ScorixExtensionGetMenuStatus");
    if (!missing.empty()) {
        const bool loaded = CFBundleIsExecutableLoaded(bundle);
        return Problem{loaded ? "the plug-in bundle lacks the entry point " + missing
                              : "the plug-in's executable is missing, incomplete or not for this system",
                       path,
                       0,
                       {},
                       kReinstall};
    }
    PluginBundle plugin;
    plugin.path_ = path;
    plugin.bundle_ = bundle;
    plugin.entryPoints_ = std::make_shared<const EntryPoints>(entryPoints);
    return plugin;
}

Result<Done> PluginBundle::start() const {
    std::string program = "host";
    char* arguments[] = {program.data(), nullptr};
    if (entryPoints_->main(1, arguments) == 0) {
        return Problem{"the plug-in did not find its host", path_, 0, {}, kReinstall};
    }
    if (const std::uint32_t version = entryPoints_->version(kHostVersion); version != kKitVersion) {
        return Problem{"the plug-in was built for version " + std::to_string(version) +
                           " of the host interface, not " + std::to_string(kKitVersion),
                       path_,
                       0,
                       {},
                       kReinstall};
    }
    std::uint32_t output = 1;
    if (entryPoints_->init(nullptr, &output) == 0) {
        return Problem{"the plug-in refused to start", path_, 0, {}, kReinstall};
    }
    return Done{};
}

std::string PluginBundle::commandName(short index) const {
    ExtensionDescriptor descriptor{};
    if (entryPoints_->enumerate(nullptr, index, &descriptor) == 0) return {};
    return toUtf8(descriptor.menuText);
}

void PluginBundle::invoke(short index, SXWindow parent) const {
    if (entryPoints_->menuStatus() == 0) return;
    EREGION unused[2] = {};
    entryPoints_->invoke(parent, index, &unused[0], &unused[1]);
}

void PluginBundle::stop() const {
    entryPoints_->terminate();
}

std::string PluginBundle::string(std::uint32_t stringId) const {
    const auto table = static_cast<std::int16_t>(stringId >> 16);
    const auto index = static_cast<std::int16_t>(stringId & 0xFFFF);
    const std::string key = (table ? std::to_string(table) + "," : "") + std::to_string(index);
    std::string text = localised(bundle_, key, "Localizable");
    return text == key ? std::string() : text;
}

std::string PluginBundle::dialogText(const std::string& key) const {
    return localised(bundle_, key, "Dialogs");
}

}  // namespace rovescio::engine
