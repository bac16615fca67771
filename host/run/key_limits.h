// Music that some steps of a transformation leave as it is: the plug-in transposes by intervals and inverts
// around an axis only in major and minor keys.
#pragma once

#include <string>
#include <vector>

#include "dialogs/transformation_script.h"
#include "engine/model/document.h"
#include "engine/model/problem.h"
#include "run/selection.h"

namespace rovescio::run {

// Whether a transformation does anything to notes in a key.
bool reaches(const dialogs::Transformation& transformation, const engine::KeySignature& key);

// Which notes of the selection stay where they are because of their keys, staff by staff; nothing for staves
// without pitches, of which nobody expects anything else.
std::vector<std::string> notesLeft(const engine::Document& document, const Selection& selection,
                                   const dialogs::Transformation& transformation);

// The problem of a selection that has no other notes.
engine::Problem nothingReached(const dialogs::Transformation& transformation);

}  // namespace rovescio::run
