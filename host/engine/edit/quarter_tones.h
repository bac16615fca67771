// What becomes of quarter tones, which plug-ins cannot see.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "contract/records.h"
#include "engine/model/document.h"

namespace rovescio::engine {

class Consequences;

// What a transformation does to the parts of a semitone. The records count whole semitones, and a note of its
// own does not show whether it was moved or mirrored: a plug-in moves both by so many steps. So whoever works
// the plug-in's dialogs says what was chosen there.
enum class Fractions : std::uint8_t {
    kept,      // notes move as they are
    mirrored,  // notes are mirrored around an axis: what lay above the semitone lies below it now
    dropped,   // notes take the pitch that the key gives them
};

// One change, and by which of the plug-in's walks through the music it comes: from 1 after the last rebar, 0
// for the last one.
struct FractionChange {
    Fractions become = Fractions::kept;
    int walk = 0;
};

struct QuarterTones {
    FractionChange change = {};
    // Of which music; none when nothing is selected.
    std::optional<EREGION> region = std::nullopt;
    std::array<bool, kMaxLayers> layers = {true, true, true, true};
};

// Brings the quarter tones of the selected notes in line with what the open edit did to the notes.
void settleQuarterTones(const Document& document, Consequences& consequences,
                        const QuarterTones& quarterTones);

}  // namespace rovescio::engine
