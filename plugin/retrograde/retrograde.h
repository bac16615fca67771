// The retrograde: the music of a region played backwards.
#pragma once

#include "kit/mass_edit.h"

// Options: what is put into reverse order over the measures of the region besides the music. Other bits mean
// nothing.
inline constexpr unsigned int kMirrorKeySignatures = 1;
inline constexpr unsigned int kMirrorMeasureSpacing = 2;

// Reverses every shown layer of every staff slot of the region and the measure attributes that the options
// ask for, and rebars the region. The attributes are exchanged once for every slot, so that over an
// even number of slots they end as they were.
//
// Returns 0 when music could not be loaded: what was reversed before stays, the rest is untouched and nothing
// is rebarred. Returns 1 otherwise, also after a cancel.
short Retrograde(EREGION* region, unsigned int options, CProgress* progress);
