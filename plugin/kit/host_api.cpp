// Binding of the host functions: one slot and one guard each, filled on the first call.
#include "kit/host_api.h"

#include <Carbon/Carbon.h>

#include "kit/bound.h"
#include "kit/engine_bundle.h"

namespace kit {

namespace {

void* resolveHostFunction(const char* name) {
    void* function = nullptr;
    CFStringRef text = CFStringCreateWithCString(kCFAllocatorDefault, name, GetApplicationTextEncoding());
    if (CFBundleRef engine = GetScorixBundleRef(); engine && text) {
        function = CFBundleGetFunctionPointerForName(engine, text);
    }
    if (text) CFRelease(text);
    return function;
}

// Zero of any result type, nothing for void.
template <class Result>
Result absent() {
    return Result();
}

}  // namespace

}  // namespace kit

// The guard is that of the function-local slot: thread-safe, taken once, and a slot that stayed null is never
// filled again.
#define HOST_BINDING(result, name, ...)                                                          \
    result name(HOST_DECLARATIONS(__VA_ARGS__)) {                                                \
        using Procedure = result (*)(HOST_TYPES_AND_VERSION(__VA_ARGS__));                       \
        static const auto fpProc = reinterpret_cast<Procedure>(kit::resolveHostFunction(#name)); \
        if (!fpProc) [[unlikely]]                                                                \
            return kit::absent<result>();                                                        \
        return fpProc(HOST_NAMES_AND_VERSION(kKitVersion, __VA_ARGS__));                         \
    }

#define HOST_FUNCTION(result, name, ...) HOST_BINDING(result, name, __VA_ARGS__)
#define HOST_GUARDED(result, name, ...)     \
    namespace kit::bound {                  \
    HOST_BINDING(result, name, __VA_ARGS__) \
    }
#include "contract/host_functions.def"
