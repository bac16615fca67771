// The time that passes in a measure.
#pragma once

#include "musicxml/reading/measure_clock.h"
#include "musicxml/reading/note_reading.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

// How long a note lasts.
struct NoteTime {
    MeasureClock::Span span;  // not valid where the duration is beyond what can be counted
    bool isNominal = false;   // exactly what its value, dots and tuplet ratio say
};

// A duration with decimals, such as 0.333333, means what the note's value says when it comes near to that.
NoteTime timeOf(const NoteReading& note, MeasureClock& clock);

// Counts the time of a measure child by child.
class MeasureTime {
  public:
    // The divisions are those in force at its start.
    explicit MeasureTime(const Decimal& divisions);

    void pass(const xml::Element& child);
    [[nodiscard]] engine::Fraction now() const { return clock_.exactNow(); }
    // Duration units that the measure lasts as far as it has been passed, rounded down.
    [[nodiscard]] std::int32_t end() const { return clock_.end(); }
    [[nodiscard]] const Decimal& divisions() const { return clock_.divisions(); }

  private:
    MeasureClock clock_;
    bool inChord_ = false;  // whether a note has been passed that a chord note can join
};

}  // namespace rovescio::musicxml
