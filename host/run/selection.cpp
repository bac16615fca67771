// Lookup of measures, beats, staves and layers.
#include "run/selection.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

namespace rovescio::run {

namespace {

using engine::Document;
using engine::FrameAddress;
using engine::problemWith;
using engine::Result;

// The position of an end that takes in the whole measure.
constexpr std::int32_t kWholeMeasure = std::numeric_limits<std::int32_t>::max();

// Beats are written with few decimals ("1.33"), notes of tuplets lie between: this much, a 256th part of a
// quarter, still counts as the same place.
constexpr std::int32_t kBeatTolerance = engine::kQuarter / 256;

std::string existingMeasures(const Document& document) {
    return "The score has measures " + document.measure(1).label + " to " +
           document.measure(document.measureCount()).label + " (#1 to #" +
           std::to_string(document.measureCount()) + ")";
}

Result<short> findMeasure(const Document& document, const MeasurePoint& point) {
    if (point.counted) {
        int count = 0;
        const char* end = point.number.data() + point.number.size();
        const auto parsed = std::from_chars(point.number.data(), end, count);
        if (parsed.ec != std::errc() || count < 1 || count > document.measureCount()) {
            return problemWith("there is no measure #" + point.number, existingMeasures(document));
        }
        return static_cast<short>(count);
    }
    short found = 0;
    for (const short measure : document.measureNumbers()) {
        if (document.measure(measure).label != point.number) continue;
        if (found != 0) {
            return problemWith("several measures have the number " + point.number + ", among them #" +
                                   std::to_string(found) + " and #" + std::to_string(measure),
                               "Say which you mean by counting from the start: {measures} \"#" +
                                   std::to_string(found) + "\"");
        }
        found = measure;
    }
    if (found == 0) return problemWith("there is no measure " + point.number, existingMeasures(document));
    return found;
}

// The place of a beat in duration units. The first staff selected gives the time signature.
Result<double> beatPosition(const Document& document, short staff, short measure, double beat) {
    const engine::StaffMeasure& place = document.staffMeasure(staff, measure);
    const double position = (beat - 1) * place.beat;
    if (position >= place.duration) {
        const std::int32_t beats = (place.duration + place.beat - 1) / place.beat;
        return problemWith("measure " + document.measure(measure).label + " has only " +
                               std::to_string(beats) + (beats == 1 ? " beat" : " beats"),
                           "Beats count from 1, in the beats of the time signature");
    }
    return position;
}

// Start and end of the region, the same for all staves.
Result<EREGION> findMeasures(const Document& document, const MeasureRange& range, short firstStaff) {
    EREGION region{};
    region.start.measure = 1;
    region.end.measure = document.measureCount();
    region.end.position = kWholeMeasure;
    if (range.first) {
        const Result<short> measure = findMeasure(document, *range.first);
        if (!measure) return measure.problem();
        region.start.measure = measure.value();
        if (range.first->beat) {
            const Result<double> position =
                beatPosition(document, firstStaff, measure.value(), *range.first->beat);
            if (!position) return position.problem();
            const auto start = static_cast<std::int32_t>(std::floor(position.value()));
            region.start.position = std::max(0, start - kBeatTolerance);
        }
    }
    if (range.last) {
        const Result<short> measure = findMeasure(document, *range.last);
        if (!measure) return measure.problem();
        region.end.measure = measure.value();
        if (range.last->beat) {
            const Result<double> position =
                beatPosition(document, firstStaff, measure.value(), *range.last->beat);
            if (!position) return position.problem();
            region.end.position = static_cast<std::int32_t>(std::ceil(position.value())) + kBeatTolerance;
        }
    }
    const bool backwards = region.start.measure > region.end.measure ||
                           (region.start.measure == region.end.measure && range.first && range.first->beat &&
                            range.last && range.last->beat && *range.first->beat > *range.last->beat);
    if (backwards) return problemWith("the range of measures runs backwards", "Put the earlier end first");
    return region;
}

// A range that was asked for and where it is.
struct FoundRange {
    MeasureRange request;
    EREGION region;
};

// A place in the order of the score. By value: the fields of packed records have no addresses.
std::pair<int, int> placeOf(int measure, int position) {
    return {measure, position};
}

bool startsBefore(const FoundRange& left, const FoundRange& right) {
    return placeOf(left.region.start.measure, left.region.start.position) <
           placeOf(right.region.start.measure, right.region.start.position);
}

// All ranges in the order of the score; the whole score when none was asked for.
Result<std::vector<FoundRange>> findRanges(const Document& document, const MeasureRanges& requests,
                                           short firstStaff) {
    std::vector<FoundRange> ranges;
    for (const MeasureRange& request : requests.empty() ? MeasureRanges(1) : requests) {
        const Result<EREGION> region = findMeasures(document, request, firstStaff);
        if (!region) return region.problem();
        ranges.push_back({request, region.value()});
    }
    std::ranges::sort(ranges, startsBefore);
    for (std::size_t i = 1; i < ranges.size(); ++i) {
        const auto& end = ranges[i - 1].region.end;
        const auto& start = ranges[i].region.start;
        if (placeOf(start.measure, start.position) > placeOf(end.measure, end.position)) continue;
        return problemWith("two of the ranges of measures overlap",
                           "Name each measure once; otherwise it would be changed twice");
    }
    return ranges;
}

std::string runsText(const NumberRuns& runs) {
    std::string text;
    for (const auto& [first, last] : runs) {
        if (!text.empty()) text += ",";
        text += std::to_string(first);
        if (last > first) text += "-" + std::to_string(last);
    }
    return text;
}

bool several(const NumberRuns& runs) {
    return runs.size() > 1 || runs.front().second > runs.front().first;
}

std::string pointText(const Document& document, short measure, const std::optional<MeasurePoint>& point) {
    std::string text = point && point->counted ? "#" + point->number : document.measure(measure).label;
    if (point && point->beat) {
        char digits[32];
        const auto end = std::to_chars(std::begin(digits), std::end(digits), *point->beat).ptr;
        text += ":" + std::string(digits, end);
    }
    return text;
}

std::string rangeText(const Document& document, const FoundRange& found) {
    const std::string first = pointText(document, found.region.start.measure, found.request.first);
    const std::string last = pointText(document, found.region.end.measure, found.request.last);
    return first == last ? first : first + "-" + last;
}

std::string describe(const Document& document, const SelectionRequest& request,
                     const std::vector<FoundRange>& ranges) {
    std::string measures;
    for (const FoundRange& range : ranges) {
        if (!measures.empty()) measures += ",";
        measures += rangeText(document, range);
    }
    const bool isOne = ranges.size() == 1 && measures.find('-') == std::string::npos;
    std::string text =
        request.measures.empty() ? "all measures" : (isOne ? "measure " : "measures ") + measures;
    if (!request.staves.empty()) {
        text += (several(request.staves) ? ", staves " : ", staff ") + runsText(request.staves);
    }
    if (!request.layers.empty()) {
        text += (several(request.layers) ? ", layers " : ", layer ") + runsText(request.layers);
    }
    return text;
}

bool hasNote(const Document& document, const Selection& selection) {
    bool found = false;
    forEachFrame(selection, [&](const EREGION& region, const FrameAddress& address) {
        for (const engine::StoredEntry& entry : document.entries(address)) {
            const bool isNote = (entry.entryFlags & ENTRY_NOTE) != 0 && entry.noteCount > 0;
            found = found || (isNote && contains(region, address, entry.elapsed));
        }
    });
    return found;
}

}  // namespace

void forEachFrame(const Selection& selection,
                  const std::function<void(const EREGION&, const FrameAddress&)>& visit) {
    for (const EREGION& region : selection.regions) {
        for (const short measure : engine::numbers(region.start.measure, region.end.measure)) {
            for (const short staff : engine::numbers(region.start.slot, region.end.slot)) {
                for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                    if (!selection.layers[static_cast<std::size_t>(layer)]) continue;
                    visit(region, {staff, measure, layer});
                }
            }
        }
    }
}

