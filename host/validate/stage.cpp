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

Stage::Stage(const engine::PluginBundle& pluginBundle, const dialogs::DialogResources& resources,
             dialogs::Scripts scripts)
    : plugin(pluginBundle),
      score(smallScore()),
      user(resources, std::move(scripts), [this](const engine::Progress&) { return ++polls != cancelAt; }),
      session(score, user) {
    session.selection = smallSelection();
    session.pluginString = [this](std::uint32_t id) { return plugin.string(id); };
}

void Stage::runCommand() {
    plugin.invoke(0, nullptr);
    session.checkBalanced();
}

engine::Result<dialogs::DialogResources> dialogsOf(const std::string& bundle) {
    const auto plugin = engine::PluginBundle::load(bundle);
    if (!plugin) return plugin.problem();
    return dialogs::DialogResources::load(bundle);
}

Verdict onStage(const std::string& bundle, dialogs::Scripts scripts,
                const std::function<Verdict(Stage&)>& action) {
    const auto resources = dialogsOf(bundle);
    if (!resources) return failed(resources.problem().message);
    const auto plugin = engine::PluginBundle::load(bundle);
    if (!plugin) return failed(plugin.problem().message);
    Stage stage(plugin.value(), resources.value(), std::move(scripts));
    return action(stage);
}

}  // namespace rovescio::validate
