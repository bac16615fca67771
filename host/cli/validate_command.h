// The command "rovescio validate".
#pragma once

#include <string>

#include "cli/exit_code.h"

namespace rovescio::cli {

// Validates the bundle that the arguments name, prints the report and says whether all checks passed.
// The first argument is the command's own name.
ExitCode validate(int argc, const char* const* argv, const std::string& engineBundle);

}  // namespace rovescio::cli
