// Score files as bytes, read whole.
#pragma once

#include <cstddef>
#include <string>

#include "engine/model/problem.h"
#include "musicxml/file/bytes.h"

namespace rovescio::cli {

// Maps a file, or reads one that cannot be mapped or standard input; at most a number of bytes.
engine::Result<musicxml::Bytes> readScoreBytes(const std::string& path, std::size_t maximum);

}  // namespace rovescio::cli
