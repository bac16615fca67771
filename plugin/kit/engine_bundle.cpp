// The host's engine bundle, in which every host function is looked up by name.
#include "kit/engine_bundle.h"

extern "C" {
CFBundleRef gScorixBundle = nullptr;
std::uint32_t QorVersion = 0;
}

short InitializeGlobals() {
    if (gScorixBundle != nullptr) return 0;
    gScorixBundle = CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.NotationEngine"));
    // A host without an engine bundle of its own exports its functions from the program itself.
    if (gScorixBundle == nullptr) gScorixBundle = CFBundleGetMainBundle();
    return gScorixBundle != nullptr ? 0 : -1;
}

CFBundleRef GetScorixBundleRef() {
    // The answer does not matter: asking gives the platform the occasion to take note of the code.
    if (gScorixBundle != nullptr) CFBundleIsExecutableLoaded(gScorixBundle);
    return gScorixBundle;
}
