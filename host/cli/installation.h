// Where the program and its bundles are.
#pragma once

#include <string>

namespace rovescio::cli {

struct Installation {
    std::string program;       // real path of the program
    std::string engineBundle;  // NotationEngine.bundle beside it
    std::string pluginBundle;  // Rovescio.bundle beside it
};

// Finds the program by what the system knows about the process, else by the name it was called with.
Installation findInstallation(const char* calledAs);

}  // namespace rovescio::cli
