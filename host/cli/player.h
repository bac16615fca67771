// The synthesiser that makes MIDI audible.
#pragma once

#include <string>

#include "engine/model/problem.h"

namespace rovescio::cli {

class Player {
  public:
    enum class End { finished, stopped };

    // Problems: FluidSynth is not installed, or no sound font is.
    static engine::Result<Player> find();

    // Plays a MIDI file to its end, or until the user's cancel.
    [[nodiscard]] engine::Result<End> play(const std::string& midiFile) const;

  private:
    Player(std::string program, std::string soundFont)
        : program_(std::move(program)), soundFont_(std::move(soundFont)) {}

    std::string program_;
    std::string soundFont_;
};

}  // namespace rovescio::cli
