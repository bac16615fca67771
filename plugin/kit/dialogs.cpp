// Dialogs of the plug-in: their procedures in the form that the host takes, and their controls.
#include "kit/dialogs.h"

#include <memory>
#include <type_traits>

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

namespace {

// A host that throws while its handler is let go is not asked again.
struct DisposeHandler {
    void operator()(SXDialogProc proc) const noexcept try { DisposeFF_DialogHandlerProc(proc); } catch (...) {
    }
};

using DialogHandler = std::unique_ptr<std::remove_pointer_t<SXDialogProc>, DisposeHandler>;

}  // namespace

void runSubDialog(short resourceId, SXDialogProc proc, SXWindow parent, void* userData) {
    constexpr short kSubDialogFlags = 0x3001;
    const DialogHandler handler(NewFF_DialogHandlerProc(proc));
    SX_Dialog(resourceId, handler.get(), parent, kSubDialogFlags, userData);
}

}  // namespace kit
