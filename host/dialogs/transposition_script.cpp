// Steps through the main dialog and the transposition dialogs.
#include "dialogs/transposition_script.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace rovescio::dialogs {

namespace {

namespace main_dialog {
constexpr short kNumber = 20130;
constexpr short kApply = 1;
constexpr short kClose = 2;
constexpr short kTranspositionSettings = 7;
}  // namespace main_dialog

namespace transposition_dialog {
constexpr short kNumber = 20150;
constexpr short kOk = 1;
constexpr short kKind = 3;
constexpr short kSemitones = 4;
constexpr short kDiatonicInterval = 5;
constexpr short kChromaticInterval = 6;
constexpr short kDirection = 7;
constexpr short kSpelling = 8;
constexpr short kOctaves = 9;

constexpr int kKindDiatonic = 2;
constexpr int kKindChromatic = 3;
constexpr int kKindSemitones = 4;
constexpr int kDiatonicOther = 9;
constexpr int kChromaticOther = 27;
}  // namespace transposition_dialog

namespace other_interval_dialog {
constexpr short kNumber = 20180;
constexpr short kOk = 1;
constexpr short kSteps = 4;
constexpr short kAlteration = 6;
}  // namespace other_interval_dialog

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

}  // namespace

Scripts transpositionScripts(const Transposition& transposition,
                             const std::vector<std::function<void()>>& furtherSelections) {
    Scripts scripts;
    Script settings;
    chooseInterval(transposition, settings, scripts);
    settings.emplace_back(Set{transposition_dialog::kDirection, transposition.down ? 2 : 1});
    settings.emplace_back(Set{transposition_dialog::kOctaves, transposition.octaves});
    settings.emplace_back(Press{transposition_dialog::kOk});
    scripts.emplace(transposition_dialog::kNumber, std::move(settings));

    Script main = {Press{main_dialog::kTranspositionSettings}, Press{main_dialog::kApply}};
    for (const std::function<void()>& select : furtherSelections) {
        main.emplace_back(Meanwhile{select});
        main.emplace_back(Press{main_dialog::kApply});
    }
    main.emplace_back(Press{main_dialog::kClose});
    scripts.emplace(main_dialog::kNumber, std::move(main));
    return scripts;
}

}  // namespace rovescio::dialogs
