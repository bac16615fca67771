// Pitches as people write them on the command line.
#pragma once

#include <string>

#include "engine/model/key_signature.h"
#include "engine/model/problem.h"

namespace rovescio::cli {

// Reads a pitch: "E4", "Bb3", "F#5", "B-flat 3", "C sharp 4"; C4 is middle C. Problems: no such pitch (told
// with what is understood), more than one sharp or flat, an octave outside 0 to 9.
engine::Result<engine::SpelledPitch> parsePitch(const std::string& name);

// The shortest of the names, "Bb3".
std::string pitchName(const engine::SpelledPitch& pitch);

}  // namespace rovescio::cli
