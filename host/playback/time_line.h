// The score's measures one after the other, in exact time.
#pragma once

#include <vector>

#include "engine/edit/pour.h"
#include "engine/model/document.h"
#include "engine/model/fraction.h"
#include "engine/model/performance.h"

namespace rovescio::playback {

// Visits the entries of a frame with the exact time from the start of the measure at which each begins.
template <class Visit>
void forEachPlaced(const engine::PackedEntries& entries, const Visit& visit) {
    engine::Fraction first;
    engine::Fraction second;
    for (const engine::StoredEntry& entry : entries) {
        engine::Fraction& next = (entry.entryFlags & ENTRY_VOICE2) != 0 ? second : first;
        // Where durations do not add up, the document's own count is right, though whole units only.
        if (!next.isSound() || next.floor() != entry.elapsed) next = engine::Fraction(entry.elapsed);
        visit(entry, next);
        if ((entry.entryFlags & ENTRY_STARTS_VOICE2) != 0) second = next;
        next += engine::lengthOf(entry);
    }
}

// A measure lasts as long as the longest of its voices; an empty one as its time signature says.
class TimeLine {
  public:
    explicit TimeLine(const engine::Document& document);

    // Duration units from the start of the score.
    [[nodiscard]] const engine::Fraction& startOf(short measure) const {
        return starts_[static_cast<std::size_t>(measure - 1)];
    }
    [[nodiscard]] const engine::Fraction& endOf(short measure) const {
        return starts_[static_cast<std::size_t>(measure)];
    }
    [[nodiscard]] engine::Fraction at(const engine::ScorePlace& place) const;

  private:
    std::vector<engine::Fraction> starts_;  // and where the last measure ends
};

// A sum that stays sound: where it would have too large a denominator, it is rounded down.
engine::Fraction sum(const engine::Fraction& time, const engine::Fraction& length);

// In quarters, for what need not be exact.
double quarters(const engine::Fraction& time);

}  // namespace rovescio::playback
