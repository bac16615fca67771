// Names, trace, fault plan and counts of the host functions.
#include "engine/interface/gate.h"

#include <array>
#include <cstddef>
#include <map>
#include <ostream>
#include <string>

#include "engine/interface/call_gate.h"
#include "engine/interface/strictness.h"

namespace rovescio::engine {

namespace {

constexpr auto kFunctionCount = static_cast<std::size_t>(HostFunction::count);

constexpr std::array<std::string_view, kFunctionCount> kNames = {
#define HOST_FUNCTION(result, name, ...) #name,
#define HOST_GUARDED(result, name, ...) #name,
#define HOST_KIT_FUNCTION(result, name, ...)
#define HOST_KIT_GUARDED(result, name, ...)
#include "contract/host_functions.def"
};

struct GateState {
    std::array<std::uint64_t, kFunctionCount> calls{};
    // Number of the call that is to fail, counted like `calls`; 0: none.
    std::array<std::uint64_t, kFunctionCount> failing{};
    std::ostream* trace = nullptr;
};

GateState state;

}  // namespace

std::string_view hostFunctionName(HostFunction function) {
    return kNames[static_cast<std::size_t>(function)];
}

HostFunction hostFunctionByName(std::string_view name) {
    for (std::size_t i = 0; i < kFunctionCount; ++i) {
        if (kNames[i] == name) return static_cast<HostFunction>(i);
    }
    return HostFunction::count;
}

void traceCalls(std::ostream* stream) {
    state.trace = stream;
}

void planFault(HostFunction function, std::uint64_t nthCall) {
    const auto index = static_cast<std::size_t>(function);
    state.failing[index] = state.calls[index] + nthCall;
}

void clearFaults() {
    state.failing = {};
}

std::uint64_t callCount(HostFunction function) {
    return state.calls[static_cast<std::size_t>(function)];
}

bool admitCall(HostFunction function, std::uint32_t version) {
    const auto index = static_cast<std::size_t>(function);
    if (version != kKitVersion) {
        ruleBroken(Rule::versionWord, std::string(kNames[index]) + " was called with version word " +
                                          std::to_string(version) + " instead of " +
                                          std::to_string(kKitVersion));
    }
    return ++state.calls[index] != state.failing[index];
}

std::ostream* callTrace() {
    return state.trace;
}

}  // namespace rovescio::engine
