// A dialog while it is open: its controls, and the plug-in's procedure that answers to them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contract/records.h"
#include "dialogs/dialog_resources.h"

namespace rovescio::dialogs {

struct Control {
    Item item;
    int value = 0;  // check: 0 or 1; pop-up: entry from 1; number: 16 bits, signed
    bool shown = true;
    bool enabled = true;
    std::string text;  // what the plug-in put there; empty while it is the resource's own
};

class OpenDialog {
  public:
    OpenDialog(const DialogDescription& description, SXDialogProc procedure, void* userData);

    // The handle by which the plug-in knows the dialog.
    [[nodiscard]] SXWindow window() { return this; }
    [[nodiscard]] short number() const { return number_; }
    // Null when the dialog has no such item.
    [[nodiscard]] Control* control(short item);

    void initialise();
    // Tells the procedure that a control was used.
    void command(short item, std::uint32_t notification);

    void close() { open_ = false; }
    [[nodiscard]] bool isOpen() const { return open_; }

  private:
    short number_;
    SXDialogProc procedure_;
    void* userData_;
    std::vector<Control> controls_;
    bool open_ = true;
};

// Whether a control can hold a value.
bool canHold(const Item& item, std::intptr_t value);

}  // namespace rovescio::dialogs
