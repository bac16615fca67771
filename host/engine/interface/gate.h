// The gate through which every call of a host function passes: version check, trace, fault plan, counting.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string_view>

namespace rovescio::engine {

// The host functions that this engine offers, in the order of the list.
enum class HostFunction : std::uint16_t {
#define HOST_FUNCTION(result, name, ...) name,
#define HOST_GUARDED(result, name, ...) name,
#define HOST_KIT_FUNCTION(result, name, ...)
#define HOST_KIT_GUARDED(result, name, ...)
#include "contract/host_functions.def"
    count
};

std::string_view hostFunctionName(HostFunction function);

// Finds an offered function by name; HostFunction::count when there is none.
HostFunction hostFunctionByName(std::string_view name);

// Prints every call, with arguments and result, to a stream; null ends it.
void traceCalls(std::ostream* stream);

// Lets the n-th call from now on (1: the next one) of a function fail: it does nothing and returns 0. For
// tests of what a plug-in does then; the n-th failing progress call is a user's cancel.
void planFault(HostFunction function, std::uint64_t nthCall);
void clearFaults();

// Calls of a function since the process started.
std::uint64_t callCount(HostFunction function);

}  // namespace rovescio::engine
