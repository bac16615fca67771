// Hands dialog procedures to the host in the form it takes.
//
// A procedure catches every exception and answers that it did not handle the message: none may reach the
// host.
#pragma once

#include "contract/records.h"

// Returns the procedure unchanged; alerts when the host is not of the expected executable format.
SXDialogProc NewFF_DialogHandlerProc(SXDialogProc proc);

// Counterpart of NewFF_DialogHandlerProc, with the same alert.
void DisposeFF_DialogHandlerProc(SXDialogProc proc);

namespace kit {

// Runs a dialog over another one until it is closed.
void runSubDialog(short resourceId, SXDialogProc proc, SXWindow parent, void* userData);

}  // namespace kit
