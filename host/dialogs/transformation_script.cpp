// Steps through the main dialog and the dialogs behind its buttons.
#include "dialogs/transformation_script.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

#include "dialogs/dialog_numbers.h"

namespace rovescio::dialogs {

namespace {

// The intervals of the chromatic pop-up in its order, as steps and alteration.
constexpr std::array<std::pair<int, int>, 26> kChromaticEntries = {
    {{0, 0}, {0, 1},  {1, -2}, {1, -1}, {1, 0},  {1, 1}, {2, -2}, {2, -1}, {2, 0},
     {2, 1}, {3, -1}, {3, 0},  {3, 1},  {4, -1}, {4, 0}, {4, 1},  {5, -2}, {5, -1},
     {5, 0}, {5, 1},  {6, -2}, {6, -1}, {6, 0},  {6, 1}, {7, -1}, {7, 0}}};

// Adds the steps that choose the interval, and the script of the second dialog when that is needed.
void chooseInterval(const Transposition& transposition, Script& script, Scripts& scripts) {
    using namespace transposition_dialog;
    switch (transposition.kind) {
        case Transposition::Kind::diatonic: {
            const bool listed = transposition.steps + 1 < kDiatonicOther;
            script.emplace_back(Set{kKind, kKindDiatonic});
            script.emplace_back(Set{kDiatonicInterval, listed ? transposition.steps + 1 : kDiatonicOther});
            if (!listed) {
                scripts.emplace(other_interval_dialog::kNumber,
                                Script{Set{other_interval_dialog::kSteps, transposition.steps},
                                       Press{other_interval_dialog::kOk}});
            }
            break;
        }
        case Transposition::Kind::chromatic: {
            const auto* entry = std::find(kChromaticEntries.begin(), kChromaticEntries.end(),
                                          std::pair(transposition.steps, transposition.alteration));
            const bool listed = entry != kChromaticEntries.end();
            const auto place = static_cast<int>(std::distance(kChromaticEntries.begin(), entry));
            script.emplace_back(Set{kKind, kKindChromatic});
            script.emplace_back(Set{kChromaticInterval, listed ? place + 1 : kChromaticOther});
            if (!listed) {
                scripts.emplace(other_interval_dialog::kNumber,
                                Script{Set{other_interval_dialog::kSteps, transposition.steps},
                                       Set{other_interval_dialog::kAlteration, transposition.alteration},
                                       Press{other_interval_dialog::kOk}});
            }
            break;
        }
        case Transposition::Kind::semitones:
            script.emplace_back(Set{kKind, kKindSemitones});
            script.emplace_back(Set{kSemitones, transposition.semitones + 1});
            script.emplace_back(
                Set{kSpelling, transposition.spelling == Transposition::Spelling::sharps ? 1 : 2});
            break;
    }
}

// Records the report; a repair closes the dialog by itself.
Script reportScript(bool repair) {
    using namespace report_dialog;
    Script script{Read{kMeasures}, Read{kReport}};
    if (repair) {
        script.emplace_back(Answer{true});
        script.emplace_back(Press{kRepair, true});
    }
    script.emplace_back(Press{kClose});
    return script;
}

void reverse(const Retrograde& retrograde, std::size_t selections, Script& main, Scripts& scripts) {
    using namespace retrograde_dialog;
    main.emplace_back(Set{main_dialog::kRetrograde, 1});
    scripts.emplace(kNumber, Script{Set{kMirrorKeys, retrograde.mirrorKeys ? 1 : 0},
                                    Set{kMirrorSpacing, retrograde.mirrorSpacing ? 1 : 0}, Press{kOk}});
    main.emplace_back(Press{main_dialog::kRetrogradeSettings});
    // The report opens only where there are problems; a script too many does no harm.
    for (std::size_t i = 0; i < selections; ++i) {
        scripts.emplace(report_dialog::kNumber, reportScript(retrograde.repair));
    }
}

void transpose(const Transposition& transposition, Script& main, Scripts& scripts) {
    using namespace transposition_dialog;
    Script settings;
    chooseInterval(transposition, settings, scripts);
    settings.emplace_back(Set{kDirection, transposition.down ? 2 : 1});
    settings.emplace_back(Set{kOctaves, transposition.octaves});
    settings.emplace_back(Press{kOk});
    scripts.emplace(kNumber, std::move(settings));
    main.emplace_back(Press{main_dialog::kTranspositionSettings});
}

void invert(const Inversion& inversion, Script& main, Scripts& scripts) {
    using namespace axis_dialog;
    main.emplace_back(
        Set{main_dialog::kInversion, main_dialog::kFirstChoice + static_cast<int>(inversion.kind)});
    if (!inversion.hasAxis()) return;
    const engine::SpelledPitch& axis = inversion.axis;
    const bool altered = inversion.kind == Inversion::Kind::chromatic;
    const int pitch =
        kCNatural + kEntriesOfLetter * engine::floorMod(axis.step, 7) + (altered ? axis.alter : 0);
    Script script;
    if (inversion.axisIsPlayed) {
        script.emplace_back(Press{kListen});
    } else {
        // What the dialog shows at first need not be what it keeps, so everything in it is entered.
        script.emplace_back(Set{kPitch, pitch});
        script.emplace_back(Set{kOctave, engine::floorDiv(axis.step, 7) + kMiddleOctave});
    }
    script.emplace_back(Set{kSimplify, inversion.simplify ? 1 : 0});
    script.emplace_back(Press{kOk});
    scripts.emplace(kNumber, std::move(script));
    main.emplace_back(Press{main_dialog::kAxisSettings});
}

// The dialog opens with what was chosen in it last, so everything is put back first.
Script nothingChosen() {
    using namespace main_dialog;
    return {Set{kRetrograde, 0}, Set{kTransposition, kNone}, Set{kInversion, kNone}, Set{kAccidentals, kNone},
            Set{kRemoveTies, 0}};
}

// Presses a button of the main dialog for every selection and closes the dialog.
void pressForEach(short button, const std::vector<std::function<void()>>& furtherSelections, Script& main) {
    main.emplace_back(Press{button});
    for (const std::function<void()>& select : furtherSelections) {
        main.emplace_back(Meanwhile{select});
        main.emplace_back(Press{button});
    }
    main.emplace_back(Press{main_dialog::kClose});
}

}  // namespace

Scripts transformationScripts(const Transformation& transformation,
                              const std::vector<std::function<void()>>& furtherSelections) {
    Scripts scripts;
    Script main = nothingChosen();
    if (transformation.retrograde) {
        reverse(*transformation.retrograde, furtherSelections.size() + 1, main, scripts);
    }
    if (transformation.transposition) transpose(*transformation.transposition, main, scripts);
    if (transformation.inversion) invert(*transformation.inversion, main, scripts);
    if (transformation.accidentals) {
        main.emplace_back(Set{main_dialog::kAccidentals,
                              main_dialog::kFirstChoice + static_cast<int>(*transformation.accidentals)});
    }
    if (transformation.removeTies) main.emplace_back(Set{main_dialog::kRemoveTies, 1});
    pressForEach(main_dialog::kApply, furtherSelections, main);
    scripts.emplace(main_dialog::kNumber, std::move(main));
    return scripts;
}

Scripts withPlayback(Scripts scripts, const std::vector<std::function<void()>>& selections) {
    const auto found = scripts.find(main_dialog::kNumber);
    Script main = found == scripts.end() ? Script{Press{main_dialog::kClose}}
                                         : std::move(scripts.extract(found).mapped());
    const Step close = std::move(main.back());
    main.pop_back();
    for (const std::function<void()>& select : selections) {
        main.emplace_back(Meanwhile{select});
        main.emplace_back(Press{main_dialog::kPlay});
    }
    main.push_back(close);
    scripts.emplace(main_dialog::kNumber, std::move(main));
    return scripts;
}

Scripts checkScripts(bool repair, const std::vector<std::function<void()>>& furtherSelections) {
    Scripts scripts;
    Script main;
    pressForEach(main_dialog::kCheck, furtherSelections, main);
    scripts.emplace(main_dialog::kNumber, std::move(main));
    for (std::size_t i = 0; i <= furtherSelections.size(); ++i) {
        scripts.emplace(report_dialog::kNumber, reportScript(repair));
    }
    return scripts;
}

std::vector<CheckReport> checkReports(const std::vector<Reading>& readings) {
    std::vector<CheckReport> reports;
    for (const Reading& reading : readings) {
        if (reading.dialog != report_dialog::kNumber) continue;
        if (reading.item == report_dialog::kMeasures) {
            reports.push_back({.measures = reading.text, .findings = {}});
        } else if (!reports.empty()) {
            reports.back().findings = reading.text;
        }
    }
    return reports;
}

}  // namespace rovescio::dialogs
