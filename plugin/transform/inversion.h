// Inversion of every note inside a region around an axis, and of chords.
#pragma once

#include "kit/mass_edit.h"

// Mirrors notes on the degrees of the key of each measure and staff; alterations become their opposites.
// `axis` counts diatonic steps from middle C. Staves in keys other than major and minor are left alone.
// Returns 1 when a frame was saved or the user cancelled, else 0; 0 for no region.
short InvDiatonic(EREGION* region, short axis, CProgress* progress);

// Mirrors notes so that each lies as many semitones below the axis note as it lay above; letters are mirrored
// diatonically. The axis note is `axis` diatonic steps from middle C, altered by -1, 0 or 1 semitones. With
// `simplifySpelling` double accidentals and the enharmonic names of white keys are respelled, in one pass.
// Staves and result as for InvDiatonic.
short InvChromatic(EREGION* region, short axis, short axisAlteration, short simplifySpelling,
                   CProgress* progress);

// What chord inversion does to entries of one note.
enum CHINVTYPE : short {
    kSingleNotesInSteps = 1,  // add steps and alteration as they are, no flags set
    kSingleNotesInKey = 2,    // move by the interval in the key, see TransposeSingleNoteEntry
};

// Moves the lowest note of each chord up by the fewest octaves that put it above the highest one, or the
// highest down below the lowest. Only the displacement of that note changes. Result as for InvDiatonic.
short InvChordUp(EREGION* region, CHINVTYPE kind, short steps, short alteration, CProgress* progress);
short InvChordDown(EREGION* region, CHINVTYPE kind, short steps, short alteration, CProgress* progress);
