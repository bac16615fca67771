// Names of note values.
#pragma once

#include <cstdint>
#include <string_view>

namespace rovescio::musicxml {

// Note value of a type's name in duration units; 0 when unknown.
std::int32_t noteValue(std::string_view type);
// The name of a plain value; empty when it has none.
std::string_view typeName(std::int32_t value);

}  // namespace rovescio::musicxml
