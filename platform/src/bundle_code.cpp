// Loading of a bundle's code and lookup of the names that it exports.
#include <dlfcn.h>
#include <link.h>

#include "bundle.h"
#include "code_file.h"
#include "encodings.h"

using namespace rovescio::platform;

namespace {

/// Loads the code through the bundle unless that has been done; null when it cannot be.
void* ensureLoaded(__CFBundle& bundle) {
    if (void* loaded = bundle.code) {
        return loaded;
    }
    // The loader runs the library's own initialisers, so no lock may be held meanwhile.
    void* handle = nullptr;
    if (bundle.role == Role::kMain) {
        handle = dlopen(nullptr, RTLD_LAZY);
    } else if (const auto path = bundle.executable(); path && isWholeLibrary(*path)) {
        handle = dlopen(path->c_str(), RTLD_LAZY | RTLD_LOCAL);
    }
    if (handle == nullptr) {
        return nullptr;
    }
    void* earlier = nullptr;
    if (!bundle.code.compare_exchange_strong(earlier, handle)) {
        dlclose(handle);  // another thread was faster; the loader counts both openings
        return earlier;
    }
    // Addresses that were handed out must stay valid, so loaded code keeps its bundle.
    bundle.retain();
    return handle;
}

/// True when the address belongs to the library itself and not to one that it depends on.
bool isDefinedBy(void* handle, void* address) {
    link_map* own = nullptr;
    link_map* owner = nullptr;
    Dl_info details{};
    return dlinfo(handle, RTLD_DI_LINKMAP, static_cast<void*>(&own)) == 0 &&
           dladdr1(address, &details, reinterpret_cast<void**>(&owner), RTLD_DL_LINKMAP) != 0 && own == owner;
}

void* lookUp(CFBundleRef bundle, CFStringRef name, const char* function) {
    __CFBundle& source = required(bundle, function);
    const auto symbol = encodeName(required(name, function).text);
    void* handle = symbol ? ensureLoaded(source) : nullptr;
    void* address = handle != nullptr ? dlsym(handle, symbol->c_str()) : nullptr;
    if (address == nullptr) {
        return nullptr;
    }
    return source.role == Role::kMain || isDefinedBy(handle, address) ? address : nullptr;
}

}  // namespace

Boolean CFBundleIsExecutableLoaded(CFBundleRef bundle) {
    const __CFBundle& source = required(bundle, __func__);
    if (source.role == Role::kMain || source.code != nullptr) {
        return 1;
    }
    // Someone else may have loaded it: the loader answers without loading, and counts even that opening.
    const auto path = source.executable();
    void* handle = path ? dlopen(path->c_str(), RTLD_LAZY | RTLD_NOLOAD) : nullptr;
    if (handle == nullptr) {
        return 0;
    }
    dlclose(handle);
    return 1;
}

Boolean CFBundleLoadExecutable(CFBundleRef bundle) {
    return static_cast<Boolean>(ensureLoaded(required(bundle, __func__)) != nullptr);
}

void CFBundleUnloadExecutable(CFBundleRef bundle) {
    __CFBundle& source = required(bundle, __func__);
    void* handle = source.role == Role::kMain ? nullptr : source.code.exchange(nullptr);
    if (handle != nullptr) {
        dlclose(handle);
        source.release();
    }
}

void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name) {
    return lookUp(bundle, name, __func__);
}

void* CFBundleGetDataPointerForName(CFBundleRef bundle, CFStringRef name) {
    return lookUp(bundle, name, __func__);
}
