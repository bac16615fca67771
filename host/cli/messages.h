// What the program says to its user, line by line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/model/problem.h"

namespace rovescio::cli {

// A text as one line that is safe to show on a terminal: names in files could hold control characters that
// move the cursor, set colours or overwrite earlier lines. These become blanks or question marks.
std::string printable(std::string_view text);

// Prints "rovescio: " and the text as one line on standard error.
void say(const std::string& text);
// Operations that the remedy names are shown as the options that they are here.
void say(const engine::Problem& problem);

// Prints lines on standard output; false, after a message, when that cannot be written.
bool show(const std::vector<std::string>& lines);

using engine::problemWith;

// A count and its noun: "1 note", "12 notes".
std::string counted(std::size_t count, const std::string& noun);

}  // namespace rovescio::cli
