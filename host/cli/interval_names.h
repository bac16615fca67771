// Intervals as people write them on the command line.
#pragma once

#include <string>

#include "dialogs/transformation_script.h"
#include "engine/model/problem.h"

namespace rovescio::cli {

// Reads an interval name: "up minor third", "down P5", "m-3", "min3", "a whole tone", "an octave and a major
// third". The problem of an unknown name tells what is understood, and the name that was meant if that is
// clear.
engine::Result<dialogs::Transposition> parseInterval(const std::string& name);

// Semitones, negative for down; spelled as minor or diminished intervals (flats) or as augmented ones
// (sharps).
dialogs::Transposition bySemitones(int semitones, dialogs::Transposition::Spelling spelling);

// Diatonic steps within the key, negative for down.
dialogs::Transposition bySteps(int steps);

// The interval with octaves more in its direction. Negative ones are taken off it, and the rest goes in the
// other direction: a major seventh up without an octave is a minor second down.
dialogs::Transposition withOctaves(dialogs::Transposition interval, int octaves);

// Octaves alone, negative for down.
dialogs::Transposition byOctaves(int octaves);

}  // namespace rovescio::cli
