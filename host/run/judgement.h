// What the traces of a run mean for its user.
#pragma once

#include <optional>
#include <string>

#include "dialogs/scripted_user_interface.h"
#include "dialogs/transformation_script.h"
#include "engine/model/document.h"
#include "engine/model/problem.h"
#include "run/note_changes.h"
#include "run/report.h"
#include "run/selection.h"

namespace rovescio::run {

// How many of the selection's regions hold a note that the transformation works on. The plug-in has each of
// these redrawn; it may or may not redraw the others.
int regionsReached(const engine::Document& document, const Selection& selection,
                   const dialogs::Transformation& transformation);

// What is left of a run that has ended.
struct Evidence {
    const dialogs::ScriptedUserInterface& user;
    NoteCounts counts;
    int expectedRedraws = 0;
    std::optional<engine::Problem> refusal;  // the engine's
    bool isReversed = true;                  // wherever a retrograde was asked for
};

Report judge(const Evidence& evidence);

// What the plug-in's check found in any of the selections; each finding once, nothing where it found nothing.
std::string findings(const dialogs::ScriptedUserInterface& user, const std::string& nothing);

// Everything to be played, as one request: the plug-in makes one for each selection. None when it is not
// music of the document.
std::optional<engine::PlaybackRequest> joined(const std::vector<engine::PlaybackRequest>& requests,
                                              const engine::Document& document);

}  // namespace rovescio::run
