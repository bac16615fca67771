// A user interface in memory: dialogs worked by the test, everything else recorded.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "engine/interface/user_interface.h"

namespace rovescio::test {

// One dialog while it is open.
struct MemoryDialog {
    short resourceId = 0;
    SXDialogProc procedure = nullptr;
    SXWindow parent = nullptr;
    short flags = 0;
    void* userData = nullptr;
    bool open = true;
    std::map<short, std::intptr_t> values;
    std::map<short, short> kinds;  // kind with which each item was last read or set
    std::set<short> hidden;
    std::map<short, bool> enabled;
    std::map<short, std::string> texts;

    // What a user does: each returns what the procedure answered.
    int press(short item) {
        return procedure(this, kDialogCommand, item, static_cast<std::uint32_t>(item), userData);
    }
    // With the notification of a changed pop-up.
    int choose(short item, std::intptr_t entry) {
        values[item] = entry;
        return procedure(this, kDialogCommand, item, kPopupChanged << 16 | static_cast<std::uint32_t>(item),
                         userData);
    }
    // A check box or number field.
    int set(short item, std::intptr_t value) {
        values[item] = value;
        return press(item);
    }
};

class MemoryUserInterface : public engine::UserInterface {
  public:
    // Operates a dialog after it is initialised, by its number. A dialog without a user is closed at once.
    std::map<short, std::function<void(MemoryDialog&)>> users;
    // The number of progress polls after which the user cancels; negative: never.
    int cancelAfter = -1;
    int polls = 0;
    int redraws = 0;
    std::vector<std::string> alerts;
    short alertAnswer = 0;
    std::vector<std::uint8_t> midi;  // the event that listening hears; none when empty
    struct Played {
        short startMeasure;
        short endMeasure;
        std::vector<short> staves;
    };
    std::vector<Played> played;
    std::vector<short> opened;  // numbers of the dialogs, in order

    std::intptr_t runDialog(short resourceId, SXDialogProc procedure, SXWindow parent, short flags,
                            void* userData) override {
        MemoryDialog dialog{resourceId, procedure, parent, flags, userData, true, {}, {}, {}, {}, {}};
        opened.push_back(resourceId);
        procedure(&dialog, kDialogInit, 0, 0, userData);
        if (const auto user = users.find(resourceId); user != users.end()) user->second(dialog);
        return 0;
    }
    void endDialog(SXWindow dialog) override { static_cast<MemoryDialog*>(dialog)->open = false; }
    std::intptr_t value(SXWindow dialog, short item, short kind) override {
        auto& open = *static_cast<MemoryDialog*>(dialog);
        open.kinds[item] = kind;
        return open.values[item];
    }
    void setValue(SXWindow dialog, short item, short kind, std::intptr_t value) override {
        auto& open = *static_cast<MemoryDialog*>(dialog);
        open.kinds[item] = kind;
        open.values[item] = value;
    }
    void setText(SXWindow dialog, short item, const std::string& text) override {
        static_cast<MemoryDialog*>(dialog)->texts[item] = text;
    }
    void enable(SXWindow dialog, short item, bool enabled) override {
        static_cast<MemoryDialog*>(dialog)->enabled[item] = enabled;
    }
    void show(SXWindow dialog, short item, bool shown) override {
        auto& hidden = static_cast<MemoryDialog*>(dialog)->hidden;
        shown ? void(hidden.erase(item)) : void(hidden.insert(item));
    }
    short alert(SXWindow, std::uint16_t, const std::string& text) override {
        alerts.push_back(text);
        return alertAnswer;
    }
    bool progress(const engine::Progress&) override {
        ++polls;
        return cancelAfter < 0 || polls <= cancelAfter;
    }
    void redraw() override { ++redraws; }
    bool listenToMidi(std::uint8_t* event) override {
        std::copy(midi.begin(), midi.end(), event);
        return !midi.empty();
    }
    void play(short startMeasure, short endMeasure, const std::vector<short>& staves) override {
        played.push_back({startMeasure, endMeasure, staves});
    }
};

}  // namespace rovescio::test
