// Checks a library before the loader maps it.
#pragma once

#include <filesystem>

namespace rovescio::platform {

/// Whether all that the loader would map lies inside the file. A library that was cut short, as by a full
/// disk or a broken download, would end the process at the first touch of what is missing.
bool isWholeLibrary(const std::filesystem::path& path);

}  // namespace rovescio::platform
