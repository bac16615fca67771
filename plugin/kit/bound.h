// The bare bindings of those host functions around which the kit does work of its own.
#pragma once

#include "contract/host_parameters.h"
#include "contract/records.h"

namespace kit::bound {

#define HOST_FUNCTION(result, name, ...)
#define HOST_GUARDED(result, name, ...) result name(HOST_DECLARATIONS(__VA_ARGS__));
#define HOST_KIT_GUARDED(result, name, ...) HOST_GUARDED(result, name, __VA_ARGS__)
#include "contract/host_functions.def"

}  // namespace kit::bound
