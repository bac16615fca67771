// Exact time inside one measure of one part.
#pragma once

#include <cstdint>

#include "engine/model/entry_state.h"
#include "engine/model/fraction.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

// Counts in a fraction of the quarter note that is refined whenever a duration
// needs it, so that no rounding adds up however divisions change.
class MeasureClock {
  public:
    // Sets how many divisions a quarter has; false when that is not a usable
    // number.
    bool setDivisions(const Decimal& divisions);
    // Back to the start of the next measure.
    void reset();

    // A stretch of time in the clock's present unit; valid until the next call
    // that takes a duration.
    struct Span {
        std::int64_t ticks = 0;
        bool valid = false;  // false when the duration is beyond what a measure can hold
    };
    Span span(const Decimal& duration);
    // The same of units * normal / actual duration units.
    Span span(std::int32_t units, int actual, int normal);

    bool forward(const Span& span);
    // False when the time would lie before the measure's start, where it then
    // stays.
    bool back(const Span& span);

    // Whether a span is exactly units * normal / actual duration units.
    [[nodiscard]] bool equals(const Span& span, std::int32_t units, int actual, int normal) const;
    // Duration units, rounded down.
    [[nodiscard]] std::int32_t units(const Span& span) const { return toUnits(span.ticks); }
    [[nodiscard]] std::int32_t now() const { return toUnits(now_); }
    // The latest time reached in this measure.
    [[nodiscard]] std::int32_t end() const { return toUnits(end_); }
    // The same in exact duration units.
    [[nodiscard]] engine::Fraction exactNow() const { return exact(now_); }
    [[nodiscard]] engine::Fraction exactEnd() const { return exact(end_); }
    [[nodiscard]] engine::Fraction exact(const Span& span) const { return exact(span.ticks); }
    // Divisions of a quarter.
    [[nodiscard]] const Decimal& divisions() const { return divisions_; }

  private:
    [[nodiscard]] std::int32_t toUnits(std::int64_t ticks) const;
    [[nodiscard]] engine::Fraction exact(std::int64_t ticks) const;
    bool refine(std::int64_t factor);

    Decimal divisions_{1, 1};
    std::int64_t unit_ = 1;  // ticks of a quarter; always a multiple of divisions_.value
    std::int64_t now_ = 0;
    std::int64_t end_ = 0;
};

}  // namespace rovescio::musicxml
