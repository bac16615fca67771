// How a score is to sound: tempo, loudness, transposing instruments and sounds; what notes alone do not say.
//
// Built by a score reader next to the document. Staves and measures count from 1, as in the document.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/model/fraction.h"

namespace rovescio::engine {

// A place in the score, for all staves.
struct ScorePlace {
    short measure = 1;
    Fraction position;  // duration units from the start of the measure
};

struct TempoMark {
    ScorePlace place;
    double quartersPerMinute = 120;
};

struct TimeMark {
    short measure = 1;
    int beats = 4;
    int beatType = 4;  // 4 a quarter, 8 an eighth
};

// Loudness as MIDI velocity, 1 to 127.
struct LoudnessMark {
    ScorePlace place;
    std::optional<int> level;   // from here on; none when what was in force stays
    std::optional<int> accent;  // of the notes that begin here alone
};

struct Hairpin {
    ScorePlace start;
    ScorePlace end;
    bool rising = true;
};

// From here on the instrument sounds by so many semitones above what is written.
struct TranspositionMark {
    short staff = 1;
    ScorePlace place;
    int semitones = 0;
};

// One of a part's instruments, in the numbers of General MIDI.
struct Instrument {
    int program = 0;  // 0 to 127; 0 is the grand piano
    bool percussion = false;
    std::optional<int> key;  // which percussion sound its notes are, 0 to 127
};

struct PartPerformance {
    short firstStaff = 1;
    short staffCount = 1;
    std::vector<Instrument> instruments;  // never empty; the first plays unless a note names another
    std::vector<TimeMark> times;          // these three in the order of the score
    std::vector<LoudnessMark> loudness;
    std::vector<TranspositionMark> transpositions;
    std::vector<Hairpin> hairpins;
};

struct Performance {
    std::string title;
    std::vector<TempoMark> tempos;
    std::vector<PartPerformance> parts;  // in the order of their staves, together all staves
    // By entry number and note id: which of its part's instruments plays a note that names one.
    std::map<std::pair<std::uint32_t, std::uint16_t>, std::size_t> instrumentOf;
};

}  // namespace rovescio::engine
