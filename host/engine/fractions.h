// What becomes of quarter tones, which plug-ins cannot see.
#pragma once

#include <cstdint>

#include "contract/records.h"

namespace rovescio::engine {

class Session;

// What a transformation does to the parts of a semitone. The records count whole semitones, and a note of its
// own does not show whether it was moved or mirrored: a plug-in moves both by so many steps. So whoever works
// the plug-in's dialogs says what was chosen there.
enum class Fractions : std::uint8_t {
    kept,      // notes move as they are
    mirrored,  // notes are mirrored around an axis: what lay above the semitone lies below it now
    dropped,   // notes take the pitch that the key gives them
};

// Brings the quarter tones of the selected notes in line before the outermost mass edit ends.
void settleFractions(Session& session);

}  // namespace rovescio::engine
