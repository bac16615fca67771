// Choice of a port, and waiting for a note on it.
#include "playback/midi_input.h"

#include <RtMidi.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <thread>
#include <utility>

namespace rovescio::playback {

namespace {

engine::Problem noPort(std::string message, std::string remedy) {
    return {.message = std::move(message), .file = {}, .measure = {}, .remedy = std::move(remedy)};
}

// What the system's sound libraries print is dropped; the problem that follows says what matters.
class QuietErrors {
  public:
    QuietErrors() : kept_(dup(STDERR_FILENO)) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (kept_ >= 0 && nowhere >= 0) dup2(nowhere, STDERR_FILENO);
        if (nowhere >= 0) close(nowhere);
    }
    ~QuietErrors() {
        if (kept_ < 0) return;
        dup2(kept_, STDERR_FILENO);
        close(kept_);
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

  private:
    int kept_;
};

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

// The port of the system's own that repeats what programs send; nobody plays there.
bool isLoop(const std::string& name) {
    return name.find("Midi Through") != std::string::npos;
}

std::string listOf(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "\"" : ", \"") + name + '"';
    return list;
}

// The system's own MIDI; a sound server would be started by a mere look at its ports.
RtMidi::Api systemApi() {
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    std::erase(apis, RtMidi::UNIX_JACK);
    return apis.empty() ? RtMidi::UNSPECIFIED : apis.front();
}

}  // namespace

engine::Result<std::size_t> choosePort(const std::vector<std::string>& names, const std::string& text) {
    std::vector<std::size_t> matches;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!text.empty() && lowered(names[i]) == lowered(text)) return i;
        const bool isMatch =
            text.empty() ? !isLoop(names[i]) : lowered(names[i]).find(lowered(text)) != std::string::npos;
        if (isMatch) matches.push_back(i);
    }
    if (matches.size() == 1) return matches.front();
    if (matches.size() > 1) {
        return noPort(text.empty() ? "there are several MIDI ports"
                                   : "several MIDI ports have \"" + text + "\" in their names",
                      "Say which with --midi-port: " + listOf(names));
    }
    if (names.empty() || text.empty()) {
        return noPort("there is no MIDI port to listen to",
                      "Connect a MIDI instrument, or write the pitch, such as --axis E4");
    }
    return noPort("there is no MIDI port \"" + text + "\"", "There are: " + listOf(names));
}

MidiInput::MidiInput(std::unique_ptr<RtMidiIn> input, std::string port)
    : input_(std::move(input)), port_(std::move(port)) {}
MidiInput::MidiInput(MidiInput&&) noexcept = default;
MidiInput& MidiInput::operator=(MidiInput&&) noexcept = default;
MidiInput::~MidiInput() = default;

engine::Result<MidiInput> MidiInput::open(const std::string& port) {
    const QuietErrors quiet;
    try {
        auto input = std::make_unique<RtMidiIn>(systemApi(), "Rovescio");
        std::vector<std::string> names;
        for (unsigned i = 0; i < input->getPortCount(); ++i) names.push_back(input->getPortName(i));
        const engine::Result<std::size_t> chosen = choosePort(names, port);
        if (!chosen) return chosen.problem();
        input->openPort(static_cast<unsigned>(chosen.value()), "input");
        return MidiInput(std::move(input), names[chosen.value()]);
    } catch (const RtMidiError&) {
        return noPort("this system has no MIDI input that can be opened",
                      "Connect a MIDI instrument, or write the pitch, such as --axis E4");
    }
}

std::optional<std::array<std::uint8_t, 3>> MidiInput::waitForNote(const std::function<bool()>& givenUp) {
    constexpr std::chrono::milliseconds kPause(5);
    constexpr unsigned kNoteOn = 0x90;
    std::vector<unsigned char> message;
    while (!givenUp()) {
        input_->getMessage(&message);
        // A note struck with no force is how some instruments let it go.
        if (message.size() == 3 && (message[0] & 0xF0U) == kNoteOn && message[2] > 0) {
            return std::array<std::uint8_t, 3>{message[0], message[1], message[2]};
        }
        if (message.empty()) std::this_thread::sleep_for(kPause);
    }
    return std::nullopt;
}

}  // namespace rovescio::playback
