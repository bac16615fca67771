// What a person would do in the plug-in's dialogs to transform the selected music.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/script.h"
#include "engine/edit/quarter_tones.h"
#include "engine/model/key_signature.h"

namespace rovescio::dialogs {

// A retrograde of the music.
struct Retrograde {
    bool mirrorKeys = false;     // reverses the order of the measures' key signatures too
    bool mirrorSpacing = false;  // and that of their widths and margins
    bool repair = false;         // what stands in the way is deleted; otherwise the music is left alone

    friend bool operator==(const Retrograde&, const Retrograde&) = default;
};

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

// An inversion of notes around an axis, or of chords.
struct Inversion {
    enum class Kind {
        diatonic,   // by steps within the key; the axis is a degree of the key, so its alteration is not used
        chromatic,  // by semitones
        chordsUp,   // the lowest note of each chord above the others
        chordsDown,
    };

    Kind kind = Kind::diatonic;
    engine::SpelledPitch axis = {};  // not for chords; altered by a semitone at most
    bool axisIsPlayed = false;       // instead, it is the note that the dialog gets by MIDI
    bool simplify = false;           // chromatic: respell double accidentals and enharmonic white keys

    [[nodiscard]] bool hasAxis() const { return kind == Kind::diatonic || kind == Kind::chromatic; }
};

// What becomes of the accidentals, in the order of the plug-in's pop-up.
enum class Accidentals {
    asNeeded,   // decided afresh, except where set by hand
    always,     // shown by hand
    never,      // hidden by hand
    automatic,  // decided afresh
    inKey,      // none, and each note takes the pitch that the key gives it
};

// What is chosen to be done, in the plug-in's order.
struct Transformation {
    std::optional<Retrograde> retrograde = std::nullopt;
    std::optional<Transposition> transposition = std::nullopt;
    std::optional<Inversion> inversion = std::nullopt;
    std::optional<Accidentals> accidentals = std::nullopt;
    bool removeTies = false;

    [[nodiscard]] bool isTransposition() const { return transposition && stepCount() == 1; }
    // The last step that does something to quarter tones decides.
    [[nodiscard]] engine::FractionChange fractions() const {
        if (accidentals == Accidentals::inKey) return {engine::Fractions::dropped};
        if (!inversion || !inversion->hasAxis()) return {};
        return {engine::Fractions::mirrored, transposition ? 2 : 1};
    }
    // Each step goes through the selected music once.
    [[nodiscard]] int stepCount() const {
        return (retrograde ? 1 : 0) + (transposition ? 1 : 0) + (inversion ? 1 : 0) +
               (accidentals || removeTies ? 1 : 0);
    }
};

// Enters what is chosen and nothing else, and applies it; once for the music selected now,
// and once more after each of the further selections. Where the check before a retrograde finds problems, its
// report is read out.
Scripts transformationScripts(const Transformation& transformation,
                              const std::vector<std::function<void()>>& furtherSelections);

// Has each selection played, after whatever the scripts do in the main dialog.
Scripts withPlayback(Scripts scripts, const std::vector<std::function<void()>>& selections);

// Has each selection checked for a retrograde and its report read out; with `repair` has deleted what stands
// in the way.
Scripts checkScripts(bool repair, const std::vector<std::function<void()>>& furtherSelections);

// What the plug-in's check had to say about one selection.
struct CheckReport {
    std::string measures;  // which measures it looked at
    std::string findings;  // one of the plug-in's texts or several, with commas between them
};

// The reports that a run's scripts read out, in order.
std::vector<CheckReport> checkReports(const std::vector<Reading>& readings);

// The plug-in's string with which the check reports that nothing stands in the way.
inline constexpr std::uint32_t kNoProblemsString = 0x4EA6000A;

}  // namespace rovescio::dialogs
