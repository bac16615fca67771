// The main dialog, in which the user chooses transformations and applies them to the selection.
#pragma once

#include "contract/records.h"

// Opens the dialog and returns 0 when it is closed. The regions are not used: the selection is asked of the
// host whenever it is needed.
short SUDialog(SXWindow parent, EREGION* first, EREGION* second);

int SUDialogProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t parameter,
                 void* userData) noexcept;

// Takes the controls into the settings.
void SUSetRecordValues(SXWindow dialog);
