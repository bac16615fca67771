// Progress and cancel of a run on the terminal.
#include "cli/terminal_supervision.h"

#include <iostream>
#include <string>
#include <utility>

#include "cli/messages.h"

namespace rovescio::cli {

TerminalSupervision::TerminalSupervision(bool quiet, bool trace, std::vector<run::PlannedFault> faults)
    : bar_("frames", quiet), trace_(trace), faults_(std::move(faults)) {}

run::Supervision TerminalSupervision::supervise() {
    return {.progress =
                [this](const engine::Progress& progress) {
                    bar_.update(progress.position, progress.total);
                    return !DeferredCancel::requested();
                },
            .trace = trace_ ? &std::cerr : nullptr,
            .faults = faults_};
}

void TerminalSupervision::finish(const run::Report& report) {
    bar_.clear();
    for (const std::string& alert : report.alerts) say(alert);
}

}  // namespace rovescio::cli
