// What stands in the way of a retrograde, and where.
#pragma once

#include <string>
#include <vector>

#include "engine/interface/session.h"
#include "run/selection.h"

namespace rovescio::run {

// One line for each kind of obstacle on each staff of the selection: "staff 1, measures 3-5, 8: ...". The
// frames are looked at as the plug-in sees them, those of hidden layers too; only the lengths of hidden
// layers do not matter.
std::vector<std::string> retrogradeObstacles(engine::Session& session, const Selection& selection);

}  // namespace rovescio::run
