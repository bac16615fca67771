// Score files as bytes: read whole, and written so that a file is either the old one or the new one.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "engine/problem.h"

namespace rovescio::cli {

// Hands bytes to a sink, piece by piece, and stops when the sink answers false.
using ByteSource = std::function<bool(const std::function<bool(std::string_view)>& sink)>;

// The name that stands for standard input or standard output.
inline constexpr const char* kStandardStream = "-";

// Reads a file or standard input, at most a number of bytes.
engine::Result<std::string> readScoreBytes(const std::string& path, std::size_t maximum);

// Tells before the work starts whether a file could be written at a path.
engine::Result<engine::Done> checkTarget(const std::string& path);

// Writes a file, or standard output. A file appears under its name only when it is complete; an earlier one
// keeps its permission bits. Nothing is left behind on failure.
engine::Result<engine::Done> writeScoreBytes(const std::string& path, const ByteSource& source);

}  // namespace rovescio::cli
