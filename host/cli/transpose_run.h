// One transposition of a document by the plug-in, through its dialogs.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_code.h"
#include "cli/selection.h"
#include "dialogs/transposition_script.h"
#include "engine/document.h"
#include "engine/gate.h"
#include "engine/problem.h"

namespace rovescio::cli {

// Which call of which host function is to fail; for developers of plug-ins.
using PlannedFault = std::pair<engine::HostFunction, std::uint64_t>;

struct TransposeOptions {
    std::string engineBundle;
    std::string pluginBundle;
    bool trace = false;
    bool quiet = false;
    std::vector<PlannedFault> faults;
};

struct TransposeOutcome {
    ExitCode code = ExitCode::ok;
    engine::Problem problem;        // what to tell the user; no message when the plug-in told it
    std::size_t notesSelected = 0;  // notes inside the selection
    std::size_t notesChanged = 0;   // those whose pitch is another one now
};

// Loads the bundles and lets the plug-in transpose the selection. Unless the outcome is ok, the document is
// not to be written.
TransposeOutcome transpose(engine::Document& document, const Selection& selection,
                           const dialogs::Transposition& transposition, const TransposeOptions& options);

}  // namespace rovescio::cli
