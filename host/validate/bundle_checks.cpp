// Checks of the bundle as a folder with code.
#include <filesystem>

#include "validate/checks.h"
#include "validate/plugin_image.h"
#include "validate/separate_load.h"

namespace rovescio::validate {

namespace {

// Every function of the host interface, those included that this engine does not offer.
constexpr const char* kHostFunctions[] = {
#define HOST_FUNCTION(result, name, ...) #name,
#define HOST_GUARDED(result, name, ...) #name,
#include "contract/host_functions.def"
};

// "A, B" from single names; for lists in details.
void append(std::string& list, const std::string& name) {
    list += (list.empty() ? "" : ", ") + name;
}

Verdict hasInformation(const std::string& path) {
    const std::filesystem::path file = std::filesystem::path(path) / "Contents/Info.plist";
    if (!std::filesystem::is_regular_file(file)) return failed("there is no Contents/Info.plist");
    const PluginImage image(path);
    CFStringRef identifier = CFBundleGetIdentifier(image.bundle());
    if (!identifier || CFStringGetLength(identifier) == 0) return failed("it gives no CFBundleIdentifier");
    if (!CFBundleGetValueForInfoDictionaryKey(image.bundle(), kCFBundleExecutableKey)) {
        return failed("it gives no CFBundleExecutable");
    }
    return passed();
}

Verdict loads(const std::string& path) {
    const PluginImage image(path);
    if (!image.bundle() || !CFBundleLoadExecutable(image.bundle())) {
        return failed("there is no executable, or the system's loader refuses it");
    }
    return passed();
}

Verdict hasEntryPoints(const std::string& path) {
    const PluginImage image(path);
    std::string missing;
    const auto look = [&](const char* name) {
        if (!image.function<void()>(name)) append(missing, name);
    };
    look("main");
    for (const EntryPointNames& names : kEntryPointNames) {
        look(names.full);
        look(names.alias);
    }
    return missing.empty() ? passed() : failed("not exported: " + missing);
}

Verdict hasGlobals(const std::string& path) {
    const PluginImage image(path);
    std::string missing;
    for (const char* name : {"QorVersion", "gScorixBundle"}) {
        if (!image.variable<void>(name)) append(missing, name);
    }
    return missing.empty() ? passed() : failed("not exported: " + missing);
}

// The dynamic loader may prefer the host's function to one of the same name in the plug-in, whose calls would
// then lack their version word.
Verdict exportsNoHostFunction(const std::string& path) {
    const PluginImage image(path);
    std::string exported;
    for (const char* name : kHostFunctions) {
        if (image.function<void()>(name)) append(exported, name);
    }
    return exported.empty() ? passed() : failed("exported: " + exported);
}

}  // namespace

std::vector<Check> bundleChecks() {
    return {
        checkApart("information dictionary", hasInformation),
        checkApart("code loads", loads),
        {"a copy's code loads by itself", loadsInAnotherFolder},
        checkApart("entry points under both names", hasEntryPoints),
        checkApart("exported globals", hasGlobals),
        checkApart("no host function exported", exportsNoHostFunction),
    };
}

}  // namespace rovescio::validate
