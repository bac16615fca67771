// Rewrites measures whose entries have changed in order, time or number.
#pragma once

#include <set>
#include <utility>

#include "engine/model/document.h"
#include "musicxml/file/journal.h"
#include "musicxml/reading/source_map.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

// A measure of a part, by the part's index.
using PartMeasure = std::pair<std::size_t, short>;

// Each written note goes where its entry is now; voices follow one another with steps back between them;
// everything that is not a note keeps its time. False, with the problem in the journal, when the notes of a
// measure do not add up to its length or cannot be written there.
bool rewriteMeasures(const std::set<PartMeasure>& measures, const SourceMap& sources,
                     const engine::Document& document, Journal& journal, xml::Edits& edits);

}  // namespace rovescio::musicxml
