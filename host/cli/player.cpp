// FluidSynth as a child process.
#include "cli/player.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/cancel.h"
#include "cli/child_process.h"
#include "cli/messages.h"

namespace rovescio::cli {

namespace {

namespace fs = std::filesystem;
using engine::Result;

std::optional<std::string> findProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string program = (folder.empty() ? "." : folder) + "/" + name;
        std::error_code error;
        if (fs::is_regular_file(program, error) && access(program.c_str(), X_OK) == 0) return program;
    }
    return std::nullopt;
}

// The user's choice, the system's default, or else the first one that is installed.
std::optional<std::string> findSoundFont() {
    std::error_code error;
    if (const char* chosen = std::getenv("ROVESCIO_SOUND_FONT"); chosen && *chosen != '\0') {
        return fs::is_regular_file(chosen, error) ? std::optional<std::string>(chosen) : std::nullopt;
    }
    const std::vector<std::string> folders = {"/usr/share/sounds/sf3", "/usr/share/sounds/sf2",
                                              "/usr/share/soundfonts"};
    std::vector<std::string> fonts;
    for (const std::string& folder : folders) {
        std::vector<std::string> found;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".sf2" || extension == ".sf3") found.push_back(entry.path().string());
        }
        std::sort(found.begin(), found.end());
        fonts.insert(fonts.end(), found.begin(), found.end());
    }
    const auto standard = std::find_if(fonts.begin(), fonts.end(), [](const std::string& font) {
        return fs::path(font).stem() == "default-GM";
    });
    if (standard != fonts.end()) return *standard;
    return fonts.empty() ? std::nullopt : std::optional(fonts.front());
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

Result<Player> Player::find() {
    std::optional<std::string> program = findProgram("fluidsynth");
    if (!program) {
        return problemWith("there is no synthesiser to play with: FluidSynth is not installed",
                           "Install it (Debian: apt install fluidsynth fluid-soundfont-gm), or write a MIDI "
                           "file with --midi");
    }
    std::optional<std::string> soundFont = findSoundFont();
    if (!soundFont) {
        return problemWith("FluidSynth has no sound font to play with",
                           "Install one (Debian: apt install fluid-soundfont-gm), or name one in "
                           "ROVESCIO_SOUND_FONT");
    }
    return Player(std::move(*program), std::move(*soundFont));
}

Result<Player::End> Player::play(const std::string& midiFile) const {
    // The synthesiser inherits a file without a name, which nobody has to remove.
    const std::unique_ptr<std::FILE, FileCloser> file(std::tmpfile());
    if (!file || std::fwrite(midiFile.data(), 1, midiFile.size(), file.get()) != midiFile.size() ||
        std::fflush(file.get()) != 0) {
        return problemWith("there is no room for a temporary MIDI file", "Make room, or set TMPDIR");
    }
    const DeferredCancel deferred(DeferredCancel::End::handOver);
    Result<ChildProcess> synthesiser = ChildProcess::start(
        program_, {"-q", "-n", "-i", soundFont_, "/dev/fd/" + std::to_string(fileno(file.get()))});
    if (!synthesiser) return synthesiser.problem();
    constexpr int kLookMilliseconds = 50;
    bool stopped = false;
    while (true) {
        pollfd pipe{.fd = synthesiser->messagePipe(), .events = POLLIN, .revents = 0};
        const int said = poll(&pipe, 1, kLookMilliseconds);
        if (said > 0 && !synthesiser->readMessages()) break;
        if (!stopped && DeferredCancel::requested()) {
            stopped = true;
            synthesiser->cancel();
        }
    }
    const int status = synthesiser->finish();
    if (stopped) return End::stopped;
    if (status == 0) return End::finished;
    std::string last;
    std::istringstream lines(synthesiser->messages());
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) last = line.substr(0, line.find_last_not_of(". ") + 1);
    }
    return problemWith("FluidSynth could not play (status " + std::to_string(status) + ")" +
                           (last.empty() ? "" : ": " + last),
                       "Check that sound works on this system, or write a MIDI file with --midi");
}

}  // namespace rovescio::cli
