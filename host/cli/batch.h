// Several scores into one folder, processed in parallel.
#pragma once

#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "engine/model/problem.h"

namespace rovescio::cli {

// One score of a batch and where its result goes.
struct BatchItem {
    std::string score;
    std::string target;
};

// Gives each score its place in the folder. Problems: the folder is missing, two results would have the same
// name, a result would replace its own score.
engine::Result<std::vector<BatchItem>> planBatch(const std::vector<std::string>& scores,
                                                 const std::string& folder);

// Processes all scores, each in a process of its own; one that fails does not stop the others.
ExitCode runBatch(const Options& options, const std::string& program);

}  // namespace rovescio::cli
