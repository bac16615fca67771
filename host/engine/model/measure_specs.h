// Measure specifications: what all staves of a measure have in common.
#pragma once

#include <optional>

#include "contract/data_records.h"
#include "engine/model/document.h"

namespace rovescio::engine {

// The specification of a measure. Its key is that of the score in concert pitch; a staff's own key stands so
// many fifths beside it as its instrument transposes.
EDTMeasureSpec2014 measureSpec(const Document& document, short measure);

// What a measure would be with another specification: the keys of staves that are off the standard scales
// stay, all others keep their distance to the key of the score. None when the specification names a key that
// cannot be.
std::optional<MeasureState> stateWith(const Document& document, short measure,
                                      const EDTMeasureSpec2014& spec);

}  // namespace rovescio::engine
