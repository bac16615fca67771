// The forms of a twelve-note row, made by the plug-in from the row itself.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "cli/exit_code.h"
#include "cli/transformation_run.h"
#include "engine/model/key_signature.h"
#include "engine/model/problem.h"
#include "musicxml/score_file.h"

namespace rovescio::cli {

inline constexpr std::size_t kRowLength = 12;

using Row = std::array<engine::SpelledPitch, kRowLength>;

// Reads twelve different pitch classes between spaces or commas: numbers from 0 (C) to 11, or note names such
// as C, F# or B-flat. Problems: no such pitch, one that comes twice, not twelve of them.
engine::Result<Row> parseRow(const std::string& text);

struct RowForms {
    ExitCode code = ExitCode::ok;
    engine::Problem problem;
    std::size_t count = 0;
    std::string bytes;  // of the score file
};

// A score with a form in each measure: P0 to P11, then likewise I, R and RI. P3 is the row three semitones
// higher; I3 is its inversion around its own first note, three semitones higher; R3 is P3 backwards, RI3 is
// I3 backwards.
RowForms rowForms(const Row& row, musicxml::Container container, const RunOptions& options);

}  // namespace rovescio::cli
