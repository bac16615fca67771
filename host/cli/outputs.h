// The results of a run, which appear together or not at all.
#pragma once

#include <string>
#include <vector>

#include "cli/staged_file.h"
#include "engine/problem.h"

namespace rovescio::cli {

struct Output {
    std::string name;   // a path, or "-" for standard output
    ByteSource source;  // must be usable until the results are written
};

// Writes all results. A file appears under its name only when everything is complete, and what was there
// before stays when anything fails. A cancel that comes before the files are put into place ends the program,
// and one that comes later is too late.
engine::Result<engine::Done> writeOutputs(const std::vector<Output>& outputs);

}  // namespace rovescio::cli
