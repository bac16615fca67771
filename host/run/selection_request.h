// Which music a user asks for, not yet looked up in a score.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace rovescio::run {

// One end of a range of measures.
struct MeasurePoint {
    bool counted = false;        // "#5": the fifth measure from the start; else a printed number
    std::string number;          // the digits after '#', or the printed number
    std::optional<double> beat;  // from 1; none for the whole measure

    friend bool operator==(const MeasurePoint&, const MeasurePoint&) = default;
};

// A missing end is the start or the end of the score.
struct MeasureRange {
    std::optional<MeasurePoint> first;
    std::optional<MeasurePoint> last;

    friend bool operator==(const MeasureRange&, const MeasureRange&) = default;
};

// Empty means the whole score.
using MeasureRanges = std::vector<MeasureRange>;

// Runs of numbers, ascending and apart: {{1, 2}, {4, 4}}. Empty means all.
using NumberRuns = std::vector<std::pair<int, int>>;

struct SelectionRequest {
    MeasureRanges measures;
    NumberRuns staves;
    NumberRuns layers;

    [[nodiscard]] bool isGiven() const { return !measures.empty() || !staves.empty() || !layers.empty(); }
};

}  // namespace rovescio::run
