// Inversion of chords upward and downward.
#include <cstdlib>

#include "kit/region_walk.h"
#include "transform/inversion.h"
#include "transform/pitch.h"

namespace {

enum class Direction { up, down };

// Moves the outer note of a chord past the note at its other end, by the fewest octaves. The notes are taken
// to be in order; the moved one keeps its slot.
void invertChord(EXENTRY& entry, Direction direction) {
    ENOTE& lowest = entry.notes[0];
    ENOTE& highest = entry.notes[entry.noteCount - 1];
    const int octaves = std::abs(highest.displacement - lowest.displacement) / 7 + 1;
    ENOTE& moved = direction == Direction::up ? lowest : highest;
    moved.displacement =
        static_cast<std::int16_t>(moved.displacement + (direction == Direction::up ? 7 : -7) * octaves);
}

struct SingleNotes {
    CHINVTYPE kind;
    short steps;
    short alteration;

    void move(EXENTRY& entry, std::uint16_t keyMode) const {
        if (kind == kSingleNotesInSteps) {
            ENOTE& note = entry.notes[0];
            note.displacement = static_cast<std::int16_t>(note.displacement + steps);
            note.alteration = static_cast<std::int16_t>(note.alteration + alteration);
        } else if (kind == kSingleNotesInKey) {
            TransposeSingleNoteEntry(&entry, static_cast<short>(keyMode), steps, alteration);
        }
    }
};

short invertChords(const EREGION* region, Direction direction, const SingleNotes& singleNotes,
                   CProgress* progress) {
    if (!IsSelectionRegion(region)) return 0;
    const auto walk = kit::walkByMeasure(*region, *progress, [&](kit::StaffMeasure& here) {
        const std::uint16_t mode = pitch::modeOfKey(here.keySignature());
        here.editEntries([&](EXENTRY& entry) {
            if (!(entry.entryFlags & ENTRY_NOTE) || entry.noteCount < 1) return;
            if (entry.noteCount == 1) {
                singleNotes.move(entry, mode);
            } else {
                invertChord(entry, direction);
            }
        });
    });
    return walk.changed();
}

}  // namespace

short InvChordUp(EREGION* region, CHINVTYPE kind, short steps, short alteration, CProgress* progress) {
    return invertChords(region, Direction::up, {kind, steps, alteration}, progress);
}

short InvChordDown(EREGION* region, CHINVTYPE kind, short steps, short alteration, CProgress* progress) {
    return invertChords(region, Direction::down, {kind, steps, alteration}, progress);
}
