// Sets up the stage.
#include "validate/stage.h"

namespace rovescio::validate {

std::intptr_t User::runDialog(short resourceId, SXDialogProc procedure, SXWindow parent, short flags,
                              void* userData) {
    opened_.push_back(resourceId);
    return ScriptedUserInterface::runDialog(resourceId, procedure, parent, flags, userData);
}

void User::play(short startMeasure, short endMeasure, const std::vector<short>& staves) {
    played_.push_back({startMeasure, endMeasure, staves});
}

Stage::Stage(const run::PlugIn& plugIn, dialogs::Scripts scripts)
    : score(smallScore()),
      user(plugIn.dialogs, std::move(scripts),
           [this](const engine::Progress&) { return ++polls != cancelAt; }),
      session(score),
      engagement(session, plugIn.bundle, user) {
    session.selection = smallSelection();
}

Verdict onStage(const std::string& bundle, dialogs::Scripts scripts,
                const std::function<Verdict(Stage&)>& action) {
    const auto plugIn = run::PlugIn::load(bundle);
    if (!plugIn) return failed(plugIn.problem().message);
    Stage stage(plugIn.value(), std::move(scripts));
    return action(stage);
}

}  // namespace rovescio::validate
