// A Standard MIDI File of some measures of some staves.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "engine/interface/playback_list.h"
#include "engine/model/document.h"
#include "engine/model/performance.h"
#include "engine/model/problem.h"

namespace rovescio::playback {

struct MidiFile {
    std::string bytes;
    std::size_t notes = 0;
    std::vector<std::string> notices;  // for the user, each once
};

// Format 1: a track of tempo, time and key signatures, then a track for each staff. Everything is played once
// as it is written. Times are exact wherever a number of ticks can make them so. Problems: the music is too
// long for the format, or there is no room for a temporary file.
engine::Result<MidiFile> makeMidiFile(const engine::Document& document,
                                      const engine::Performance& performance,
                                      const engine::PlaybackRequest& request,
                                      const std::array<bool, engine::kMaxLayers>& layerShown);

}  // namespace rovescio::playback
