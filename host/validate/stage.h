// A plug-in at work: on the small score, with a scripted user at its dialogs and the engine's rules in force.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/scripted_user_interface.h"
#include "engine/interface/session.h"
#include "run/engagement.h"
#include "run/plug_in.h"
#include "validate/small_score.h"
#include "validate/verdict.h"

namespace rovescio::validate {

// The scripted user with a memory.
class User : public dialogs::ScriptedUserInterface {
  public:
    using ScriptedUserInterface::ScriptedUserInterface;

    struct Played {
        short startMeasure;
        short endMeasure;
        std::vector<short> staves;
        friend bool operator==(const Played&, const Played&) = default;
    };
    // Numbers of the dialogs opened, and what was played, in order.
    [[nodiscard]] const std::vector<short>& opened() const { return opened_; }
    [[nodiscard]] const std::vector<Played>& played() const { return played_; }

    std::intptr_t runDialog(short resourceId, SXDialogProc procedure, SXWindow parent, short flags,
                            void* userData) override;
    void play(short startMeasure, short endMeasure, const std::vector<short>& staves) override;

  private:
    std::vector<short> opened_;
    std::vector<Played> played_;
};

class Stage {
  public:
    Stage(const run::PlugIn& plugIn, dialogs::Scripts scripts);

    engine::Document score;
    int polls = 0;     // for a cancel, so far
    int cancelAt = 0;  // the poll at which the user cancels, counted from 1; 0 never
    User user;
    engine::Session session;
    run::Engagement engagement;
};

// Loads a bundle and lets something happen with it on a stage. The plug-in is not started yet.
Verdict onStage(const std::string& bundle, dialogs::Scripts scripts,
                const std::function<Verdict(Stage&)>& action);

}  // namespace rovescio::validate
