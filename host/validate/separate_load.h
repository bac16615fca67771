// Loading of a bundle's code outside its folder and without our host.
#pragma once

#include "validate/checks.h"

namespace rovescio::validate {

// Loads the code of a copy of the bundle, in another folder, with the helper program: only what the bundle
// brings along and the system's own libraries are there.
Verdict loadsInAnotherFolder(const Subject& subject);

}  // namespace rovescio::validate
