// The user of the host, played by a script, who operates dialogs through the plug-in's own procedures.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/dialog_resources.h"
#include "dialogs/open_dialog.h"
#include "dialogs/script.h"
#include "engine/interface/playback_list.h"
#include "engine/interface/user_interface.h"
#include "engine/model/problem.h"

namespace rovescio::dialogs {

class ScriptedUserInterface : public engine::UserInterface {
  public:
    // Shows progress; false cancels, as the user's key would.
    using ProgressDisplay = std::function<bool(const engine::Progress&)>;

    using MidiMessage = std::array<std::uint8_t, 3>;
    // Waits for a note on a MIDI instrument; none when the user gave up, which cancels.
    using MidiInput = std::function<std::optional<MidiMessage>()>;

    ScriptedUserInterface(const DialogResources& resources, Scripts scripts, ProgressDisplay progressDisplay);

    // The instrument to listen to when the script plays no note; without one, there is none.
    void listenTo(MidiInput input) { midiInput_ = std::move(input); }

    // The first thing that the script asked for and a user could not do; the dialogs were closed there.
    [[nodiscard]] const std::optional<engine::Problem>& problem() const { return problem_; }
    // Texts of the warnings for the user, in order.
    [[nodiscard]] const std::vector<std::string>& alerts() const { return alerts_; }
    // Texts of the questions asked, in order; the script says how they are answered.
    [[nodiscard]] const std::vector<std::string>& questions() const { return questions_; }
    // What the script read out, in order.
    [[nodiscard]] const std::vector<Reading>& readings() const { return readings_; }
    [[nodiscard]] bool cancelled() const { return cancelled_; }
    // How often the plug-in had changed music redrawn.
    [[nodiscard]] int redraws() const { return redraws_; }
    // What the plug-in asked to be played, in order.
    [[nodiscard]] const std::vector<engine::PlaybackRequest>& playbacks() const { return playbacks_; }

    std::intptr_t runDialog(short resourceId, SXDialogProc procedure, SXWindow parent, short flags,
                            void* userData) override;
    void endDialog(SXWindow dialog) override;
    std::intptr_t value(SXWindow dialog, short item, short kind) override;
    void setValue(SXWindow dialog, short item, short kind, std::intptr_t value) override;
    void setText(SXWindow dialog, short item, const std::string& text) override;
    void enable(SXWindow dialog, short item, bool enabled) override;
    void show(SXWindow dialog, short item, bool shown) override;
    short alert(SXWindow parent, std::uint16_t style, const std::string& text) override;
    bool progress(const engine::Progress& progress) override;
    void redraw() override { ++redraws_; }
    bool listenToMidi(std::uint8_t event[3]) override;
    void play(short startMeasure, short endMeasure, const std::vector<short>& staves) override;

  private:
    // The script continues while nothing has gone wrong and nobody has cancelled.
    [[nodiscard]] bool goesOn() const { return !problem_ && !cancelled_; }
    [[nodiscard]] Script takeScript(short dialogNumber);
    void perform(OpenDialog& dialog, const Step& step);
    void set(OpenDialog& dialog, const Set& step);
    void press(OpenDialog& dialog, const Press& step);
    void read(OpenDialog& dialog, const Read& step);
    // The control that the script wants to use; null, with the problem kept, when a user could not.
    Control* reach(OpenDialog& dialog, short item);
    void refuse(const std::string& what);

    // The plug-in's side: the open dialog or control that a handle means. Null after a broken rule.
    OpenDialog* openDialog(SXWindow window, const char* call);
    Control* controlOf(SXWindow window, short item, const char* call);
    Control* valueControl(SXWindow window, short item, short kind, const char* call);

    const DialogResources& resources_;
    Scripts scripts_;
    ProgressDisplay progressDisplay_;
    MidiInput midiInput_;
    std::deque<MidiMessage> struck_;  // and not heard yet
    std::vector<engine::PlaybackRequest> playbacks_;
    std::vector<std::unique_ptr<OpenDialog>> open_;  // the innermost last
    std::optional<engine::Problem> problem_;
    std::vector<std::string> alerts_;
    std::vector<std::string> questions_;
    std::vector<Reading> readings_;
    bool answerYes_ = false;
    bool cancelled_ = false;
    int redraws_ = 0;
};

}  // namespace rovescio::dialogs
