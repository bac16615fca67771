// Widths of measures and the space before them, in scores and in their text.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/model/document.h"
#include "musicxml/reading/source_map.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

// A length in tenths of a staff space as hundredths; 0 for what is no length.
std::int16_t hundredths(std::string_view tenths);
// The space that a <print> puts before its measure, hundredths of a staff space.
std::int16_t distanceIn(const xml::Element& print);

// Brings widths and distances of changed measures into the score. All other layout has no place there.
void editLayouts(const SourceMap& sources, const engine::Document& document, xml::Edits& edits);

}  // namespace rovescio::musicxml
