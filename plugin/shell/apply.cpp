// The apply run, the check for a retrograde, and playback.
#include "shell/apply.h"

#include "kit/data_records.h"
#include "kit/mass_edit.h"
#include "kit/selection.h"
#include "kit/string_resources.h"
#include "retrograde/dialogs.h"
#include "retrograde/retrograde.h"
#include "retrograde/selection_check.h"
#include "shell/note_options.h"
#include "shell/settings.h"
#include "transform/inversion.h"
#include "transform/transpose_region.h"

SUItemsRecord SUItems;

namespace {

// The number of the staff list that playback reads.
constexpr std::uint16_t kPlaybackStaffList = 0xFFF9;

bool isNothingChosen() {
    return SUItems.retrograde == 0 && SUItems.inversionKind == kNoInversion &&
           SUItems.optionKind == kNoOption && SUItems.transpose.kind == kNoTransposition &&
           SUItems.removeTies == 0;
}

// One apply run: the transformations done so far and whether it goes on.
class ApplyRun {
  public:
    ApplyRun(SXWindow dialog, const EREGION& selection) : dialog_(dialog), selection_(selection) {}

    // The order is the user's contract: later steps work on what the earlier ones made.
    void run() {
        if (reverse() && transpose() && invert()) applyOptions();
    }

    // Closes the mass edit; true when the music is to be redrawn.
    bool finish() {
        massEdit_.end();
        return done_ != 0;
    }

  private:
    // Each step returns false when the later steps are to be skipped: the user cancelled, or the music cannot
    // be reversed.
    bool reverse() {
        if (SUItems.retrograde == 0) return true;
        if (!isReversible()) return false;
        if (!Retrograde(&selection_, SUItems.retrogradeOptions, &progress_)) {
            SX_AlertMessage_UTF16(dialog_, kAlertWarning, kRetrogradeFailedText, nullptr);
            return false;
        }
        return count(1);
    }

    // The user may have what stands in the way repaired.
    bool isReversible() {
        const std::uint16_t problems = VerifyRetrogradeSelection(&progress_, 0);
        if (progress_.cancelled) return false;
        if (problems == 0) return true;
        RetrogradePreScanDialog(dialog_, problems);
        return VerifyRetrogradeSelection(&progress_, 0) == 0 && !progress_.cancelled;
    }

    bool transpose() {
        const STStruct& settings = SUItems.transpose;
        const auto steps = static_cast<short>(settings.octaves * 7 + settings.steps);
        switch (settings.kind) {
            case kDiatonicTransposition:
                return count(TransposeDiatonic(&selection_, steps, settings.alteration, &progress_));
            case kChromaticTransposition:
            case kSemitoneTransposition:
                return count(TransposeChromatic(&selection_, steps, settings.alteration, &progress_));
            default:
                return true;
        }
    }

    bool invert() {
        const short axis = SUItems.mirrorAxisStep;
        switch (SUItems.inversionKind) {
            case kDiatonicInversion:
                return count(InvDiatonic(&selection_, axis, &progress_));
            case kChromaticInversion:
                return count(InvChromatic(&selection_, axis, SUItems.mirrorAxisAlteration,
                                          SUItems.mirrorCheck, &progress_));
            case kChordsUpward:
                return count(InvChordUp(&selection_, kSingleNotesInSteps, 0, 0, &progress_));
            case kChordsDownward:
                return count(InvChordDown(&selection_, kSingleNotesInSteps, 0, 0, &progress_));
            default:
                return true;
        }
    }

    void applyOptions() {
        if (SUItems.optionKind == kNoOption && SUItems.removeTies == 0) return;
        count(DoSUOptions(&selection_, SUItems.optionKind, SUItems.removeTies, &progress_));
    }

    // Counts a transformation that changed something; false, with nothing left to redraw, after a cancel.
    bool count(short result) {
        if (!result) return true;
        done_ = progress_.cancelled ? 0 : done_ + 1;
        return !progress_.cancelled;
    }

    SXWindow dialog_;
    EREGION selection_;
    kit::MassEdit massEdit_;
    CProgress& progress_ = massEdit_.progress;
    int done_ = 0;
};

}  // namespace

short NoSelectionDialog(SXWindow window) {
    return SX_AlertMessage_UTF16(window, kAlertWarning, kNoSelectionText, nullptr);
}

short NoActionDialog(SXWindow window) {
    return SX_AlertMessage_UTF16(window, kAlertWarning, kNothingChosenText, nullptr);
}

void applyTransformations(SXWindow dialog) {
    if (isNothingChosen()) {
        NoActionDialog(dialog);
        return;
    }
    const kit::Selection selection;
    if (!selection.exists) {
        NoSelectionDialog(dialog);
        return;
    }
    ApplyRun run(dialog, selection.region);
    run.run();
    if (!run.finish()) return;
    const kit::Selection now;
    SX_RedrawMusic(now.exists ? &now.region : &now.fallback);
}

void checkSelection(SXWindow dialog) {
    kit::MassEdit massEdit;
    const std::uint16_t problems = VerifyRetrogradeSelection(&massEdit.progress, 0);
    massEdit.end();
    RetrogradePreScanDialog(dialog, problems);
}

void playSelection(SXWindow dialog) {
    const kit::Selection selection;
    if (!selection.exists) {
        NoSelectionDialog(dialog);
        return;
    }
    const EMUSICPOINT& start = selection.region.start;
    const int slots = selection.region.end.slot - start.slot + 1;
    for (int i = 0; i < slots; ++i) {
        EDATAKEY key{kPlaybackStaffList, static_cast<std::uint16_t>(i)};
        EDTPlaybackStaff record{};
        record.staff = SX_SlotToInst(static_cast<short>(start.slot + i), start.staffList);
        std::uint32_t size = sizeof record;
        SX_CreateEData(kPlaybackStaffTag, &key, &record, &size);
    }
    SX_Playback(start.measure, selection.region.end.measure, 0, kPlaybackStaffList);
    // The host closes up the incident numbers after each deletion, so the first one empties the list.
    for (int i = 0; i < slots; ++i) sx_deleteother(kPlaybackStaffTag, kPlaybackStaffList, 0);
}
