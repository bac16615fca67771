// Controls and messages of an open dialog.
#include "dialogs/open_dialog.h"

#include <algorithm>
#include <limits>

namespace rovescio::dialogs {

OpenDialog::OpenDialog(const DialogDescription& description, SXDialogProc procedure, void* userData)
    : number_(description.number), procedure_(procedure), userData_(userData) {
    controls_.reserve(description.items.size());
    for (const Item& item : description.items) {
        // A fresh pop-up shows its first entry.
        controls_.push_back({.item = item, .value = item.kind == ItemKind::popup ? 1 : 0, .text = {}});
    }
}

Control* OpenDialog::control(short item) {
    const auto found = std::find_if(controls_.begin(), controls_.end(),
                                    [&](const Control& control) { return control.item.number == item; });
    return found == controls_.end() ? nullptr : &*found;
}

void OpenDialog::initialise() {
    procedure_(window(), kDialogInit, 0, 0, userData_);
}

void OpenDialog::command(short item, std::uint32_t notification) {
    const auto low = static_cast<std::uint16_t>(item);
    procedure_(window(), kDialogCommand, item, (notification << 16) | low, userData_);
}

bool canHold(const Item& item, std::intptr_t value) {
    switch (item.kind) {
        case ItemKind::check:
            return value == 0 || value == 1;
        case ItemKind::popup:
            return value >= 1 && value <= item.entries;
        case ItemKind::number:
            return value >= std::numeric_limits<std::int16_t>::min() &&
                   value <= std::numeric_limits<std::int16_t>::max();
        case ItemKind::button:
        case ItemKind::text:
            break;
    }
    return false;
}

}  // namespace rovescio::dialogs
