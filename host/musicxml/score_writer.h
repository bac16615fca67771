// Brings the text of a score in line with its changed document.
#pragma once

#include <string>
#include <vector>

#include "engine/document.h"
#include "engine/problem.h"
#include "musicxml/source_map.h"
#include "musicxml/text_edits.h"

namespace rovescio::musicxml {

struct ScoreEdits {
    TextEdits edits;                   // settled; none when nothing changed
    std::vector<std::string> notices;  // for the user, each once
};

// Finds the edits that bring the pitches, accidentals and ties of the document's
// changed frames into the text that it was read from. Fails when entries were
// added, removed, moved in time or changed in value.
engine::Result<ScoreEdits> editScore(const std::string& text, const SourceMap& sources,
                                     const engine::Document& document, const std::string& file);

}  // namespace rovescio::musicxml
