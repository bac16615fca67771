// From what came of a run to the exit status.
#include "cli/exit_code.h"

namespace rovescio::cli {

ExitCode exitCodeOf(run::Outcome outcome) {
    switch (outcome) {
        case run::Outcome::done:
            return ExitCode::ok;
        case run::Outcome::nothingToDo:
        case run::Outcome::refused:
            return ExitCode::refused;
        case run::Outcome::cancelled:
            return ExitCode::cancelled;
        case run::Outcome::notInstalled:
            return ExitCode::installation;
        case run::Outcome::unsound:
            return ExitCode::ruleBroken;
    }
    return ExitCode::refused;
}

}  // namespace rovescio::cli
