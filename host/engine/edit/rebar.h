// Distributes the music of a region over its measures again, after a transformation has changed its order.
#pragma once

#include <array>

#include "contract/records.h"
#include "engine/model/document.h"
#include "engine/model/problem.h"

namespace rovescio::engine {

class Consequences;

// In every shown layer of the region, puts the entries one after the other from the start of its first
// measure to the end of its last. Notes that cross a barline are cut and tied, notes that only a barline had
// divided are joined again, rests that were cut are grouped by the metre, and grace entries stay with their
// notes. Layers filled with nothing but silence become empty again where the staff has other music. Ties are
// mended to have two ends, written pitches stay what they were before the open mass edit in whatever key the
// notes stand now, and which accidentals show is decided afresh.
//
// A problem, with no entry moved, when a layer does not fill its measures exactly or the region is none.
Result<Done> rebar(Document& document, Consequences& consequences,
                   const std::array<bool, kMaxLayers>& layerShown, const EREGION& region);

}  // namespace rovescio::engine
