// Host functions on dialogs and alerts: handed to the user interface.
#include <array>
#include <cstdio>
#include <string>

#include "engine/interface/functions.h"
#include "engine/interface/session.h"
#include "engine/interface/strictness.h"
#include "engine/interface/utf.h"

namespace rovescio::engine::functions {

namespace {

UserInterface& front() {
    return Session::current().userInterface();
}

// The text of an alert: a string resource of the plug-in when an id is given.
std::string alertText(std::uint32_t stringId, std::string text) {
    if (stringId == 0) return text;
    const Session& session = Session::current();
    std::string resource = session.pluginString ? session.pluginString(stringId) : std::string();
    if (resource.empty()) {
        std::array<char, 11> id{};
        std::snprintf(id.data(), id.size(), "0x%08X", stringId);
        ruleBroken(Rule::stringMissing, std::string("an alert asks for the string ") + id.data());
    }
    return resource;
}

}  // namespace

std::intptr_t SX_Dialog(short resourceId, SXDialogProc handler, SXWindow parent, short flags,
                        void* userData) {
    if (!handler) {
        ruleBroken(Rule::dialogWithoutProcedure,
                   "dialog " + std::to_string(resourceId) + " was opened without a procedure");
        return 0;
    }
    return front().runDialog(resourceId, handler, parent, flags, userData);
}

void SX_EndDialog(SXWindow dialog) {
    front().endDialog(dialog);
}

void SX_EnableDlgItem(SXWindow dialog, short item, short enable) {
    front().enable(dialog, item, enable != 0);
}

void SX_ShowHideDlgItem(SXWindow dialog, short item, short show) {
    front().show(dialog, item, show != 0);
}

std::intptr_t SX_GetDlgItemVal(SXWindow dialog, short item, short kind) {
    return front().value(dialog, item, kind);
}

void SX_SetDlgItemVal(SXWindow dialog, short item, short kind, std::intptr_t value) {
    front().setValue(dialog, item, kind, value);
}

void SX_SetDlgString_UTF16(SXWindow dialog, short item, const char16_t* text) {
    front().setText(dialog, item, toUtf8(text ? text : u""));
}

short SX_AlertMessage(SXWindow parent, std::uint16_t style, std::uint32_t stringId, const char* text) {
    return front().alert(parent, style, alertText(stringId, text ? text : ""));
}

short SX_AlertMessage_UTF16(SXWindow parent, std::uint16_t style, std::uint32_t stringId,
                            const char16_t* text) {
    return front().alert(parent, style, alertText(stringId, toUtf8(text ? text : u"")));
}

}  // namespace rovescio::engine::functions
