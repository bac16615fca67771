// The host's engine bundle, in which every host function is looked up by name.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

// Handle of the host's engine bundle; null until InitializeGlobals has found it. Exported.
extern "C" __attribute__((visibility("default"))) CFBundleRef gScorixBundle;

// Host version that the host passed to ScorixExtensionVersion; 0 until then. Exported.
extern "C" __attribute__((visibility("default"))) std::uint32_t QorVersion;

// Finds the engine bundle by its identifier, else takes the application's main bundle. Returns 0, or -1 when
// there is neither. Later calls return 0 without a lookup.
short InitializeGlobals();

// The engine bundle, or null when unset.
CFBundleRef GetScorixBundleRef();
