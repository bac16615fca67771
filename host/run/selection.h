// The user's selection looked up in a score.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "contract/records.h"
#include "engine/model/document.h"
#include "engine/model/problem.h"
#include "run/selection_request.h"

namespace rovescio::run {

struct Selection {
    std::vector<EREGION> regions;  // one for each run of neighbouring staves
    std::array<bool, engine::kMaxLayers> layers = {true, true, true, true};
    std::string description;  // "measures 3-10, staves 1-2"
};

// Finds measures and staves. Problems: no such measure or staff (told with those that exist), a printed
// number that several measures have, a range that runs backwards, no note inside.
engine::Result<Selection> select(const engine::Document& document, const SelectionRequest& request);

// Visits the frames of the selection's shown layers, with the region that each belongs to.
void forEachFrame(const Selection& selection,
                  const std::function<void(const EREGION&, const engine::FrameAddress&)>& visit);

// Whether what begins at a position of a frame's measure lies inside a region.
bool contains(const EREGION& region, const engine::FrameAddress& address, std::int32_t elapsed);

// "3-5, 8" in the measures' printed numbers.
std::string measureRuns(const engine::Document& document, const std::set<short>& measures);

}  // namespace rovescio::run
