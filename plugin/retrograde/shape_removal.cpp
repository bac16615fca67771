// Removal of smart shapes record by record.
#include "retrograde/shape_removal.h"

#include "retrograde/smart_shapes.h"

namespace {

// Shape records are removed in the current format, whichever they were loaded in.
void removeRecord(std::uint32_t number) {
    sx_deleteother(kSmartShapeTag, static_cast<std::uint16_t>(number), 0);
}

void removeShape(std::uint16_t shapeNumber, int measure) {
    EDTOldSmartShape shape{};
    const bool loaded = sx_loadsmartshape(shapeNumber, &shape);
    const int first = loaded ? shape.firstMeasure : measure;
    const int last = loaded ? shape.lastMeasure : measure;
    for (int m = first; m <= last; ++m) {
        EDTSmartShapeMeasMark::FindAndEraseWithCenterShapes(static_cast<short>(m), shapeNumber);
    }
    // A shape that is still there goes by the numbers of the entries at its ends, not by its own.
    if (loaded) {
        removeRecord(static_cast<std::uint32_t>(shape.firstEntry));
        removeRecord(static_cast<std::uint32_t>(shape.lastEntry));
    } else {
        removeRecord(shapeNumber);
    }
}

}  // namespace

bool DeleteSmartShapes(unsigned int entryNumber, int measure) {
    EntryMarkRecord mark{};
    while (sx_loadentrymark(entryNumber, 0, &mark)) {
        removeShape(mark.shapeNumber, measure);
        // A mark that stays would come back for ever.
        if (!sx_deleteentrymark(entryNumber, 0)) break;
    }
    return false;
}
