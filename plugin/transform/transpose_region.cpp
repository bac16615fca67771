// The two transpositions of a region.
#include "transform/transpose_region.h"

#include "kit/region_walk.h"
#include "transform/pitch.h"

short TransposeDiatonic(EREGION* region, short steps, short alteration, CProgress* progress) {
    bool changed = false;
    const auto moveEntry = [&](EXENTRY& entry) {
        for (short i = 0; i < entry.noteCount; ++i) {
            ENOTE& note = entry.notes[i];
            note.displacement = static_cast<std::int16_t>(note.displacement + steps);
            note.alteration = static_cast<std::int16_t>(note.alteration + alteration);
        }
        entry.updateFlags |= ENTRY_CHANGED;
        changed = true;
    };
    const auto walk =
        kit::walkByMeasure(*region, *progress, [&](kit::StaffMeasure& here) { here.editEntries(moveEntry); });
    return changed || walk.cancelled;
}

short TransposeChromatic(EREGION* region, short steps, short alteration, CProgress* progress) {
    const pitch::Interval interval(steps, alteration);
    kit::walkByMeasure(*region, *progress, [&](kit::StaffMeasure& here) {
        const std::uint16_t mode = pitch::modeOfKey(here.keySignature());
        here.editEntries([&](EXENTRY& entry) {
            for (short i = 0; i < entry.noteCount; ++i) {
                interval.move(entry.notes[i], mode);
                entry.notes[i].noteFlags |= NOTE_FLAG24;
            }
            entry.updateFlags |= ENTRY_CHANGED;
        });
    });
    return 1;
}
