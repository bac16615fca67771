// Score files as bytes, read whole.
#pragma once

#include <cstddef>
#include <string>

#include "engine/model/problem.h"

namespace rovescio::cli {

// Reads a file or standard input, at most a number of bytes.
engine::Result<std::string> readScoreBytes(const std::string& path, std::size_t maximum);

}  // namespace rovescio::cli
