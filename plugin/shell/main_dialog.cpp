// The main dialog's procedure.
#include "shell/main_dialog.h"

#include "kit/dialogs.h"
#include "retrograde/dialogs.h"
#include "shell/apply.h"
#include "shell/settings.h"
#include "transform/mirror_dialog.h"

namespace {

constexpr short kMainDialog = 20130;
constexpr short kMainDialogFlags = 0x3000;

constexpr short kApply = 1;
constexpr short kClose = 2;
constexpr short kPlay = 3;
constexpr short kInversionPopup = 4;
constexpr short kMirrorSettings = 5;
constexpr short kTranspositionPopup = 6;
constexpr short kTranspositionSettings = 7;
constexpr short kOptionPopup = 8;
constexpr short kRetrogradeCheck = 9;
constexpr short kRetrogradeSettings = 10;
constexpr short kRemoveTiesCheck = 11;
constexpr short kCheckSelection = 12;

void showSettings(SXWindow dialog) {
    SX_SetDlgItemVal(dialog, kRetrogradeCheck, kCheckValue, SUItems.retrograde);
    SX_SetDlgItemVal(dialog, kInversionPopup, kPopupValue, SUItems.inversionKind);
    SX_SetDlgItemVal(dialog, kOptionPopup, kPopupValue, SUItems.optionKind);
    SX_SetDlgItemVal(dialog, kTranspositionPopup, kPopupValue, SUItems.transpose.kind);
    SX_SetDlgItemVal(dialog, kRemoveTiesCheck, kCheckValue, SUItems.removeTies);
}

void editTransposition(SXWindow dialog) {
    SUSetRecordValues(dialog);
    TransposeDialog(dialog, &SUItems.transpose);
    SX_SetDlgItemVal(dialog, kTranspositionPopup, kPopupValue, SUItems.transpose.kind);
}

void editMirrorSettings(SXWindow dialog) {
    MirrorAxis axis;
    axis.axis = SUItems.mirrorAxisStep;
    axis.axisAlteration = SUItems.mirrorAxisAlteration;
    axis.simplifySpelling = SUItems.mirrorCheck;
    editMirrorAxis(dialog, axis);
    SUItems.mirrorAxisStep = axis.axis;
    SUItems.mirrorAxisAlteration = axis.axisAlteration;
    SUItems.mirrorCheck = axis.simplifySpelling;
}

int useControl(SXWindow dialog, short item) {
    switch (item) {
        case kApply:
            SUSetRecordValues(dialog);
            applyTransformations(dialog);
            return 1;
        case kClose:
            SX_EndDialog(dialog);
            return 1;
        case kPlay:
            playSelection(dialog);
            return 1;
        case kMirrorSettings:
            editMirrorSettings(dialog);
            return 1;
        case kTranspositionSettings:
            editTransposition(dialog);
            return 1;
        case kRetrogradeSettings:
            SUItems.retrogradeOptions = RetrogradeOptionsDialog(dialog, SUItems.retrogradeOptions);
            return 1;
        case kCheckSelection:
            checkSelection(dialog);
            return 1;
        default:
            return 0;
    }
}

}  // namespace

void SUSetRecordValues(SXWindow dialog) {
    SUItems.retrograde = kit::check(dialog, kRetrogradeCheck);
    SUItems.inversionKind = kit::popup(dialog, kInversionPopup);
    SUItems.optionKind = kit::popup(dialog, kOptionPopup);
    SUItems.transpose.kind = kit::popup(dialog, kTranspositionPopup);
    SUItems.removeTies = kit::check(dialog, kRemoveTiesCheck);
}

int SUDialogProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t /*parameter*/,
                 void* /*userData*/) noexcept try {
    if (message == kDialogInit) {
        showSettings(dialog);
        return 1;
    }
    return message == kDialogCommand ? useControl(dialog, item) : 0;
} catch (...) {
    return 0;
}

short SUDialog(SXWindow parent, EREGION* /*first*/, EREGION* /*second*/) {
    SX_Dialog(kMainDialog, NewFF_DialogHandlerProc(SUDialogProc), parent, kMainDialogFlags, nullptr);
    return 0;
}
