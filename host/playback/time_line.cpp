// Lengths of measures by their contents.
#include "playback/time_line.h"

#include <algorithm>

namespace rovescio::playback {

namespace {

using engine::Document;
using engine::Fraction;

Fraction lengthOfMeasure(const Document& document, short measure) {
    Fraction end;
    std::int32_t nominal = 0;
    for (const short staff : document.staffNumbers()) {
        nominal = std::max(nominal, document.staffMeasure(staff, measure).duration);
        for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
            forEachPlaced(document.entries({staff, measure, layer}),
                          [&](const engine::StoredEntry& entry, const Fraction& start) {
                              end = std::max(end, sum(start, engine::lengthOf(entry)));
                          });
        }
    }
    return end > Fraction(0) ? end : Fraction(nominal);
}

}  // namespace

Fraction sum(const Fraction& time, const Fraction& length) {
    const Fraction exact = time + length;
    return exact.isSound() ? exact : Fraction(std::int64_t{time.floor()} + length.floor());
}

double quarters(const Fraction& time) {
    return static_cast<double>(time.numerator()) /
           (static_cast<double>(time.denominator()) * engine::kQuarter);
}

TimeLine::TimeLine(const Document& document) : starts_(1) {
    for (const short measure : document.measureNumbers()) {
        starts_.push_back(sum(starts_.back(), lengthOfMeasure(document, measure)));
    }
}

Fraction TimeLine::at(const engine::ScorePlace& place) const {
    return sum(startOf(place.measure), place.position);
}

}  // namespace rovescio::playback
