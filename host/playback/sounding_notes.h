// What sounds of a part: ties joined, grace notes given their time, written pitches brought to sound.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "engine/interface/playback_list.h"
#include "engine/model/document.h"
#include "engine/model/performance.h"
#include "playback/time_line.h"

namespace rovescio::playback {

struct SoundingNote {
    engine::Fraction start;  // duration units from the start of the score
    engine::Fraction end;
    short staff = 1;
    std::size_t instrument = 0;  // of the part
    bool percussion = false;
    int key = 60;       // MIDI note
    int velocity = 80;  // 1 to 127
};

// The finest division of time that notes need.
class TimeGrid {
  public:
    void add(const engine::Fraction& time);
    // Ticks of a quarter on which all times added lie; 0 when no number up to `most` does it.
    [[nodiscard]] int ticksPerQuarter(int most) const;

  private:
    std::int64_t denominator_ = 1;  // of a quarter
};

// The notes of some staves of a part, by staff and start. Layers that are not shown are silent. The grid is
// told all times but those of grace notes, which are not an exact part of anything.
std::vector<SoundingNote> soundingNotes(const engine::Document& document,
                                        const engine::Performance& performance,
                                        const engine::PartPerformance& part, std::span<const short> staves,
                                        const engine::PlaybackRequest& request,
                                        const std::array<bool, engine::kMaxLayers>& layerShown,
                                        const TimeLine& timeLine, TimeGrid& grid);

}  // namespace rovescio::playback
