// What happens when there is not enough memory: one message that says so, whoever asked for it.
#pragma once

#include <cstddef>

#include "engine/problem.h"

namespace rovescio::cli {

// From now on an allocation that fails ends the program with a message and ExitCode::refused.
void watchMemory();

// Whether there is so little left that a failure is better explained by that than by anything else: libraries
// that get none tell of damaged files.
bool memoryIsShort();

// Whether some work can have so many bytes; for work in libraries that do not survive the want of them.
bool hasMemoryFor(std::size_t bytes);

engine::Problem memoryProblem();

}  // namespace rovescio::cli
