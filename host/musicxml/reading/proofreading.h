// Reads the text of a result again before anyone relies on it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/model/document.h"
#include "musicxml/reading/source_map.h"

namespace rovescio::musicxml {

// Parses the text of a score again and compares its parts, measures and the length of each measure with the
// document and with what the file had. A difference is a fault of this program; it is returned as part of a
// sentence.
std::optional<std::string> proofread(std::string_view text, const SourceMap& sources,
                                     const engine::Document& document);

}  // namespace rovescio::musicxml
