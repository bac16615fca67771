// Writes slurs, hairpins and other lines that were removed or made.
#pragma once

#include "engine/model/document.h"
#include "musicxml/file/journal.h"
#include "musicxml/reading/source_map.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

// Takes the elements of shapes out of the score that the document's records no longer show, with what is left
// empty around them, and puts in those of new ones: slurs at the notes of their entries, hairpins as
// directions before the first note and after the last. False, with the problem in the journal, for a new
// shape that cannot be written.
bool editShapes(const SourceMap& sources, const engine::Document& document, Journal& journal,
                xml::Edits& edits);

}  // namespace rovescio::musicxml
