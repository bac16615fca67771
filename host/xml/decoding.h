// From the written form of a value to the value.
#pragma once

#include <string>
#include <string_view>

namespace rovescio::xml {

// An attribute's value with a space for each tab and line end that is not written as a reference.
std::string withoutLineEnds(std::string_view value);

}  // namespace rovescio::xml
