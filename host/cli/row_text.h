// A twelve-note row as written on the command line.
#pragma once

#include <string>

#include "engine/model/problem.h"
#include "run/row_forms.h"

namespace rovescio::cli {

// Reads twelve different pitch classes between spaces or commas: numbers from 0 (C) to 11, or note names such
// as C, F# or B-flat. Problems: no such pitch, one that comes twice, not twelve of them.
engine::Result<run::Row> parseRow(const std::string& text);

}  // namespace rovescio::cli
