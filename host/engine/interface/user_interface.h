// What the engine needs of its user interface: dialogs, alerts, progress and cancel, playback.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contract/records.h"

namespace rovescio::engine {

// How far a mass edit has come, in frames loaded.
struct Progress {
    std::int64_t position = 0;
    std::int64_t total = 0;
};

class UserInterface {
  public:
    virtual ~UserInterface() = default;

    // Runs a modal dialog of the plug-in until endDialog; returns what the host function returns.
    virtual std::intptr_t runDialog(short resourceId, SXDialogProc procedure, SXWindow parent, short flags,
                                    void* userData) = 0;
    virtual void endDialog(SXWindow dialog) = 0;
    // Controls by item number; kind is kCheckValue, kPopupValue or kNumberValue.
    virtual std::intptr_t value(SXWindow dialog, short item, short kind) = 0;
    virtual void setValue(SXWindow dialog, short item, short kind, std::intptr_t value) = 0;
    virtual void setText(SXWindow dialog, short item, const std::string& text) = 0;
    virtual void enable(SXWindow dialog, short item, bool enabled) = 0;
    virtual void show(SXWindow dialog, short item, bool shown) = 0;

    // Shows a text (UTF-8) and returns the answer; kAnswerYes means yes.
    virtual short alert(SXWindow parent, std::uint16_t style, const std::string& text) = 0;
    // Shows progress; false when the user cancelled.
    virtual bool progress(const Progress& progress) = 0;
    // The music inside the region was changed and would be redrawn.
    virtual void redraw() = 0;
    // Waits for one MIDI event and writes status, note and velocity; false when there is no MIDI input.
    virtual bool listenToMidi(std::uint8_t event[3]) = 0;
    // Plays measures of some staves; staves count from 1.
    virtual void play(short startMeasure, short endMeasure, const std::vector<short>& staves) = 0;
};

}  // namespace rovescio::engine
