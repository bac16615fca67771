// What came of a run of the plug-in over a score.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "engine/interface/playback_list.h"
#include "engine/model/problem.h"

namespace rovescio::run {

enum class Outcome {
    done,
    nothingToDo,   // the selection holds nothing that the transformation works on
    refused,       // it could not be applied to this music
    cancelled,     // by the user
    notInstalled,  // the plug-in does not start
    unsound,       // the result does not stand proofreading
};

// Unless the outcome is done, the document is as it was before the run.
struct Report {
    Outcome outcome = Outcome::done;
    engine::Problem problem;        // for the user; no message when the plug-in gave one by an alert
    std::size_t notesSelected = 0;  // notes inside the selection
    std::size_t notesChanged = 0;   // those that are not as they were: for a transposition alone in pitch,
                                    // else in pitch, in showing an accidental or in ties
    std::vector<std::string> notices = {};    // what the user should know of a run that went well
    std::string findings = {};                // what a check had to report; empty for nothing
    std::vector<std::string> obstacles = {};  // and where
    std::vector<std::string> alerts = {};     // what the plug-in told its user, in order
    std::optional<engine::PlaybackRequest> playback = std::nullopt;  // what the plug-in wants to be heard

    [[nodiscard]] bool isDone() const { return outcome == Outcome::done; }
};

}  // namespace rovescio::run
