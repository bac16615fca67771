// Files of other kinds that users may give as scores, and how to make MusicXML from them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/model/problem.h"

namespace rovescio::cli {

// As much of a file as its kind shows in: its beginning and its end.
std::string formatSample(std::string_view bytes);

// The problem of a file that could not be read as a score, when its content or else its name tells what it
// is.
std::optional<engine::Problem> foreignFormat(std::string_view sample, const std::string& name);

}  // namespace rovescio::cli
