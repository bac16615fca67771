// Dialogs of the plug-in: their procedures in the form that the host takes, and their controls.
//
// A procedure catches every exception and answers that it did not handle the message: none may reach the
// host.
#pragma once

#include <initializer_list>

#include "kit/host_api.h"

// Returns the procedure unchanged; alerts when the host is not of the expected executable format.
SXDialogProc NewFF_DialogHandlerProc(SXDialogProc proc);

// Counterpart of NewFF_DialogHandlerProc, with the same alert.
void DisposeFF_DialogHandlerProc(SXDialogProc proc);

namespace kit {

// Items that every dialog over another one has.
inline constexpr short kOk = 1;
inline constexpr short kCancel = 2;

// Runs a dialog over another one until it is closed.
void runSubDialog(short resourceId, SXDialogProc proc, SXWindow parent, void* userData);

// The value of a control, by its kind.
inline short control(SXWindow dialog, short item, short kind) {
    return static_cast<short>(SX_GetDlgItemVal(dialog, item, kind));
}
inline short check(SXWindow dialog, short item) {
    return control(dialog, item, kCheckValue);
}
inline short popup(SXWindow dialog, short item) {
    return control(dialog, item, kPopupValue);
}
inline short number(SXWindow dialog, short item) {
    return control(dialog, item, kNumberValue);
}

// Shows controls or hides them.
inline void showItems(SXWindow dialog, std::initializer_list<short> items, bool shown) {
    for (const short item : items) SX_ShowHideDlgItem(dialog, item, shown ? 1 : 0);
}

}  // namespace kit
