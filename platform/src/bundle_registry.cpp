// Finding bundles by directory, by identifier, and the one of the running program.
#include "bundle_registry.h"

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <vector>

#include "bundle.h"
#include "url.h"

using namespace rovescio::platform;
namespace fs = std::filesystem;

namespace {

/// Bundles in the order in which they were made. One whose last reference has just been given back may still
/// be on the list, so every use has to make sure that it is alive.
struct Registry {
    std::mutex mutex;
    std::vector<__CFBundle*> bundles;
};

Registry& registry() {
    // Never destroyed: bundles are released until the very end of the process.
    static auto& instance = *new Registry;
    return instance;
}

/// The directory of the bundle around the running program, or of the program itself.
fs::path mainDirectory() {
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    if (error) {
        return fs::current_path(error);
    }
    const fs::path folder = executable.parent_path();
    const fs::path contents = folder.parent_path();
    const bool isInBundle = folder.filename() == "MacOS" && contents.filename() == "Contents";
    return isInBundle ? contents.parent_path() : folder;
}

}  // namespace

namespace rovescio::platform {

void forgetBundle(const __CFBundle* bundle) {
    const std::scoped_lock lock(registry().mutex);
    std::erase(registry().bundles, bundle);
}

}  // namespace rovescio::platform

CFBundleRef CFBundleGetMainBundle() {
    static __CFBundle& bundle = []() -> __CFBundle& {
        const fs::path directory = mainDirectory();
        auto& created = *new __CFBundle(directory, directory, Role::kMain);
        const std::scoped_lock lock(registry().mutex);
        registry().bundles.push_back(&created);
        return created;
    }();
    return &bundle;
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
    if (identifier == nullptr || identifier->text.empty()) {
        return nullptr;
    }
    CFBundleGetMainBundle();
    const std::scoped_lock lock(registry().mutex);
    CFBundleRef found = nullptr;
    for (__CFBundle* bundle : registry().bundles) {
        const CFStringRef own = bundle->isAlive() ? bundle->infoString(kCFBundleIdentifierKey) : nullptr;
        if (own == nullptr || own->text != identifier->text) {
            continue;
        }
        if (bundle->code != nullptr) {
            return bundle;
        }
        found = found != nullptr ? found : bundle;
    }
    return found;
}

CFBundleRef CFBundleCreate(CFAllocatorRef /*allocator*/, CFURLRef url) {
    if (url == nullptr) {
        return nullptr;
    }
    std::error_code error;
    const fs::path place = fs::canonical(url->absolute, error);
    if (error || !fs::is_directory(place, error)) {
        return nullptr;
    }
    CFBundleGetMainBundle();
    const std::scoped_lock lock(registry().mutex);
    auto& bundles = registry().bundles;
    const auto found = std::find_if(bundles.begin(), bundles.end(), [&](const __CFBundle* bundle) {
        return bundle->canonicalDirectory == place && bundle->retainIfAlive();
    });
    if (found != bundles.end()) {
        return *found;
    }
    return bundles.emplace_back(new __CFBundle(url->absolute, place, Role::kLoadable));
}
