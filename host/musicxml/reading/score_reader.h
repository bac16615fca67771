// Builds a document from the tree of a score.
#pragma once

#include <string>
#include <vector>

#include "engine/model/document.h"
#include "engine/model/performance.h"
#include "engine/model/problem.h"
#include "musicxml/reading/source_map.h"

namespace rovescio::musicxml {

// What a score says about itself; empty where it says nothing.
struct ScoreSummary {
    std::string title;
    std::string composer;
};

struct ScoreReading {
    SourceMap sources;
    ScoreSummary summary;
    engine::Performance performance;
    std::vector<std::string> notices;  // for the user, each once
};

// Reads the tree of a score, partwise or timewise, into an empty document. The file name is for messages.
engine::Result<ScoreReading> readScore(const xml::Tree& tree, const std::string& file,
                                       engine::Document& document);

}  // namespace rovescio::musicxml
