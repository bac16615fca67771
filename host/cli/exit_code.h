// The meaning of the program's exit status; users' scripts rely on it.
#pragma once

#include "run/report.h"

namespace rovescio::cli {

enum class ExitCode : int {
    ok = 0,
    refused = 1,       // the transformation could not be applied to this music
    usage = 2,         // the command line is wrong
    badInput = 3,      // a score cannot be read, or there is no MIDI port
    badOutput = 4,     // the result cannot be written or played
    installation = 5,  // a bundle, an entry point or a host function is missing
    ruleBroken = 70,   // the plug-in broke a rule of the host, or the result is not sound
    cancelled = 130,   // interrupted by the user
};

ExitCode exitCodeOf(run::Outcome outcome);

}  // namespace rovescio::cli
