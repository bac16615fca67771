// What the program says to its user on standard error.
#pragma once

#include <cstddef>
#include <string>

#include "engine/problem.h"

namespace rovescio::cli {

// Prints "rovescio: " and the text as one line.
void say(const std::string& text);
void say(const engine::Problem& problem);

// A problem that concerns no file.
engine::Problem problemWith(std::string message, std::string remedy);

// A count and its noun: "1 note", "12 notes".
std::string counted(std::size_t count, const std::string& noun);

}  // namespace rovescio::cli
