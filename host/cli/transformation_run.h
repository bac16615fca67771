// One run of the plug-in over a document, through its dialogs.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_code.h"
#include "cli/selection.h"
#include "dialogs/scripted_user_interface.h"
#include "dialogs/transformation_script.h"
#include "engine/interface/gate.h"
#include "engine/interface/playback_list.h"
#include "engine/model/document.h"
#include "engine/model/problem.h"

namespace rovescio::cli {

// Which call of which host function is to fail; for developers of plug-ins.
using PlannedFault = std::pair<engine::HostFunction, std::uint64_t>;

struct RunOptions {
    std::string engineBundle;
    std::string pluginBundle;
    bool trace = false;
    bool quiet = false;
    std::vector<PlannedFault> faults;
    bool check = false;     // only have the selection checked for a retrograde
    bool playback = false;  // have the selection played once it is transformed
    dialogs::ScriptedUserInterface::MidiInput midiInput = nullptr;
};

struct TransformationOutcome {
    ExitCode code = ExitCode::ok;
    engine::Problem problem;        // for the user; no message when the plug-in gave one
    std::size_t notesSelected = 0;  // notes inside the selection
    std::size_t notesChanged = 0;   // those that are not as they were: for a transposition alone in pitch,
                                    // else in pitch, in showing an accidental or in ties
    std::vector<std::string> notices = {};    // what the user should know of a run that went well
    std::string findings = {};                // what a check had to report; empty for nothing
    std::vector<std::string> obstacles = {};  // and where
    std::optional<engine::PlaybackRequest> playback = std::nullopt;  // what the plug-in wants to be heard
};

// Loads the bundles and lets the plug-in transform the selection and play it; a transformation without steps
// leaves the music as it is. Unless the outcome is ok, the document is
// not to be written.
TransformationOutcome transform(engine::Document& document, const Selection& selection,
                                const dialogs::Transformation& transformation, const RunOptions& options);

}  // namespace rovescio::cli
