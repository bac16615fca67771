// A plug-in at work in a session.
#pragma once

#include "engine/interface/plugin_bundle.h"
#include "engine/interface/session.h"
#include "engine/interface/user_interface.h"
#include "engine/model/problem.h"

namespace rovescio::run {

// While an object of this class lives, the session serves one plug-in with one user at its dialogs.
class Engagement {
  public:
    // Begins with nothing selected; all three must live longer than this object.
    Engagement(engine::Session& session, const engine::PluginBundle& plugin, engine::UserInterface& user);
    ~Engagement() { session_.end(); }
    Engagement(const Engagement&) = delete;
    Engagement& operator=(const Engagement&) = delete;

    engine::Result<engine::Done> start() { return plugin_.start(); }
    // Runs the command of the started plug-in to its end, and lets the engine look for what was left open.
    void runCommand();

  private:
    engine::Session& session_;
    const engine::PluginBundle& plugin_;
};

}  // namespace rovescio::run
