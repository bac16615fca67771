// The list of all bundles alive in the process.
#pragma once

#include <CoreFoundation/CFBundle.h>

namespace rovescio::platform {

/// Takes a bundle that is being destroyed off the list.
void forgetBundle(const __CFBundle* bundle);

}  // namespace rovescio::platform
