// What a person would do in the plug-in's dialogs to transform the selected music.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "dialogs/script.h"
#include "engine/key_signature.h"

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

// A mirror of notes around an axis, or of chords.
struct Inversion {
    enum class Kind {
        diatonic,   // by steps within the key; the axis is a degree of the key, so its alteration is not used
        chromatic,  // by semitones
        chordsUp,   // the lowest note of each chord above the others
        chordsDown,
    };

    Kind kind = Kind::diatonic;
    engine::SpelledPitch axis = {};  // not for chords; altered by a semitone at most
    bool simplify = false;           // chromatic: respell double accidentals and enharmonic white keys

    [[nodiscard]] bool hasAxis() const { return kind == Kind::diatonic || kind == Kind::chromatic; }
};

// What becomes of the accidentals, in the order of the plug-in's pop-up.
enum class Accidentals {
    asNeeded,   // decided anew, choices by hand excepted
    always,     // shown by hand
    never,      // hidden by hand
    automatic,  // decided anew
    inKey,      // none, and each note takes the pitch that the key gives it
};

// What is chosen to be done, in the plug-in's order.
struct Transformation {
    std::optional<Transposition> transposition = std::nullopt;
    std::optional<Inversion> inversion = std::nullopt;
    std::optional<Accidentals> accidentals = std::nullopt;
    bool removeTies = false;

    [[nodiscard]] bool isTransposition() const { return transposition && stepCount() == 1; }
    // Each step goes through the selected music once.
    [[nodiscard]] int stepCount() const {
        return (transposition ? 1 : 0) + (inversion ? 1 : 0) + (accidentals || removeTies ? 1 : 0);
    }
};

// Enters what is chosen, leaves all other controls alone, and applies it; once for the music selected now,
// and once more after each of the further selections.
Scripts transformationScripts(const Transformation& transformation,
                              const std::vector<std::function<void()>>& furtherSelections);

}  // namespace rovescio::dialogs
