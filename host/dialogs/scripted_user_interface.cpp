// The scripted user, and the checks of what the plug-in does with its dialogs.
#include "dialogs/scripted_user_interface.h"

#include <algorithm>
#include <utility>

#include "engine/interface/strictness.h"

namespace rovescio::dialogs {

namespace {

// What SX_Dialog returns: a modal dialog has no result of its own.
constexpr std::intptr_t kDialogDone = 0;
constexpr short kAnswerOk = 1;
constexpr short kAnswerNo = 7;

std::string itemOf(short item, short dialog) {
    return "item " + std::to_string(item) + " of dialog " + std::to_string(dialog);
}

std::optional<short> valueKind(ItemKind kind) {
    switch (kind) {
        case ItemKind::popup:
            return kPopupValue;
        case ItemKind::check:
            return kCheckValue;
        case ItemKind::number:
            return kNumberValue;
        case ItemKind::button:
        case ItemKind::text:
            break;
    }
    return std::nullopt;
}

}  // namespace

ScriptedUserInterface::ScriptedUserInterface(const DialogResources& resources, Scripts scripts,
                                             ProgressDisplay progressDisplay)
    : resources_(resources), scripts_(std::move(scripts)), progressDisplay_(std::move(progressDisplay)) {}

void ScriptedUserInterface::refuse(const std::string& what) {
    if (problem_) return;
    problem_ = engine::Problem{.message = what, .file = {}, .measure = {}, .remedy = {}};
}

// --- dialogs ---

std::intptr_t ScriptedUserInterface::runDialog(short resourceId, SXDialogProc procedure, SXWindow /*parent*/,
                                               short /*flags*/, void* userData) {
    const std::string name = "dialog " + std::to_string(resourceId);
    const DialogDescription* description = resources_.find(resourceId);
    if (description == nullptr) {
        engine::ruleBroken(engine::Rule::dialogUnknown, name + " has no description");
        return kDialogDone;
    }
    if (procedure == nullptr) {
        engine::ruleBroken(engine::Rule::dialogWithoutProcedure, name + " was opened without a procedure");
        return kDialogDone;
    }
    open_.push_back(std::make_unique<OpenDialog>(*description, procedure, userData));
    OpenDialog& dialog = *open_.back();
    dialog.initialise();
    for (const Step& step : takeScript(resourceId)) {
        if (!dialog.isOpen() || !goesOn()) break;
        perform(dialog, step);
    }
    if (dialog.isOpen() && goesOn()) refuse(name + " was left open: nothing in its script closed it");
    open_.pop_back();
    return kDialogDone;
}

Script ScriptedUserInterface::takeScript(short dialogNumber) {
    const auto found = scripts_.find(dialogNumber);
    if (found == scripts_.end()) {
        refuse("dialog " + std::to_string(dialogNumber) + " was opened, but there is no script for it");
        return {};
    }
    return std::move(scripts_.extract(found).mapped());
}

void ScriptedUserInterface::perform(OpenDialog& dialog, const Step& step) {
    if (const auto* setting = std::get_if<Set>(&step)) {
        set(dialog, *setting);
    } else if (const auto* pressing = std::get_if<Press>(&step)) {
        press(dialog, *pressing);
    } else if (const auto* reading = std::get_if<Read>(&step)) {
        read(dialog, *reading);
    } else if (const auto* answer = std::get_if<Answer>(&step)) {
        answerYes_ = answer->yes;
    } else if (const auto* strike = std::get_if<Strike>(&step)) {
        struck_.push_back(strike->message);
    } else {
        std::get<Meanwhile>(step).action();
    }
}

Control* ScriptedUserInterface::reach(OpenDialog& dialog, short item) {
    Control* control = dialog.control(item);
    if (control == nullptr) {
        refuse("there is no " + itemOf(item, dialog.number()));
    } else if (!control->shown) {
        refuse(itemOf(item, dialog.number()) + " is hidden");
    } else if (!control->enabled) {
        refuse(itemOf(item, dialog.number()) + " is disabled");
    } else {
        return control;
    }
    return nullptr;
}

void ScriptedUserInterface::set(OpenDialog& dialog, const Set& step) {
    Control* control = reach(dialog, step.item);
    if (control == nullptr) return;
    if (!canHold(control->item, step.value)) {
        refuse(itemOf(step.item, dialog.number()) + ", a " + std::string(itemKindName(control->item.kind)) +
               ", cannot be set to " + std::to_string(step.value));
        return;
    }
    control->value = step.value;
    dialog.command(step.item, control->item.kind == ItemKind::popup ? kPopupChanged : 0);
}

void ScriptedUserInterface::press(OpenDialog& dialog, const Press& step) {
    Control* control = dialog.control(step.item);
    if (step.ifEnabled && control != nullptr && !control->enabled) return;
    control = reach(dialog, step.item);
    if (control == nullptr) return;
    if (control->item.kind != ItemKind::button) {
        refuse(itemOf(step.item, dialog.number()) + " is not a button but a " +
               std::string(itemKindName(control->item.kind)));
        return;
    }
    dialog.command(step.item, 0);
}

void ScriptedUserInterface::read(OpenDialog& dialog, const Read& step) {
    const Control* control = reach(dialog, step.item);
    if (control == nullptr) return;
    if (control->item.kind != ItemKind::text) {
        refuse(itemOf(step.item, dialog.number()) + " is not a text but a " +
               std::string(itemKindName(control->item.kind)));
        return;
    }
    readings_.push_back({dialog.number(), step.item, control->text});
}

void ScriptedUserInterface::endDialog(SXWindow window) {
    if (OpenDialog* dialog = openDialog(window, "SX_EndDialog")) dialog->close();
}

// --- controls, as the plug-in uses them ---

OpenDialog* ScriptedUserInterface::openDialog(SXWindow window, const char* call) {
    const auto found = std::find_if(open_.begin(), open_.end(),
                                    [&](const auto& dialog) { return dialog->window() == window; });
    if (found != open_.end() && (*found)->isOpen()) return found->get();
    engine::ruleBroken(engine::Rule::dialogMisused, std::string(call) + " for a dialog that is not open");
    return nullptr;
}

Control* ScriptedUserInterface::controlOf(SXWindow window, short item, const char* call) {
    OpenDialog* dialog = openDialog(window, call);
    if (dialog == nullptr) return nullptr;
    Control* control = dialog->control(item);
    if (control == nullptr) {
        engine::ruleBroken(engine::Rule::dialogMisused,
                           std::string(call) + ": there is no " + itemOf(item, dialog->number()));
    }
    return control;
}

Control* ScriptedUserInterface::valueControl(SXWindow window, short item, short kind, const char* call) {
    Control* control = controlOf(window, item, call);
    if (control == nullptr) return nullptr;
    if (valueKind(control->item.kind) == kind) return control;
    engine::ruleBroken(engine::Rule::dialogMisused,
                       std::string(call) + ": value kind " + std::to_string(kind) + " does not fit item " +
                           std::to_string(item) + ", a " + std::string(itemKindName(control->item.kind)));
    return nullptr;
}

std::intptr_t ScriptedUserInterface::value(SXWindow dialog, short item, short kind) {
    const Control* control = valueControl(dialog, item, kind, "SX_GetDlgItemVal");
    return control == nullptr ? 0 : control->value;
}

void ScriptedUserInterface::setValue(SXWindow dialog, short item, short kind, std::intptr_t value) {
    Control* control = valueControl(dialog, item, kind, "SX_SetDlgItemVal");
    if (control == nullptr) return;
    if (!canHold(control->item, value)) {
        engine::ruleBroken(engine::Rule::dialogMisused, "SX_SetDlgItemVal: item " + std::to_string(item) +
                                                            " cannot hold " + std::to_string(value));
        return;
    }
    control->value = static_cast<int>(value);
}

void ScriptedUserInterface::setText(SXWindow dialog, short item, const std::string& text) {
    if (Control* control = controlOf(dialog, item, "SX_SetDlgString_UTF16")) control->text = text;
}

void ScriptedUserInterface::enable(SXWindow dialog, short item, bool enabled) {
    if (Control* control = controlOf(dialog, item, "SX_EnableDlgItem")) control->enabled = enabled;
}

void ScriptedUserInterface::show(SXWindow dialog, short item, bool shown) {
    if (Control* control = controlOf(dialog, item, "SX_ShowHideDlgItem")) control->shown = shown;
}

// --- alerts, progress, playback ---

short ScriptedUserInterface::alert(SXWindow /*parent*/, std::uint16_t style, const std::string& text) {
    if (style == kAlertYesNo) {
        questions_.push_back(text);
        return answerYes_ ? kAnswerYes : kAnswerNo;
    }
    alerts_.push_back(text);
    return kAnswerOk;
}

bool ScriptedUserInterface::progress(const engine::Progress& progress) {
    if (!cancelled_ && progressDisplay_ && !progressDisplay_(progress)) cancelled_ = true;
    return !cancelled_;
}

bool ScriptedUserInterface::listenToMidi(std::uint8_t event[3]) {
    std::optional<MidiMessage> heard;
    if (!struck_.empty()) {
        heard = struck_.front();
        struck_.pop_front();
    } else if (midiInput_) {
        heard = midiInput_();
        if (!heard) cancelled_ = true;
    } else {
        refuse("the dialog waits for a MIDI note, but none is played");
    }
    if (heard) std::copy(heard->begin(), heard->end(), event);
    return heard.has_value();
}

void ScriptedUserInterface::play(short startMeasure, short endMeasure, const std::vector<short>& staves) {
    playbacks_.push_back({startMeasure, endMeasure, staves});
}

}  // namespace rovescio::dialogs
