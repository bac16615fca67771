// Opens bundles by their path.
#pragma once

#include <string>

#include "util/platform_string.h"

inline PlatformOwned<CFBundleRef> bundleAt(const std::string& path) {
    const PlatformOwned<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
        true));
    return PlatformOwned<CFBundleRef>(CFBundleCreate(kCFAllocatorDefault, url.get()));
}
