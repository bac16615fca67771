// The forms of a twelve-note row, made by the plug-in from the row itself.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "engine/model/key_signature.h"
#include "musicxml/score_file.h"
#include "run/plug_in.h"
#include "run/report.h"
#include "run/supervision.h"

namespace rovescio::run {

inline constexpr std::size_t kRowLength = 12;

using Row = std::array<engine::SpelledPitch, kRowLength>;

struct RowForms {
    Report report = {};  // of the last run; without forms unless it is done
    std::size_t count = 0;
    std::string bytes = {};  // of the score file
};

// A score with a form in each measure: P0 to P11, then likewise I, R and RI. P3 is the row three semitones
// higher; I3 is its inversion around its own first note, three semitones higher; R3 is P3 backwards, RI3 is
// I3 backwards.
RowForms rowForms(const Row& row, musicxml::Container container, const PlugIn& plugIn,
                  const Supervision& supervision);

}  // namespace rovescio::run
