// The note-flag options: showing and hiding of accidentals, removal of ties.
#pragma once

#include "kit/mass_edit.h"

// Applies an option to every note inside the region, and removes its ties when asked. Options: 2 accidentals
// as needed, 3 always shown, 4 never shown, 5 as needed also where set by hand, 6 removed, each note getting
// the key's pitch; any other leaves the accidentals alone. Only 2 and 5 mark entries as changed. Returns 1
// when a frame was saved or the user cancelled, else 0.
short DoSUOptions(EREGION* region, short option, short removeTies, CProgress* progress);
