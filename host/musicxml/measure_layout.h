// Widths of measures and the space before them, in scores and in their text.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string_view>

#include "engine/document.h"
#include "musicxml/source_map.h"
#include "musicxml/text_edits.h"

namespace rovescio::musicxml {

// A length in tenths of a staff space as hundredths; 0 for what is no length.
std::int16_t hundredths(std::string_view tenths);
// The space that a <print> puts before its measure, hundredths of a staff space.
std::int16_t distanceIn(const pugi::xml_node& print);

// Offset of the measure element around what a part has in the measure, which begins at the offset given.
std::size_t measureBegin(std::string_view text, std::size_t contents);

// Brings widths and distances of changed measures into the text. All other layout has no place there.
void editLayouts(const SourceMap& sources, const engine::Document& document, TextEdits& edits);

}  // namespace rovescio::musicxml
