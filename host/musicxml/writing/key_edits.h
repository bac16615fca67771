// Writes the key signatures of measures whose keys were changed.
#pragma once

#include "engine/model/document.h"
#include "musicxml/file/journal.h"
#include "musicxml/reading/source_map.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

// Brings the <key> elements of the score in line with the keys of the document: of each part they stand at
// the measures where the key now changes, at the start of the first measure, and nowhere else that is
// affected. False, with the problem in the journal, where a key stands at no place that can be edited.
bool editKeys(const SourceMap& sources, const engine::Document& document, Journal& journal,
              xml::Edits& edits);

}  // namespace rovescio::musicxml
