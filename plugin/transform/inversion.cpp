// Diatonic and chromatic inversion around an axis.
#include "transform/inversion.h"

#include <array>

#include "kit/region_walk.h"
#include "transform/key.h"
#include "transform/pitch.h"

namespace {

// Walks the region and mirrors the notes of every staff in a major or minor key; mirrorIn(key) gives what is
// done to one note there.
template <class MirrorIn>
short invert(const EREGION* region, CProgress* progress, MirrorIn&& mirrorIn) {
    if (!IsSelectionRegion(region)) return 0;
    const auto walk = kit::walkByMeasure(*region, *progress, [&](kit::StaffMeasure& here) {
        const short word = here.keySignature();
        if (!pitch::Key::isMajorOrMinor(word)) return;
        here.editEntries([mirror = mirrorIn(pitch::Key(word))](EXENTRY& entry) {
            for (short i = 0; i < entry.noteCount; ++i) {
                mirror(entry.notes[i]);
                entry.notes[i].noteFlags |= NOTE_FLAG24;
            }
            entry.updateFlags |= ENTRY_CHANGED;
        });
    });
    return walk.changed();
}

// The axis note's alteration relative to a key: by the scale of the natural letter that the tonic has, then
// corrected as a whole where the tonic itself is sharp or flat. In minor that is the major scale on the minor
// tonic.
int axisAlterationInKey(const pitch::Key& key, int axis, int axisAlteration) {
    // By tonic letter C to B and letter C to B: what the key signature takes away from the letter.
    static constexpr std::array<std::array<int, 7>, 7> kSignatures = {{
        {0, 0, 0, 0, 0, 0, 0},
        {-1, 0, 0, -1, 0, 0, 0},
        {-1, -1, 0, -1, -1, 0, 0},
        {0, 0, 0, 0, 0, 0, 1},
        {0, 0, 0, -1, 0, 0, 0},
        {-1, 0, 0, -1, -1, 0, 0},
        {-1, -1, 0, -1, -1, -1, 0},
    }};
    const int wholeKey = key.fifths() >= 6 ? 1 : key.fifths() <= -2 ? -1 : 0;
    const auto tonic = static_cast<std::size_t>(pitch::degreeInOctave(key.tonicPlace()));
    const auto letter = static_cast<std::size_t>(pitch::degreeInOctave(axis));
    return axisAlteration - wholeKey + kSignatures[tonic][letter];
}

// Respells a note of a key whose major frame lies `minorShift` steps below its displacements: first a double
// accidental, then a sharp or flat that names a white key of the frame.
void simplify(ENOTE& note, int minorShift) {
    const auto degree = [&] { return pitch::degreeInOctave(note.displacement - minorShift); };
    const auto move = [&](int steps, int alteration) {
        note.displacement = static_cast<std::int16_t>(note.displacement + steps);
        note.alteration = static_cast<std::int16_t>(note.alteration + alteration);
    };
    // A semitone lies above degrees 2 and 6, and below degrees 3 and 0.
    const auto semitoneAbove = [&] { return degree() == 2 || degree() == 6; };
    const auto semitoneBelow = [&] { return degree() == 3 || degree() == 0; };
    if (note.alteration >= 2) {
        move(1, semitoneAbove() ? -1 : -2);
    } else if (note.alteration <= -2) {
        move(-1, semitoneBelow() ? 1 : 2);
    }
    if (note.alteration == -1 && semitoneBelow()) {
        move(-1, 1);
    } else if (note.alteration == 1 && semitoneAbove()) {
        move(1, -1);
    }
}

}  // namespace

short InvDiatonic(EREGION* region, short axis, CProgress* progress) {
    return invert(region, progress, [axis](const pitch::Key& key) {
        const int sum = 2 * (axis - key.tonicPlace());
        return [sum](ENOTE& note) {
            note.displacement = static_cast<std::int16_t>(sum - note.displacement);
            note.alteration = static_cast<std::int16_t>(-note.alteration);
        };
    });
}

short InvChromatic(EREGION* region, short axis, short axisAlteration, short simplifySpelling,
                   CProgress* progress) {
    return invert(region, progress, [=](const pitch::Key& key) {
        const int minorShift = key.isMinor() ? pitch::kRelativeMajor : 0;
        const int center = axis - key.tonicPlace();
        const int degree = pitch::degreeInOctave(center - minorShift);
        const int alterations =
            2 * axisAlterationInKey(key, axis, axisAlteration) + 2 * pitch::height(degree);
        return [=](ENOTE& note) {
            const int from = note.displacement - minorShift;
            note.displacement = static_cast<std::int16_t>(2 * center - note.displacement);
            note.alteration = static_cast<std::int16_t>(alterations - note.alteration - pitch::height(from) -
                                                        pitch::height(2 * degree - from));
            if (simplifySpelling) simplify(note, minorShift);
        };
    });
}
