// By how much the staves of a part sound above what is written.
#pragma once

#include <map>
#include <vector>

#include "engine/model/performance.h"

namespace rovescio::playback {

class Transpositions {
  public:
    explicit Transpositions(const engine::PartPerformance& part);

    // In semitones, at a place of a staff.
    [[nodiscard]] int at(short staff, const engine::ScorePlace& place) const;

  private:
    std::map<short, std::vector<engine::TranspositionMark>> marks_;  // by staff, each list in order
};

}  // namespace rovescio::playback
