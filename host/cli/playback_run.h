// What is made of the music that the plug-in asks to be played: a MIDI file, sound, or both.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/outputs.h"
#include "cli/player.h"
#include "engine/interface/playback_list.h"
#include "engine/model/problem.h"
#include "run/open_score.h"
#include "run/selection.h"

namespace rovescio::cli {

class PlaybackRun {
  public:
    // Finds out before any work whether what the options ask for is possible here.
    static engine::Result<PlaybackRun> prepare(const Options& options);

    // Makes the music.
    engine::Result<engine::Done> make(const run::OpenScore& score, const engine::PlaybackRequest& request,
                                      const run::Selection& selection);
    // The MIDI file, if one is wanted; valid as long as this object is.
    [[nodiscard]] std::optional<Output> output() const;
    // Reports it, and plays it if that is wanted.
    [[nodiscard]] ExitCode play(bool quiet) const;

  private:
    PlaybackRun(std::string midiFile, std::optional<Player> player)
        : midiFile_(std::move(midiFile)), player_(std::move(player)) {}

    std::string midiFile_;
    std::optional<Player> player_;
    std::string bytes_;
    std::string heard_;  // which notes, for the user
    std::vector<std::string> notices_;
};

}  // namespace rovescio::cli
