// The results of a run, which appear together or not at all.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/staged_file.h"
#include "engine/model/problem.h"

namespace rovescio::cli {

struct Output {
    std::string name;   // a path, or "-" for standard output
    ByteSource source;  // must be usable until the results are written
};

// Writes all results. A file appears under its name only when everything is complete, and what was there
// before stays when anything fails. A cancel that comes before the files are put into place ends the program,
// and one that comes later is too late. The check is asked when all files are complete beside their places,
// and before anything goes to a stream; a problem of its own keeps everything as it was.
using LastCheck = std::function<std::optional<engine::Problem>()>;
engine::Result<engine::Done> writeOutputs(const std::vector<Output>& outputs, const LastCheck& check = {});

}  // namespace rovescio::cli
