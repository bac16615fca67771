// The start routine that a host calls once after loading the bundle.
//
// It is separate from the entry points so that programs with a start routine of their own can link those.
#include "kit/engine_bundle.h"

// Returns 1 when the engine bundle was found, 0 when not or when called without arguments.
__attribute__((visibility("default"))) int main(int argumentCount, char** arguments) try {
    if (argumentCount == 0 || arguments == nullptr) return 0;
    return InitializeGlobals() == 0 ? 1 : 0;
} catch (...) {
    return 0;
}
