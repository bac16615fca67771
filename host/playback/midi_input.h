// Notes that a person plays on a MIDI instrument.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/model/problem.h"

class RtMidiIn;

namespace rovescio::playback {

class MidiInput {
  public:
    // Opens the port whose name is, or holds, the text; without a text the only port there is. Problems: no
    // port, none of that name or several (told with those there are), one that cannot be opened.
    static engine::Result<MidiInput> open(const std::string& port);

    MidiInput(MidiInput&&) noexcept;
    MidiInput& operator=(MidiInput&&) noexcept;
    ~MidiInput();

    // Waits for a note to be struck: status, note, velocity. None when the user gave up waiting.
    std::optional<std::array<std::uint8_t, 3>> waitForNote(const std::function<bool()>& givenUp);

    [[nodiscard]] const std::string& port() const { return port_; }

  private:
    MidiInput(std::unique_ptr<RtMidiIn> input, std::string port);

    std::unique_ptr<RtMidiIn> input_;
    std::string port_;
};

// Which of the names a text means, as open() understands it; for messages the names as well.
engine::Result<std::size_t> choosePort(const std::vector<std::string>& names, const std::string& text);

}  // namespace rovescio::playback
