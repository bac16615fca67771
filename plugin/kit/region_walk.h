// The walk over a region's slots, measures and layers that all transformations share.
#pragma once

#include <cstdint>

#include "kit/frames.h"
#include "kit/mass_edit.h"

// Whether there is a region at all.
inline short IsSelectionRegion(const EREGION* region) {
    return region != nullptr;
}

namespace kit {

// Positions inside a measure, both ends included.
struct Bounds {
    std::int32_t low;
    std::int32_t high;

    [[nodiscard]] bool contains(std::int32_t position) const { return low <= position && position <= high; }
};

// The part of a measure that belongs to a region: only its first and last measure are partial.
inline Bounds boundsInMeasure(const EREGION& region, short measure) {
    return {measure == region.start.measure ? region.start.position : 0,
            measure == region.end.measure ? region.end.position : 0x7FFFFFFF};
}

// Edits the entries of a frame that lie inside the bounds and saves the frame when it has any entries.
// Returns whether it was saved; a frame that the host does not load is passed over.
template <class EditEntry>
bool editFrame(const EREGION& region, short slot, short measure, short layer, EditEntry&& editEntry) {
    const LoadedFrame frame = loadFrame(region.start.staffList, slot, measure, layer);
    if (!frame || frame->entryCount == 0) return false;
    const Bounds bounds = boundsInMeasure(region, measure);
    for (short i = 0; i < frame->entryCount; ++i) {
        EXENTRY& entry = frame->entries[i];
        if (bounds.contains(entry.elapsed)) editEntry(entry);
    }
    SX_SaveTGF(frame.get());
    return true;
}

// How a walk ended, and whether it saved a frame.
struct WalkResult {
    bool cancelled = false;
    bool saved = false;

    // As transformations report it.
    [[nodiscard]] short changed() const { return saved || cancelled; }
};

// One slot of one measure, where a walk by measures has come.
class StaffMeasure {
  public:
    StaffMeasure(const EREGION& region, short measure, short slot, short layers)
        : region_(region), measure_(measure), slot_(slot), layers_(layers) {}

    // The key signature word of the staff here.
    [[nodiscard]] short keySignature() const {
        return SX_GetKeySig(measure_, SX_SlotToInst(slot_, region_.start.staffList), 0, 0);
    }

    // Edits the entries inside the region, shown layer by shown layer.
    template <class EditEntry>
    void editEntries(EditEntry&& editEntry) {
        for (short layer = 0; layer < layers_; ++layer) {
            if (SX_GetShowLayer(layer)) saved_ |= editFrame(region_, slot_, measure_, layer, editEntry);
        }
    }
    [[nodiscard]] bool saved() const { return saved_; }

  private:
    const EREGION& region_;
    short measure_;
    short slot_;
    short layers_;
    bool saved_ = false;
};

// Walks measures, in each its slots, and visits each StaffMeasure. For a cancel the host is polled before
// every visit.
template <class Visit>
WalkResult walkByMeasure(const EREGION& region, CProgress& progress, Visit&& visit) {
    WalkResult result;
    const short layers = SX_GetMaxLayers();
    for (int measure = region.start.measure; measure <= region.end.measure; ++measure) {
        for (int slot = region.start.slot; slot <= region.end.slot; ++slot) {
            if (isCancelled(progress)) {
                result.cancelled = true;
                return result;
            }
            StaffMeasure here(region, static_cast<short>(measure), static_cast<short>(slot), layers);
            visit(here);
            result.saved |= here.saved();
        }
    }
    return result;
}

// Walks slots, in each its shown layers, in each the measures, and edits the entries inside the region. For a
// cancel the host is polled before every frame.
template <class EditEntry>
WalkResult walkBySlot(const EREGION& region, CProgress& progress, EditEntry&& editEntry) {
    WalkResult result;
    if (region.start.slot > region.end.slot) return result;
    const short layers = SX_GetMaxLayers();
    for (int slot = region.start.slot; slot <= region.end.slot; ++slot) {
        for (short layer = 0; layer < layers; ++layer) {
            if (!SX_GetShowLayer(layer)) continue;
            for (int measure = region.start.measure; measure <= region.end.measure; ++measure) {
                if (isCancelled(progress)) {
                    result.cancelled = true;
                    return result;
                }
                result.saved |= editFrame(region, static_cast<short>(slot), static_cast<short>(measure),
                                          layer, editEntry);
            }
        }
    }
    return result;
}

}  // namespace kit
