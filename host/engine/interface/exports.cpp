// The exported host functions, expanded from the list: the gate, then the function of the same name. A
// function whose signature differs from the list does not compile.
#include "engine/interface/call_gate.h"
#include "engine/interface/functions.h"

#define HOST_TEXT(...) #__VA_ARGS__
#define HOST_NAMES_TEXT(...) HOST_TEXT_EXPANDED(HOST_NAMES(__VA_ARGS__))
#define HOST_TEXT_EXPANDED(...) HOST_TEXT(__VA_ARGS__)

#define HOST_FUNCTION(result, name, ...)                                                   \
    extern "C" __attribute__((visibility("default"))) result name(                         \
        HOST_DECLARATIONS_AND_VERSION(__VA_ARGS__)) noexcept {                             \
        using namespace rovescio::engine;                                                  \
        return passGate<result>(HostFunction::name, version, HOST_NAMES_TEXT(__VA_ARGS__), \
                                functions::name __VA_OPT__(, ) HOST_NAMES(__VA_ARGS__));   \
    }
#define HOST_GUARDED(result, name, ...) HOST_FUNCTION(result, name, __VA_ARGS__)
#define HOST_KIT_FUNCTION(result, name, ...)
#define HOST_KIT_GUARDED(result, name, ...)
#include "contract/host_functions.def"
