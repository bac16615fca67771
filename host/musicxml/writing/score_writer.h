// Brings a score in line with its changed document.
#pragma once

#include <string>
#include <vector>

#include "engine/model/document.h"
#include "engine/model/problem.h"
#include "musicxml/reading/source_map.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

struct ScoreEdits {
    xml::Edits edits;                  // none when nothing changed
    std::vector<std::string> notices;  // for the user, each once
};

// Finds the edits that bring the changes of a document into the tree that it was read from; the tree must
// outlive them. Fails when something cannot be written; the file name is for the message.
engine::Result<ScoreEdits> editScore(const xml::Tree& tree, const SourceMap& sources,
                                     const engine::Document& document, const std::string& file);

}  // namespace rovescio::musicxml
