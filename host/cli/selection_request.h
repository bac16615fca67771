// Which music the user asked for, as written on the command line.
#pragma once

#include <string>

#include "engine/model/problem.h"
#include "run/selection_request.h"

namespace rovescio::cli {

// "3-10", "7", "3:2-10:1.5", "3-", "-10", "#5-#8", and several such with commas between them. Here and in
// lists of numbers a range may also be written "3..10" or with a dash.
engine::Result<run::MeasureRanges> parseMeasures(const std::string& text);

// "1-2" or "1,3-4"; overlapping and touching runs become one. `what` names the things for messages.
engine::Result<run::NumberRuns> parseNumberRuns(const std::string& text, const std::string& what);

}  // namespace rovescio::cli
