// Scores of any size for measuring.
#pragma once

#include <cstdint>
#include <string>

#include "engine/model/document.h"

namespace rovescio::bench {

// Staves in changing keys, measures of as many equal notes; one staff as long as it can hold them.
engine::Document makeDocument(std::int64_t notes, int perMeasure = 8);

// The same kind of music on two staves as a MusicXML file; fully notated, as a notation program writes it.
std::string makeMusicXml(std::int64_t notes);

}  // namespace rovescio::bench
