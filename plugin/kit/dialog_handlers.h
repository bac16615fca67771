// Hands dialog procedures to the host in the form it takes.
#pragma once

#include "contract/records.h"

// Returns the procedure unchanged; alerts when the host is not of the expected executable format.
SXDialogProc NewFF_DialogHandlerProc(SXDialogProc proc);

// Counterpart of NewFF_DialogHandlerProc, with the same alert.
void DisposeFF_DialogHandlerProc(SXDialogProc proc);
