// Reads a score again that was written, before anyone relies on it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/document.h"
#include "musicxml/source_map.h"

namespace rovescio::musicxml {

// Parses the text of a score anew and compares its parts, measures and the length of each measure with the
// document and with what the file had. What is found is a fault of this program, told as part of a sentence.
std::optional<std::string> proofread(std::string_view text, const SourceMap& sources,
                                     const engine::Document& document);

}  // namespace rovescio::musicxml
