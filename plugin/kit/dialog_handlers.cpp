// Hands dialog procedures to the host in the form it takes.
#include "kit/dialog_handlers.h"

#include "kit/host_api.h"

namespace {

// Only the executable format of this platform takes plain function pointers. A host of another one gets the
// pointer all the same, after a word to the user.
void checkExecutableFormat() {
    if (SX_IsMachO() == 0) SX_AlertMessage(nullptr, kAlertWarning, 0, "Should not get here!");
}

}  // namespace

SXDialogProc NewFF_DialogHandlerProc(SXDialogProc proc) {
    checkExecutableFormat();
    return proc;
}

void DisposeFF_DialogHandlerProc(SXDialogProc /*proc*/) {
    checkExecutableFormat();
}

namespace kit {

void runSubDialog(short resourceId, SXDialogProc proc, SXWindow parent, void* userData) {
    constexpr short kSubDialogFlags = 0x3001;
    const SXDialogProc handler = NewFF_DialogHandlerProc(proc);
    SX_Dialog(resourceId, handler, parent, kSubDialogFlags, userData);
    DisposeFF_DialogHandlerProc(handler);
}

}  // namespace kit
