// The walk of the check over the selection, and what it repairs on its way.
#include "retrograde/selection_check.h"

#include "kit/region_walk.h"
#include "kit/selection.h"
#include "retrograde/shape_removal.h"

namespace {

// One run of the check over a region.
class SelectionCheck {
  public:
    SelectionCheck(const EREGION& region, CProgress& progress, bool fix)
        : region_(region), progress_(progress), fix_(fix) {}

    std::uint16_t run() {
        const short layers = SX_GetMaxLayers();
        for (int slot = region_.start.slot; slot <= region_.end.slot; ++slot) {
            for (short layer = 0; layer < layers; ++layer) {
                for (int measure = region_.start.measure; measure <= region_.end.measure; ++measure) {
                    if (problems_ == kEveryProblem) return problems_;
                    if (kit::isCancelled(progress_)) return 0;
                    checkFrame(static_cast<short>(slot), static_cast<short>(measure), layer);
                }
            }
        }
        return problems_;
    }

  private:
    void checkFrame(short slot, short measure, short layer) {
        const kit::LoadedFrame frame = kit::loadFrame(region_.start.staffList, slot, measure, layer);
        if (!frame) return;
        if (frame->headerWord != 0) problems_ |= kUnsuitableFrames;
        const kit::Bounds bounds = kit::boundsInMeasure(region_, measure);
        bool entriesDeleted = false;
        for (int i = 0; i < frame->entryCount && problems_ != kEveryProblem; ++i) {
            const EXENTRY& entry = frame->entries[i];
            if (!bounds.contains(entry.elapsed)) continue;
            if (entry.entryFlags & ENTRY_VOICE2) {
                if (!fix_) {
                    problems_ |= kSecondVoices;
                } else if (deleteEntry(*frame, static_cast<short>(i))) {
                    entriesDeleted = true;
                    // Continues with the entry before, whose shapes are thus looked at once more.
                    --i;
                }
            }
            if (i >= 0) checkShapes(frame->entries[i], measure);
        }
        // Shapes are records of their own: removing them does not change the frame.
        if (entriesDeleted) SX_SaveTGF(frame.get());
    }

    // With its second voice gone, the entry before starts none. The frame alone shows whether the host
    // deleted the entry.
    static bool deleteEntry(EXTGF2005a& frame, short index) {
        if (index > 0) frame.entries[index - 1].entryFlags &= ~ENTRY_STARTS_VOICE2;
        const short before = frame.entryCount;
        SX_DeleteEXENTRY(&frame, index, 1);
        return frame.entryCount < before;
    }

    void checkShapes(EXENTRY& entry, short measure) {
        if (!(entry.updateFlags & ENTRY_HAS_SHAPES)) return;
        if (!fix_) {
            problems_ |= kSmartShapes;
            return;
        }
        entry.updateFlags = static_cast<std::uint8_t>(entry.updateFlags & ~ENTRY_HAS_SHAPES);
        DeleteSmartShapes(entry.entryNumber, measure);
    }

    const EREGION& region_;
    CProgress& progress_;
    const bool fix_;
    std::uint16_t problems_ = 0;
};

}  // namespace

std::uint16_t VerifyRetrogradeSelection(CProgress* progress, short fix) {
    const kit::Selection selection;
    if (!selection.exists) return kNoRegion;
    return SelectionCheck(selection.region, *progress, fix != 0).run();
}
