// The host functions, each as a stub under the host's own name with the host's own arguments.
//
// A stub finds its function in the engine bundle on its first call and never looks again; where the host has
// none it returns 0. It appends the version word, so callers never pass it.
#pragma once

#include <cstdint>

#include "contract/host_parameters.h"
#include "contract/records.h"

#define HOST_FUNCTION(result, name, ...) result name(HOST_DECLARATIONS(__VA_ARGS__));
#define HOST_GUARDED(result, name, ...) HOST_FUNCTION(result, name, __VA_ARGS__)
#include "contract/host_functions.def"

// Calls that are still open: frames loaded and not freed, mass edits, host edits.
extern std::int32_t LoadedTGFCounter;
extern std::int32_t MassEditDepth;
extern std::int32_t ScorixEditDepth;

// Closes every host edit that was opened and left open.
void SX_EndAllScorixEdit();
