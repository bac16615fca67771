// The user interface in memory.
#include "support/memory_user_interface.h"

#include <algorithm>

namespace rovescio::test {

int MemoryDialog::press(short item) {
    return procedure(this, kDialogCommand, item, static_cast<std::uint32_t>(item), userData);
}

int MemoryDialog::choose(short item, std::intptr_t entry) {
    values[item] = entry;
    return procedure(this, kDialogCommand, item, kPopupChanged << 16 | static_cast<std::uint32_t>(item),
                     userData);
}

int MemoryDialog::set(short item, std::intptr_t value) {
    values[item] = value;
    return press(item);
}

std::intptr_t MemoryUserInterface::runDialog(short resourceId, SXDialogProc procedure, SXWindow parent,
                                             short flags, void* userData) {
    MemoryDialog dialog;
    dialog.resourceId = resourceId;
    dialog.procedure = procedure;
    dialog.parent = parent;
    dialog.flags = flags;
    dialog.userData = userData;
    opened.push_back(resourceId);
    procedure(&dialog, kDialogInit, 0, 0, userData);
    if (const auto user = users.find(resourceId); user != users.end()) user->second(dialog);
    return 0;
}

std::intptr_t MemoryUserInterface::value(SXWindow dialog, short item, short kind) {
    auto& open = *static_cast<MemoryDialog*>(dialog);
    open.kinds[item] = kind;
    return open.values[item];
}

void MemoryUserInterface::setValue(SXWindow dialog, short item, short kind, std::intptr_t value) {
    auto& open = *static_cast<MemoryDialog*>(dialog);
    open.kinds[item] = kind;
    open.values[item] = value;
}

void MemoryUserInterface::setText(SXWindow dialog, short item, const std::string& text) {
    static_cast<MemoryDialog*>(dialog)->texts[item] = text;
}

void MemoryUserInterface::enable(SXWindow dialog, short item, bool enabled) {
    static_cast<MemoryDialog*>(dialog)->enabled[item] = enabled;
}

void MemoryUserInterface::show(SXWindow dialog, short item, bool shown) {
    auto& hidden = static_cast<MemoryDialog*>(dialog)->hidden;
    if (shown) {
        hidden.erase(item);
    } else {
        hidden.insert(item);
    }
}

short MemoryUserInterface::alert(SXWindow, std::uint16_t, const std::string& text) {
    alerts.push_back(text);
    return alertAnswer;
}

bool MemoryUserInterface::progress(const engine::Progress&) {
    ++polls;
    return cancelAfter < 0 || polls <= cancelAfter;
}

bool MemoryUserInterface::listenToMidi(std::uint8_t* event) {
    std::copy(midi.begin(), midi.end(), event);
    return !midi.empty();
}

void MemoryUserInterface::play(short startMeasure, short endMeasure, const std::vector<short>& staves) {
    played.push_back({startMeasure, endMeasure, staves});
}

}  // namespace rovescio::test
