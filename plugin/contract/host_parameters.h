// Macros that expand the parameter lists of host_functions.def: each parameter there is a pair (type, name).
#pragma once

#define HOST_PARAMETER_PARENS ()
#define HOST_PARAMETER_EXPAND1(...) __VA_ARGS__
#define HOST_PARAMETER_EXPAND2(...) HOST_PARAMETER_EXPAND1(HOST_PARAMETER_EXPAND1(__VA_ARGS__))
#define HOST_PARAMETER_EXPAND3(...) HOST_PARAMETER_EXPAND2(HOST_PARAMETER_EXPAND2(__VA_ARGS__))
#define HOST_PARAMETER_EXPAND(...) HOST_PARAMETER_EXPAND3(HOST_PARAMETER_EXPAND3(__VA_ARGS__))
#define HOST_PARAMETER_STEP(macro, first, ...) \
    macro first __VA_OPT__(, HOST_PARAMETER_AGAIN HOST_PARAMETER_PARENS(macro, __VA_ARGS__))
#define HOST_PARAMETER_AGAIN() HOST_PARAMETER_STEP
#define HOST_PARAMETER_EACH(macro, ...) \
    __VA_OPT__(HOST_PARAMETER_EXPAND(HOST_PARAMETER_STEP(macro, __VA_ARGS__)))

#define HOST_PARAMETER_TYPE(type, name) type
#define HOST_PARAMETER_DECLARATION(type, name) type name
#define HOST_PARAMETER_NAME(type, name) name

// "short slot, short measure"
#define HOST_DECLARATIONS(...) HOST_PARAMETER_EACH(HOST_PARAMETER_DECLARATION, __VA_ARGS__)
// "slot, measure"
#define HOST_NAMES(...) HOST_PARAMETER_EACH(HOST_PARAMETER_NAME, __VA_ARGS__)

// The same, with the version word that the host takes last.
#define HOST_DECLARATIONS_AND_VERSION(...) HOST_DECLARATIONS(__VA_ARGS__) __VA_OPT__(, ) std::uint32_t version
#define HOST_TYPES_AND_VERSION(...) \
    HOST_PARAMETER_EACH(HOST_PARAMETER_TYPE, __VA_ARGS__) __VA_OPT__(, ) std::uint32_t
#define HOST_NAMES_AND_VERSION(value, ...) HOST_NAMES(__VA_ARGS__) __VA_OPT__(, ) value
