// What the name of a result says about its kind.
#pragma once

#include <string>
#include <vector>

#include "engine/model/problem.h"
#include "musicxml/score_file.h"

namespace rovescio::cli {

// Refuses a name that promises another kind of file than a score, with the way to such a file. A name may
// always end as a score that is read does.
engine::Result<engine::Done> checkScoreName(const std::string& name, const std::vector<std::string>& scores);
// Refuses a name that promises a score where a MIDI file is written.
engine::Result<engine::Done> checkMidiName(const std::string& name);

// A name that ends in .mxl asks for a compressed file.
musicxml::Container containerFor(const std::string& name);

// The end of a name from the last dot on, in lower case; empty when there is none.
std::string extensionOf(const std::string& name);

}  // namespace rovescio::cli
