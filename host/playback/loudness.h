// How loud a part is at each time, by its marks and hairpins.
#pragma once

#include <vector>

#include "engine/model/performance.h"
#include "playback/time_line.h"

namespace rovescio::playback {

class Loudness {
  public:
    Loudness(const engine::PartPerformance& part, const TimeLine& timeLine);

    // Velocity, 1 to 127, of a note that begins there; mezzo-forte before the first mark.
    [[nodiscard]] int at(const engine::Fraction& time) const;

  private:
    // A level, or a straight way from one to another; times in quarters. What comes after its end is the
    // last level.
    struct Ramp {
        double start = 0;
        double end = 0;
        double from = 0;
        double to = 0;

        [[nodiscard]] double level(double time) const;
    };
    void addHairpin(double start, double end, bool rising);

    std::vector<Ramp> ramps_;    // ascending
    std::vector<Ramp> accents_;  // likewise, each at one time
};

}  // namespace rovescio::playback
