// The transposition dialog and the small dialog for other intervals.
#include "transform/transpose_dialog.h"

#include <array>
#include <cstddef>

#include "kit/dialogs.h"

namespace {

using kit::kCancel;
using kit::kOk;
using kit::number;
using kit::popup;
using kit::showItems;

constexpr short kTransposeDialog = 20150;
constexpr short kOtherDialog = 20180;

// Items of the transposition dialog.
constexpr short kKindPopup = 3;
constexpr short kSemitonesPopup = 4;
constexpr short kDiatonicPopup = 5;
constexpr short kChromaticPopup = 6;
constexpr short kDirectionPopup = 7;
constexpr short kSpellingPopup = 8;
constexpr short kOctavesField = 9;

// Items of the dialog for other intervals.
constexpr short kStepsField = 4;
constexpr short kAlterationLabel = 5;
constexpr short kAlterationField = 6;

constexpr short kUp = 1;
constexpr short kDown = 2;
constexpr short kOtherChromatic = 27;
constexpr short kOtherDiatonic = 9;

// Diatonic steps, and semitones beyond the major or perfect interval of so many steps.
struct Size {
    std::int16_t steps;
    std::int16_t alteration;
};

// Entries of the chromatic pop-up from 1: perfect unison to perfect octave.
constexpr std::array<Size, 26> kChromaticSizes = {{
    {0, 0},  {0, 1},                   // unisons
    {1, -2}, {1, -1}, {1, 0}, {1, 1},  // seconds
    {2, -2}, {2, -1}, {2, 0}, {2, 1},  // thirds
    {3, -1}, {3, 0},  {3, 1},          // fourths
    {4, -1}, {4, 0},  {4, 1},          // fifths
    {5, -2}, {5, -1}, {5, 0}, {5, 1},  // sixths
    {6, -2}, {6, -1}, {6, 0}, {6, 1},  // sevenths
    {7, -1}, {7, 0},                   // octaves
}};

// Entries of the semitone pop-up from 1, spelled with sharps and with flats.
constexpr std::array<std::array<Size, 12>, 2> kSemitoneSizes = {{
    {{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}, {3, 0}, {3, 1}, {4, 0}, {4, 1}, {5, 0}, {5, 1}, {6, 0}}},
    {{{0, 0}, {1, -1}, {1, 0}, {2, -1}, {2, 0}, {3, 0}, {4, -1}, {4, 0}, {5, -1}, {5, 0}, {6, -1}, {6, 0}}},
}};

// The entry of a table counted from 1; a unison for any other.
template <std::size_t N>
Size sizeAt(const std::array<Size, N>& table, short item) {
    if (item < 1 || item > static_cast<short>(N)) return {0, 0};
    return table[static_cast<std::size_t>(item - 1)];
}

std::int16_t negated(std::int16_t value) {
    return static_cast<std::int16_t>(-value);
}

// The octave count with which the open dialog is to leave the settings. The dialog is modal, so there is one.
std::int16_t octavesToKeep = 0;

void initialise(SXWindow dialog, STStruct& settings) {
    SX_SetDlgItemVal(dialog, kKindPopup, kPopupValue, settings.kind);
    SX_SetDlgItemVal(dialog, kDiatonicPopup, kPopupValue, settings.diatonicItem);
    SX_SetDlgItemVal(dialog, kChromaticPopup, kPopupValue, settings.chromaticItem);
    SX_SetDlgItemVal(dialog, kSemitonesPopup, kPopupValue, settings.semitoneItem);
    SX_SetDlgItemVal(dialog, kDirectionPopup, kPopupValue, settings.direction);
    SX_SetDlgItemVal(dialog, kSpellingPopup, kPopupValue, settings.spellingItem);
    // OK stored the count negated for a downward transposition; the field shows it without sign.
    if (settings.direction == kDown) settings.octaves = negated(settings.octaves);
    SX_SetDlgItemVal(dialog, kOctavesField, kNumberValue, settings.octaves);
    STAdjustTransposePopups(dialog, &settings);
}

void takeResult(STStruct& settings, Size size, std::int16_t octaves) {
    settings.steps = size.steps;
    settings.alteration = size.alteration;
    settings.octaves = octaves;
}

void accept(SXWindow dialog, STStruct& settings) {
    switch (settings.kind) {
        case kNoTransposition:
            takeResult(settings, {0, 0}, 0);
            break;
        case kDiatonicTransposition:
            takeResult(settings, {settings.diatonicSteps, 0}, number(dialog, kOctavesField));
            break;
        case kChromaticTransposition:
            takeResult(settings, {settings.chromaticSteps, settings.chromaticAlteration},
                       number(dialog, kOctavesField));
            break;
        case kSemitoneTransposition:
            takeResult(settings, {settings.semitoneSteps, settings.semitoneAlteration},
                       number(dialog, kOctavesField));
            break;
        default:
            break;
    }
    if (popup(dialog, kDirectionPopup) == kDown) {
        takeResult(settings, {negated(settings.steps), negated(settings.alteration)},
                   negated(settings.octaves));
    }
    octavesToKeep = settings.octaves;
    SX_EndDialog(dialog);
}

void takeDiatonic(SXWindow dialog, STStruct& settings) {
    settings.diatonicItem = popup(dialog, kDiatonicPopup);
    if (settings.diatonicItem == kOtherDiatonic) {
        OtherTransposeDialog(dialog, &settings.diatonicSteps, nullptr);
        return;
    }
    const int steps = settings.diatonicItem - 1;
    settings.diatonicSteps = static_cast<std::int16_t>(steps >= 0 && steps <= 7 ? steps : 0);
}