bool contains(const EREGION& region, const FrameAddress& address, std::int32_t elapsed) {
    if (address.staff < region.start.slot || address.staff > region.end.slot ||
        address.measure < region.start.measure || address.measure > region.end.measure) {
        return false;
    }
    const bool afterStart = address.measure > region.start.measure || elapsed >= region.start.position;
    const bool beforeEnd = address.measure < region.end.measure || elapsed <= region.end.position;
    return afterStart && beforeEnd;
}

std::string measureRuns(const Document& document, const std::set<short>& measures) {
    std::string text;
    for (auto first = measures.begin(); first != measures.end();) {
        auto last = first;
        while (std::next(last) != measures.end() && *std::next(last) == *last + 1) ++last;
        if (!text.empty()) text += ", ";
        text += document.measure(*first).label;
        if (last != first) text += "-" + document.measure(*last).label;
        first = std::next(last);
    }
    return text;
}

Result<Selection> select(const Document& document, const SelectionRequest& request) {
    if (document.staffCount() == 0 || document.measureCount() == 0) {
        return problemWith("the score has no music",
                           "Choose a score with at least one staff and one measure");
    }
    NumberRuns staves = request.staves;
    if (staves.empty()) staves = {{1, document.staffCount()}};
    if (staves.back().second > document.staffCount()) {
        return problemWith("there is no staff " + std::to_string(staves.back().second),
                           document.staffCount() == 1
                               ? "The score has one staff"
                               : "The score has staves 1 to " + std::to_string(document.staffCount()) +
                                     "; {info} lists them");
    }
    const Result<std::vector<FoundRange>> found =
        findRanges(document, request.measures, static_cast<short>(staves.front().first));
    if (!found) return found.problem();

    Selection selection;
    for (const FoundRange& range : found.value()) {
        for (const auto& [first, last] : staves) {
            EREGION region = range.region;
            region.start.slot = static_cast<std::int16_t>(first);
            region.end.slot = static_cast<std::int16_t>(last);
            selection.regions.push_back(region);
        }
    }
    if (!request.layers.empty()) {
        selection.layers.fill(false);
        for (const auto& [first, last] : request.layers) {
            for (int layer = first; layer <= std::min<int>(last, engine::kMaxLayers); ++layer) {
                selection.layers[static_cast<std::size_t>(layer - 1)] = true;
            }
        }
    }
    selection.description = describe(document, request, found.value());
    if (!hasNote(document, selection)) {
        return problemWith("there is no note in the selection (" + selection.description + ")",
                           "Choose other measures, staves or layers; {info} shows what the score has");
    }
    return selection;
}

}  // namespace rovescio::run
