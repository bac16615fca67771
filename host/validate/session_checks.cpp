// Checks of the command at work: dialogs, alerts, transpositions, cancels, failing host calls, playback.
#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

#include "dialogs/dialog_numbers.h"
#include "dialogs/transformation_script.h"
#include "engine/interface/gate.h"
#include "validate/checks.h"
#include "validate/child_run.h"
#include "validate/stage.h"

namespace rovescio::validate {

namespace {

using dialogs::Press;
using dialogs::Script;
using dialogs::Scripts;
using dialogs::Transposition;
namespace main_dialog = dialogs::main_dialog;
using engine::HostFunction;
using engine::SpelledPitch;

// Seconds: the smallest interval in which the steps of a scale differ in size.
constexpr Transposition kSecondInKey = {.kind = Transposition::Kind::diatonic, .steps = 1};
constexpr Transposition kMajorSecond = {.kind = Transposition::Kind::chromatic, .steps = 1};

// The detail by which a run reports that what it waited for did not happen.
constexpr const char* kNotReached = "not reached";

Scripts mainDialog(Script script) {
    return {{main_dialog::kNumber, std::move(script)}};
}

Scripts transpositionScripts(const Transposition& transposition) {
    dialogs::Transformation transformation;
    transformation.transposition = transposition;
    return transformationScripts(transformation, {});
}

// A transposition, and before the dialog is closed, playback.
Scripts everything() {
    Scripts scripts = transpositionScripts(kMajorSecond);
    Script& main = scripts.find(main_dialog::kNumber)->second;
    main.insert(main.end() - 1, Press{main_dialog::kPlay});
    return scripts;
}

// Starts the plug-in, lets `prepare` change the stage, runs the command and judges what came of it. Faults
// are planned in `prepare`, so that the start is not among the calls that fail.
Verdict perform(const std::string& bundle, Scripts scripts, const std::function<void(Stage&)>& prepare,
                const std::function<Verdict(Stage&)>& judge) {
    return onStage(bundle, std::move(scripts), [&](Stage& stage) {
        if (const auto started = stage.engagement.start(); !started) return failed(started.problem().message);
        if (prepare) prepare(stage);
        stage.engagement.runCommand();
        return judge(stage);
    });
}

// What is wrong however the dialogs were used.
std::string wrongInDialogs(const Stage& stage) {
    const auto& opened = stage.user.opened();
    if (opened.empty() || opened.front() != main_dialog::kNumber) return "the main dialog was not opened";
    return stage.user.problem() ? stage.user.problem()->message : "";
}

Verdict expectUntouched(const Stage& stage) {
    return contentOf(stage.score) == contentOf(smallScore()) ? passed() : failed("the score was changed");
}

Verdict opensAndCloses(const std::string& bundle) {
    return perform(bundle, mainDialog({Press{main_dialog::kClose}}), nullptr, [](const Stage& stage) {
        const std::string wrong = wrongInDialogs(stage);
        return wrong.empty() ? expectUntouched(stage) : failed(wrong);
    });
}

// One alert, and nothing done.
Verdict expectAlert(const Stage& stage) {
    if (const std::string wrong = wrongInDialogs(stage); !wrong.empty()) return failed(wrong);
    const std::size_t alerts = stage.user.alerts().size();
    if (alerts != 1) return failed(std::to_string(alerts) + " alerts were shown instead of 1");
    return expectUntouched(stage);
}

Verdict reportsNothingChosen(const std::string& bundle) {
    return perform(bundle, mainDialog({Press{main_dialog::kApply}, Press{main_dialog::kClose}}), nullptr,
                   expectAlert);
}

Verdict reportsNoSelection(const std::string& bundle) {
    return perform(
        bundle, transpositionScripts(kMajorSecond), [](Stage& stage) { stage.session.selection.reset(); },
        expectAlert);
}

// A transposition: every pitch right, the change drawn, and all of it one step to undo.
Verdict transposes(const std::string& bundle, const Transposition& transposition,
                   const Expectation& expected) {
    return perform(bundle, transpositionScripts(transposition), nullptr, [&](Stage& stage) {
        std::string wrong = wrongInDialogs(stage);
        if (wrong.empty()) wrong = firstWrongNote(smallScore(), stage.score, expected);
        if (wrong.empty() && stage.user.redraws() == 0) wrong = "the music was not redrawn";
        if (wrong.empty() && (!stage.session.massEdits.undo() || stage.session.massEdits.undo())) {
            wrong = "it is not a single undo step";
        }
        return wrong.empty() ? expectUntouched(stage) : failed(wrong);
    });
}

Verdict transposesDiatonically(const std::string& bundle) {
    return transposes(bundle, kSecondInKey, [](const engine::KeySignature& key, ENOTE note) {
        ++note.displacement;
        return key.spell(note);
    });
}

Verdict transposesChromatically(const std::string& bundle) {
    return transposes(bundle, kMajorSecond, [](const engine::KeySignature& key, const ENOTE& note) {
        constexpr int kSemitones = 2;
        const SpelledPitch old = key.spell(note);
        SpelledPitch moved = {old.step + kMajorSecond.steps, 0};
        moved.alter = semitones(old) + kSemitones - semitones(moved);
        return moved;
    });
}

// Runs once for every number from 1 on, until a run tells that it did not reach what it waited for. The
// number of the runs before becomes the note; of a run that is not passed the number is told.
template <class Run>
Verdict runForEach(const Subject& subject, const std::string& what, const Run& run) {
    for (int number = 1;; ++number) {
        Verdict verdict = runApart([&] { return run(number); }, subject.timeLimit);
        if (verdict.outcome != Outcome::passed) {
            verdict.detail = what + " " + std::to_string(number) + ": " + verdict.detail;
            return verdict;
        }
        if (verdict.detail == kNotReached) return passed(std::to_string(number - 1));
    }
}

Verdict rollsBackEveryCancel(const Subject& subject) {
    Verdict verdict = runForEach(subject, "cancel at poll", [&](int number) {
        return perform(
            subject.bundle, transpositionScripts(kMajorSecond),
            [number](Stage& stage) { stage.cancelAt = number; },
            [number](const Stage& stage) {
                return stage.polls < number ? passed(kNotReached) : expectUntouched(stage);
            });
    });
    if (verdict.outcome != Outcome::passed) return verdict;
    return verdict.detail == "0" ? failed("it never asked whether the user had cancelled")
                                 : passed(verdict.detail + " polls");
}

// Whether a call of the function can fail in a way that a plug-in can see and answer to.
bool canFail(HostFunction function) {
    static constexpr std::array kHasResult = {
#define HOST_FUNCTION(result, name, ...) !std::is_void_v<result>,
#define HOST_GUARDED(result, name, ...) HOST_FUNCTION(result, name, __VA_ARGS__)
#define HOST_KIT_FUNCTION(result, name, ...)
#define HOST_KIT_GUARDED(result, name, ...)
#include "contract/host_functions.def"
    };
    switch (function) {
        case HostFunction::SX_StartMassEdit:  // the interface knows no edit that was refused
        case HostFunction::SX_GetDlgItemVal:  // 0 is a value as any other
        case HostFunction::SX_DeleteEData:    // what the host keeps is not left by the plug-in
            return false;
        default:
            return kHasResult[static_cast<std::size_t>(function)];
    }
}

Verdict survivesFailingCalls(const Subject& subject) {
    int calls = 0;
    for (int i = 0; i < static_cast<int>(HostFunction::count); ++i) {
        const auto function = static_cast<HostFunction>(i);
        if (!canFail(function)) continue;
        Verdict verdict = runForEach(
            subject, "failing " + std::string(hostFunctionName(function)) + " call", [&](int number) {
                const auto planned = static_cast<std::uint64_t>(number);
                std::uint64_t before = 0;
                return perform(
                    subject.bundle, everything(),
                    [&](Stage&) {
                        before = callCount(function);
                        planFault(function, planned);
                    },
                    [&](Stage&) {
                        return passed(callCount(function) - before < planned ? kNotReached : "");
                    });
            });
        if (verdict.outcome != Outcome::passed) return verdict;
        calls += std::stoi(verdict.detail);
    }
    return passed(std::to_string(calls) + " calls");
}

Verdict plays(const std::string& bundle) {
    return perform(
        bundle, mainDialog({Press{main_dialog::kPlay}, Press{main_dialog::kClose}}), nullptr,
        [](const Stage& stage) {
            if (const std::string wrong = wrongInDialogs(stage); !wrong.empty()) return failed(wrong);
            const EREGION region = smallSelection();
            const std::vector<User::Played> expected = {{region.start.measure, region.end.measure, {1, 2}}};
            return stage.user.played() == expected ? expectUntouched(stage)
                                                   : failed("it did not play exactly the selection");
        });
}

}  // namespace

std::vector<Check> sessionChecks() {
    return {
        checkApart("main dialog opens and closes", opensAndCloses),
        checkApart("reports that nothing is chosen", reportsNothingChosen),
        checkApart("reports that nothing is selected", reportsNoSelection),
        checkApart("diatonic transposition", transposesDiatonically),
        checkApart("chromatic transposition", transposesChromatically),
        {"cancel at every poll", rollsBackEveryCancel},
        {"failing host calls", survivesFailingCalls},
        checkApart("playback", plays),
    };
}

}  // namespace rovescio::validate
