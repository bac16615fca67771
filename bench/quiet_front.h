// A user interface that shows nothing and never cancels.
#pragma once

#include "engine/interface/user_interface.h"

namespace rovescio::bench {

class QuietFront : public engine::UserInterface {
  public:
    std::intptr_t runDialog(short, SXDialogProc, SXWindow, short, void*) override { return 0; }
    void endDialog(SXWindow) override {}
    std::intptr_t value(SXWindow, short, short) override { return 0; }
    void setValue(SXWindow, short, short, std::intptr_t) override {}
    void setText(SXWindow, short, const std::string&) override {}
    void enable(SXWindow, short, bool) override {}
    void show(SXWindow, short, bool) override {}
    short alert(SXWindow, std::uint16_t, const std::string&) override { return 0; }
    bool progress(const engine::Progress&) override { return true; }
    void redraw() override {}
    bool listenToMidi(std::uint8_t[3]) override { return false; }
    void play(short, short, const std::vector<short>&) override {}
};

}  // namespace rovescio::bench
