// Looking names up in a bundle's code, and calls of its entry points.
#include "validate/plugin_image.h"

#include "engine/interface/utf.h"

namespace rovescio::validate {

PluginImage::PluginImage(const std::string& path) {
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                           reinterpret_cast<const UInt8*>(path.data()),
                                                           static_cast<CFIndex>(path.size()), true);
    bundle_ = url ? CFBundleCreate(kCFAllocatorDefault, url) : nullptr;
    if (url) CFRelease(url);
}

void* PluginImage::find(Lookup lookup, const std::string& name) const {
    if (!bundle_) return nullptr;
    CFStringRef text = engine::toPlatformString(name);
    void* found = lookup(bundle_, text);
    CFRelease(text);
    return found;
}

int PluginImage::main() const {
    std::string program = "host";
    char* arguments[] = {program.data(), nullptr};
    return function<int(int, char**)>("main")(1, arguments);
}

std::uint32_t PluginImage::version(Naming naming, std::uint32_t hostVersion) const {
    return function<std::uint32_t(std::uint32_t)>(kVersionNames.by(naming))(hostVersion);
}

int PluginImage::init(Naming naming, std::uint32_t& output) const {
    return function<int(void*, std::uint32_t*)>(kInitNames.by(naming))(nullptr, &output);
}

int PluginImage::enumerate(Naming naming, short command, ExtensionDescriptor& descriptor) const {
    const auto call = function<int(void*, short, ExtensionDescriptor*)>(kEnumerateNames.by(naming));
    return call(nullptr, command, &descriptor);
}

int PluginImage::menuStatus(Naming naming) const {
    return function<int()>(kMenuStatusNames.by(naming))();
}

void PluginImage::terminate(Naming naming) const {
    function<void()>(kTerminateNames.by(naming))();
}

}  // namespace rovescio::validate
