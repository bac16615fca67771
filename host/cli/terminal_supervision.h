// A run as the terminal shows it: progress bar, Ctrl-C, trace, and what the plug-in says.
#pragma once

#include <vector>

#include "cli/cancel.h"
#include "cli/progress_bar.h"
#include "run/report.h"
#include "run/supervision.h"

namespace rovescio::cli {

// While an object of this class lives, a cancel is for the run to answer.
class TerminalSupervision {
  public:
    TerminalSupervision(bool quiet, bool trace, std::vector<run::PlannedFault> faults);

    // Valid as long as this object is.
    [[nodiscard]] run::Supervision supervise();
    // The run has ended: says what the plug-in had to say.
    void finish(const run::Report& report);

  private:
    ProgressBar bar_;
    bool trace_;
    std::vector<run::PlannedFault> faults_;
    DeferredCancel deferred_{DeferredCancel::End::rollBack};
};

}  // namespace rovescio::cli
