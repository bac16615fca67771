// Scores of any size for measuring.
#pragma once

#include <cstdint>
#include <string>

#include "engine/document.h"

namespace rovescio::bench {

// One staff in changing keys, eight eighth notes to the measure.
engine::Document makeDocument(std::int64_t notes);

// The same kind of music on two staves as a MusicXML file; fully notated, as a notation program writes it.
std::string makeMusicXml(std::int64_t notes);

}  // namespace rovescio::bench
