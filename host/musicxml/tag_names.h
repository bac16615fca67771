// Element names as numbers, so that a reader can switch on them.
#pragma once

#include <cstdint>
#include <string_view>

namespace rovescio::musicxml {

// FNV-1a hash of an element name; the cases of one switch are checked for
// clashes by the compiler.
constexpr std::uint64_t tag(std::string_view name) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    return hash;
}

// The same of a terminated name, in one pass.
inline std::uint64_t tagOfTerminated(const char* name) {
    std::uint64_t hash = tag({});
    for (; *name != '\0'; ++name) hash = (hash ^ static_cast<unsigned char>(*name)) * 0x100000001b3U;
    return hash;
}

}  // namespace rovescio::musicxml
