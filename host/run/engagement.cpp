// The plug-in's command from its start to the engine's last look.
#include "run/engagement.h"

namespace rovescio::run {

Engagement::Engagement(engine::Session& session, const engine::PluginBundle& plugin,
                       engine::UserInterface& user)
    : session_(session), plugin_(plugin) {
    session_.begin(user);
    session_.pluginString = [this](std::uint32_t stringId) { return plugin_.string(stringId); };
}

void Engagement::runCommand() {
    constexpr short kCommand = 0;
    plugin_.invoke(kCommand, nullptr);
    session_.checkBalanced();
}

}  // namespace rovescio::run
