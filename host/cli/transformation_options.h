// The options that say what is done to the music.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "dialogs/transformation_script.h"
#include "engine/model/problem.h"

namespace CLI {
class App;
}

namespace rovescio::cli {

// The options as they are written, before they are understood.
struct TransformationTexts {
    bool retrograde = false;
    bool mirrorKeys = false;
    bool mirrorSpacing = false;
    bool repair = false;
    std::string transpose;
    std::optional<int> semitones;
    std::optional<int> steps;
    std::optional<int> octaves;
    std::string spelling;
    std::string invert;
    std::string axis;
    bool simplify = false;
    std::string invertChords;
    std::string notes;
    bool removeTies = false;
};

// Adds the options to a group of the help; parsing fills the texts.
void defineTransformations(CLI::App& app, const std::string& group, TransformationTexts& texts);

// What the texts mean; a transformation without steps when none was given. Problems: an unknown interval or
// pitch, an axis that the inversion cannot have.
engine::Result<dialogs::Transformation> understandTransformation(const TransformationTexts& texts);

// The same options as arguments for another process.
std::vector<std::string> argumentsOf(const TransformationTexts& texts);

}  // namespace rovescio::cli
