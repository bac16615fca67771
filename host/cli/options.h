// The command line.
#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "cli/exit_code.h"
#include "dialogs/transformation_script.h"
#include "run/selection_request.h"
#include "run/supervision.h"

namespace rovescio::cli {

struct Options {
    std::vector<std::string> scores;  // paths; "-" is standard input
    dialogs::Transformation transformation;
    run::SelectionRequest selection;
    std::string output;    // a path, "-" for standard output, or empty
    std::string midiFile;  // likewise
    bool play = false;
    std::string midiPort;          // a name or part of one; empty for the only port there is
    std::string row;               // twelve notes whose forms are wanted, or empty
    std::string outputFolder;      // or empty
    unsigned jobs = 0;             // processes side by side; 0 as many as there are processors
    std::string plugin;            // a bundle, or empty for the one beside the program
    std::size_t maximumBytes = 0;  // of a score file
    std::vector<run::PlannedFault> faults;
    bool trace = false;
    bool check = false;
    bool info = false;
    bool quiet = false;
    // What was given apart from scores and outputs, for the processes of a batch.
    std::vector<std::string> passedOn;

    [[nodiscard]] bool wantsPlayback() const { return play || !midiFile.empty(); }
};

// The options, or the exit code when there is nothing left to do: help was printed, or a message about what
// is wrong.
std::variant<Options, ExitCode> parseOptions(int argc, const char* const* argv);

}  // namespace rovescio::cli
