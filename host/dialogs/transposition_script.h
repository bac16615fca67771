// What a person would do in the plug-in's dialogs to transpose the selected music.
#pragma once

#include <functional>
#include <vector>

#include "dialogs/script.h"

namespace rovescio::dialogs {

// An interval as the transposition dialog takes it. All numbers count in the interval's direction.
struct Transposition {
    enum class Kind {
        diatonic,   // by steps within the key
        chromatic,  // by a named interval: steps and quality
        semitones,  // by semitones, spelled with the spelling pop-up
    };
    enum class Spelling { sharps, flats };

    Kind kind = Kind::chromatic;
    bool down = false;
    int steps = 0;       // diatonic and chromatic: 0 a unison, 7 an octave
    int alteration = 0;  // chromatic: semitones beyond the major or perfect interval of the steps
    int semitones = 0;   // semitones: 0 to 11
    Spelling spelling = Spelling::flats;
    int octaves = 0;  // on top of the above

    friend bool operator==(const Transposition&, const Transposition&) = default;
};

// Opens the settings, enters the transposition and applies it; once for the music selected now, and once more
// after each of the further selections.
Scripts transpositionScripts(const Transposition& transposition,
                             const std::vector<std::function<void()>>& furtherSelections);

}  // namespace rovescio::dialogs
