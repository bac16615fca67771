// What the host functions do, one C++ function under each name; exports.cpp puts the gate in front of them.
#pragma once

#include <cstdint>

#include "contract/host_parameters.h"
#include "contract/records.h"

namespace rovescio::engine::functions {

#define HOST_FUNCTION(result, name, ...) result name(HOST_DECLARATIONS(__VA_ARGS__));
#define HOST_GUARDED(result, name, ...) HOST_FUNCTION(result, name, __VA_ARGS__)
#define HOST_KIT_FUNCTION(result, name, ...)
#define HOST_KIT_GUARDED(result, name, ...)
#include "contract/host_functions.def"

}  // namespace rovescio::engine::functions
