// The folder of the running program.
#include "cli/installation.h"

#include <filesystem>
#include <system_error>

namespace rovescio::cli {

Installation findInstallation(const char* calledAs) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) program = fs::canonical(calledAs, error);
    const fs::path home = program.parent_path();
    return {.program = program.string(),
            .engineBundle = (home / "NotationEngine.bundle").string(),
            .pluginBundle = (home / "Rovescio.bundle").string()};
}

}  // namespace rovescio::cli
