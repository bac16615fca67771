// What the main dialog's buttons do to the selection: apply the chosen transformations, check, play.
#pragma once

#include "contract/records.h"

// Runs the chosen transformations over the current selection as one mass edit, always in the order
// retrograde, transposition, inversion, note-flag options. A cancel, or music that cannot be reversed, skips
// what is left; the music is redrawn when something was changed and nobody cancelled. Alerts when nothing is
// chosen or selected, and when a retrograde failed.
void applyTransformations(SXWindow dialog);

// Reports what in the selection a retrograde cannot carry, and offers to repair it.
void checkSelection(SXWindow dialog);

// Plays the measures of the selection on its staves. Alerts when nothing is selected.
void playSelection(SXWindow dialog);

// Alerts; each returns the host's answer.
short NoSelectionDialog(SXWindow window);
short NoActionDialog(SXWindow window);