void takeChromatic(SXWindow dialog, STStruct& settings) {
    settings.chromaticItem = popup(dialog, kChromaticPopup);
    if (settings.chromaticItem == kOtherChromatic) {
        OtherTransposeDialog(dialog, &settings.chromaticSteps, &settings.chromaticAlteration);
        return;
    }
    const Size size = sizeAt(kChromaticSizes, settings.chromaticItem);
    settings.chromaticSteps = size.steps;
    settings.chromaticAlteration = size.alteration;
}

void popupChanged(SXWindow dialog, short item, STStruct& settings) {
    switch (item) {
        case kKindPopup:
            settings.kind = popup(dialog, kKindPopup);
            STAdjustTransposePopups(dialog, &settings);
            break;
        case kSemitonesPopup:
        case kSpellingPopup:
            DoSTSemitonesPopup(dialog, &settings);
            break;
        case kDiatonicPopup:
            takeDiatonic(dialog, settings);
            break;
        case kChromaticPopup:
            takeChromatic(dialog, settings);
            break;
        case kDirectionPopup:
            if (const short direction = popup(dialog, kDirectionPopup);
                direction == kUp || direction == kDown) {
                settings.direction = direction;
            }
            break;
        default:
            break;
    }
}

// The record of the dialog for other intervals.
struct OtherInterval {
    std::int16_t otherSteps;
    std::int16_t hasAlteration;
    std::int16_t otherAlteration;
};

int OtherTransposeDialogProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t /*parameter*/,
                             void* data) noexcept try {
    auto& interval = *static_cast<OtherInterval*>(data);
    if (message == kDialogInit) {
        SX_SetDlgItemVal(dialog, kStepsField, kNumberValue, interval.otherSteps);
        if (interval.hasAlteration) {
            SX_SetDlgItemVal(dialog, kAlterationField, kNumberValue, interval.otherAlteration);
        } else {
            showItems(dialog, {kAlterationLabel, kAlterationField}, false);
        }
        return 1;
    }
    if (message != kDialogCommand) return 0;
    if (item == kOk) {
        if (interval.hasAlteration) interval.otherAlteration = number(dialog, kAlterationField);
        interval.otherSteps = number(dialog, kStepsField);
    } else if (item != kCancel) {
        return 0;
    }
    SX_EndDialog(dialog);
    return 1;
} catch (...) {
    return 0;
}

}  // namespace

void DoSTSemitonesPopup(SXWindow dialog, STStruct* settings) {
    settings->semitoneItem = popup(dialog, kSemitonesPopup);
    settings->spellingItem = popup(dialog, kSpellingPopup);
    Size size{0, 0};
    if (settings->spellingItem == 1 || settings->spellingItem == 2) {
        size = sizeAt(kSemitoneSizes[static_cast<std::size_t>(settings->spellingItem - 1)],
                      settings->semitoneItem);
    }
    settings->semitoneSteps = size.steps;
    settings->semitoneAlteration = size.alteration;
}

void STAdjustTransposePopups(SXWindow dialog, const STStruct* settings) {
    switch (settings->kind) {
        case kNoTransposition:
            showItems(dialog,
                      {kSemitonesPopup, kSpellingPopup, kDiatonicPopup, kChromaticPopup, kDirectionPopup},
                      false);
            break;
        case kDiatonicTransposition:
            showItems(dialog, {kSemitonesPopup, kSpellingPopup, kChromaticPopup}, false);
            showItems(dialog, {kDiatonicPopup, kDirectionPopup}, true);
            break;
        case kChromaticTransposition:
            showItems(dialog, {kSemitonesPopup, kSpellingPopup, kDiatonicPopup}, false);
            showItems(dialog, {kChromaticPopup, kDirectionPopup}, true);
            break;
        case kSemitoneTransposition:
            showItems(dialog, {kDiatonicPopup, kChromaticPopup}, false);
            showItems(dialog, {kSpellingPopup, kSemitonesPopup, kDirectionPopup}, true);
            break;
        default:
            break;
    }
}

int TransposeDialogProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t parameter,
                        void* data) noexcept try {
    auto& settings = *static_cast<STStruct*>(data);
    if (message == kDialogInit) {
        initialise(dialog, settings);
        return 1;
    }
    if (message != kDialogCommand) return 0;
    switch (item) {
        case kOk:
            accept(dialog, settings);
            return 1;
        case kCancel:
            SX_EndDialog(dialog);
            return 1;
        case kKindPopup:
        case kSemitonesPopup:
        case kDiatonicPopup:
        case kChromaticPopup:
        case kDirectionPopup:
        case kSpellingPopup:
            if (parameter >> 16 == kPopupChanged) popupChanged(dialog, item, settings);
            return 1;
        default:
            return 0;
    }
} catch (...) {
    return 0;
}

short TransposeDialog(SXWindow parent, STStruct* settings) {
    octavesToKeep = settings->octaves;
    kit::runSubDialog(kTransposeDialog, TransposeDialogProc, parent, settings);
    // The open dialog has them without sign, and need not be closed by one of its buttons.
    settings->octaves = octavesToKeep;
    return 0;
}

void OtherTransposeDialog(SXWindow parent, std::int16_t* steps, std::int16_t* alteration) {
    OtherInterval interval{*steps, static_cast<std::int16_t>(alteration ? 1 : 0),
                           static_cast<std::int16_t>(alteration ? *alteration : 0)};
    kit::runSubDialog(kOtherDialog, OtherTransposeDialogProc, parent, &interval);
    *steps = interval.otherSteps;
    if (alteration) *alteration = interval.otherAlteration;
}
