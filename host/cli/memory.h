// What happens when there is not enough memory: one message that says so, whoever asked for it.
#pragma once

#include <cstddef>

#include "engine/model/problem.h"

namespace rovescio::cli {

// From now on an allocation that fails ends the program with a message and ExitCode::refused.
void watchMemory();

// Whether so little is left that this best explains a failure: libraries that run out of memory report
// damaged files.
bool memoryIsShort();

engine::Problem memoryProblem();

}  // namespace rovescio::cli
