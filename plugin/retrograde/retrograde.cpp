// The retrograde of a region, layer by layer, and the exchange of measure attributes.
#include "retrograde/retrograde.h"

#include <utility>

#include "kit/data_records.h"
#include "retrograde/reverser.h"

namespace {

// False when the music could not be loaded. A cancel leaves the rest of the layer as it is.
bool reverseLayer(const EREGION& region, short slot, short layer, CProgress& progress) {
    Reverser reverser(&region, slot, layer);
    while (reverser.NextEntry()) {
        if (kit::isCancelled(progress)) break;
        reverser.ReverseEntries();
    }
    return !reverser.failed();
}

// The other flags stay with their measure.
std::uint16_t withSpacingModeOf(std::uint16_t flags, std::uint16_t other) {
    return static_cast<std::uint16_t>((flags & ~MEASURE_SPACING_MODE) | (other & MEASURE_SPACING_MODE));
}

void exchangeAttributes(EDTMeasureSpec2014& first, EDTMeasureSpec2014& second, unsigned int options) {
    if (options & kMirrorKeySignatures) std::swap(first.keySignature, second.keySignature);
    if (options & kMirrorMeasureSpacing) {
        std::swap(first.width, second.width);
        std::swap(first.spaceBefore, second.spaceBefore);
        std::swap(first.spaceAfter, second.spaceAfter);
        const std::uint16_t flags = first.flags;
        first.flags = withSpacingModeOf(first.flags, second.flags);
        second.flags = withSpacingModeOf(second.flags, flags);
    }
}

// From the outside inward; a measure in the middle is its own partner. False after a cancel.
bool reverseAttributes(const EREGION& region, unsigned int options, CProgress& progress) {
    const int distance = region.end.measure - region.start.measure;
    if ((options & (kMirrorKeySignatures | kMirrorMeasureSpacing)) == 0 || distance < -1) return true;
    for (int i = 0; i <= distance / 2; ++i) {
        if (kit::isCancelled(progress)) return false;
        const auto front = static_cast<short>(region.start.measure + i);
        const auto back = static_cast<short>(region.end.measure - i);
        EDTMeasureSpec2014 first{};
        EDTMeasureSpec2014 second{};
        const bool frontLoaded = sx_loadmeasurespec(front, &first);
        if (!sx_loadmeasurespec(back, &second) || !frontLoaded) continue;
        exchangeAttributes(first, second, options);
        sx_savemeasurespec(front, &first);
        sx_savemeasurespec(back, &second);
    }
    return true;
}

}  // namespace

short Retrograde(EREGION* region, unsigned int options, CProgress* progress) {
    const short layers = SX_GetMaxLayers();
    for (int s = region->start.slot; s <= region->end.slot; ++s) {
        const auto slot = static_cast<short>(s);
        for (short layer = 0; layer < layers; ++layer) {
            if (SX_GetShowLayer(layer) && !reverseLayer(*region, slot, layer, *progress)) return 0;
        }
        if (!reverseAttributes(*region, options, *progress)) return 1;
    }
    SX_RebarRegion(region, 4, 1, 0, 1);
    return 1;
}
