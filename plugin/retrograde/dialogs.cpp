// Procedures of the retrograde options and of the report of the check.
#include "retrograde/dialogs.h"

#include <array>

#include "kit/dialogs.h"
#include "kit/mass_edit.h"
#include "kit/selection.h"
#include "kit/string_resources.h"
#include "retrograde/retrograde.h"
#include "retrograde/selection_check.h"
#include "util/utf16_functions.h"

namespace {

using kit::kCancel;
using kit::kOk;

constexpr short kOptionsDialog = 20190;
constexpr short kReportDialog = 20230;

constexpr short kKeySignaturesCheck = 3;
constexpr short kMeasureSpacingCheck = 4;

constexpr short kMeasuresText = 2;
constexpr short kReportText = 3;
constexpr short kRepair = 7;

// Units of one fragment of the report, and of the line with the measures.
constexpr std::uint16_t kFragmentUnits = 64;

// The options as the dialog edits them.
struct OptionChecks {
    std::int16_t keySignatures;
    std::int16_t measureSpacing;
};

int optionsProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t /*parameter*/,
                void* data) noexcept try {
    auto& checks = *static_cast<OptionChecks*>(data);
    if (message == kDialogInit) {
        SX_SetDlgItemVal(dialog, kKeySignaturesCheck, kCheckValue, checks.keySignatures);
        SX_SetDlgItemVal(dialog, kMeasureSpacingCheck, kCheckValue, checks.measureSpacing);
        return 1;
    }
    if (message != kDialogCommand || (item != kOk && item != kCancel)) return 0;
    if (item == kOk) {
        checks.keySignatures = kit::check(dialog, kKeySignaturesCheck);
        checks.measureSpacing = kit::check(dialog, kMeasureSpacingCheck);
    }
    SX_EndDialog(dialog);
    return 1;
} catch (...) {
    return 0;
}

void showMeasures(SXWindow dialog) {
    std::array<char16_t, kFragmentUnits> line{};
    if (const kit::Selection selection; selection.exists) {
        std::array<char16_t, kFragmentUnits> format{};
        PlugIn_GetStringResource(kMeasureRangeFormat, format.data(), kFragmentUnits);
        sx_sprintf(line.data(), line.size(), format.data(), int{selection.region.start.measure},
                   int{selection.region.end.measure});
    }
    SX_SetDlgString_UTF16(dialog, kMeasuresText, line.data());
}

void showReport(SXWindow dialog, unsigned int problems) {
    static constexpr struct {
        unsigned int problem;
        std::uint32_t text;
    } kFragments[] = {{kNoRegion, kNoSelectionText},
                      {kSecondVoices, kSecondVoiceText},
                      {kSmartShapes, kSmartShapesText},
                      {kUnsuitableFrames, kUnsuitableFrameText}};
    std::array<char16_t, kReportUnits> report{};
    if (problems == 0) PlugIn_GetStringResource(kNoProblemsText, report.data(), kReportUnits);
    for (const auto& fragment : kFragments) {
        if (problems & fragment.problem) errStrCat(report.data(), fragment.text);
    }
    // Repairing the rest would be in vain when a frame stays that cannot be reversed.
    const bool repairable =
        (problems & (kSecondVoices | kSmartShapes)) != 0 && (problems & kUnsuitableFrames) == 0;
    SX_EnableDlgItem(dialog, kRepair, repairable);
    SX_SetDlgString_UTF16(dialog, kReportText, report.data());
    showMeasures(dialog);
}

void repair(SXWindow dialog) {
    if (SX_AlertMessage_UTF16(dialog, kAlertYesNo, kRepairQuestionText, nullptr) != kAnswerYes) return;
    kit::MassEdit massEdit;
    VerifyRetrogradeSelection(&massEdit.progress, 1);
    SX_RedrawMusic(nullptr);
    SX_EndDialog(dialog);
    massEdit.end();
}

// The user data is the problem code itself.
int reportProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t /*parameter*/,
               void* data) noexcept try {
    if (message == kDialogInit) {
        showReport(dialog, static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(data)));
        return 1;
    }
    if (message != kDialogCommand) return 0;
    switch (item) {
        case kOk:  // like Cancel it only closes the report
        case kCancel:
            SX_EndDialog(dialog);
            return 1;
        case kRepair:
            repair(dialog);
            return 1;
        default:
            return 0;
    }
} catch (...) {
    return 0;
}

// Appends what fits into the report.
void append(char16_t* buffer, const char16_t* text) {
    const std::size_t used = sx_strlen(buffer);
    sx_strncpy(buffer + used, text, kReportUnits - 1 - used);
    buffer[kReportUnits - 1] = 0;
}

}  // namespace

unsigned int RetrogradeOptionsDialog(SXWindow window, unsigned int options) {
    OptionChecks checks{(options & kMirrorKeySignatures) != 0, (options & kMirrorMeasureSpacing) != 0};
    kit::runSubDialog(kOptionsDialog, optionsProc, window, &checks);
    return (checks.keySignatures ? kMirrorKeySignatures : 0) |
           (checks.measureSpacing ? kMirrorMeasureSpacing : 0);
}

short RetrogradePreScanDialog(SXWindow window, unsigned int problems) {
    kit::runSubDialog(kReportDialog, reportProc, window, reinterpret_cast<void*>(std::uintptr_t{problems}));
    return 0;
}

void errStrCat(char16_t* buffer, std::uint32_t stringId) {
    if (buffer[0] != 0) append(buffer, u", ");
    std::array<char16_t, kFragmentUnits> text{};
    PlugIn_GetStringResource(stringId, text.data(), kFragmentUnits);
    append(buffer, text.data());
}
