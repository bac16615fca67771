// Writes measures anew whose entries have changed their order, time or number.
#pragma once

#include <set>
#include <span>
#include <utility>

#include "engine/document.h"
#include "musicxml/journal.h"
#include "musicxml/source_map.h"
#include "musicxml/text_edits.h"

namespace rovescio::musicxml {

// A measure of a part, by the part's index.
using PartMeasure = std::pair<std::size_t, short>;

// Replaces the measures in the text. Each note's own text, with the edits that it has so far, goes where its
// entry is now; voices follow one another with steps back between them; everything that is no note keeps its
// time. All edits must be settled, and are again afterwards. False, with the problem in the journal, when the
// notes of a measure do not add up to its length.
bool rewriteMeasures(const std::set<PartMeasure>& measures, const SourceMap& sources,
                     const engine::Document& document, Journal& journal, TextEdits& edits);

}  // namespace rovescio::musicxml
