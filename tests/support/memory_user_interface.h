// A user interface in memory: dialogs worked by the test, everything else recorded.
#pragma once

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
    int press(short item);
    int choose(short item, std::intptr_t entry);  // with the notification of a changed pop-up
    int set(short item, std::intptr_t value);     // a check box or number field
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
                            void* userData) override;
    void endDialog(SXWindow dialog) override { static_cast<MemoryDialog*>(dialog)->open = false; }
    std::intptr_t value(SXWindow dialog, short item, short kind) override;
    void setValue(SXWindow dialog, short item, short kind, std::intptr_t value) override;
    void setText(SXWindow dialog, short item, const std::string& text) override;
    void enable(SXWindow dialog, short item, bool enabled) override;
    void show(SXWindow dialog, short item, bool shown) override;
    short alert(SXWindow parent, std::uint16_t style, const std::string& text) override;
    bool progress(const engine::Progress& progress) override;
    void redraw() override { ++redraws; }
    bool listenToMidi(std::uint8_t event[3]) override;
    void play(short startMeasure, short endMeasure, const std::vector<short>& staves) override;
};

}  // namespace rovescio::test
