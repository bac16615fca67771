// Transposition of every note inside a region.
#pragma once

#include "kit/mass_edit.h"

// Moves notes by diatonic steps inside the key of each measure and staff and adds `alteration` semitones to
// each. Returns 1 when an entry was changed or the user cancelled, else 0.
short TransposeDiatonic(EREGION* region, short steps, short alteration, CProgress* progress);

// Moves notes by a real interval: `steps` diatonic steps, of the major or perfect size changed by
// `alteration` semitones, spelled as those steps dictate. Staves in a key off the standard scales keep their
// pitches. Always returns 1.
short TransposeChromatic(EREGION* region, short steps, short alteration, CProgress* progress);
