// Reading of ranges and lists.
#include "cli/selection_request.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "cli/messages.h"

namespace rovescio::cli {

namespace {

using engine::Problem;
using engine::Result;
using run::MeasurePoint;
using run::MeasureRange;
using run::MeasureRanges;
using run::NumberRuns;

Problem badMeasures(const std::string& text, const std::string& why) {
    return problemWith("--measures \"" + text + "\": " + why,
                       "Write 7, 3-10, 3-, -10 or several as 1-4,9-12, with beats 3:2-10:1.5, or by count "
                       "from the start #5-#8");
}

Result<MeasurePoint> parsePoint(std::string_view part, const std::string& whole) {
    MeasurePoint point;
    const std::size_t colon = part.find(':');
    std::string_view number = part.substr(0, colon);
    if (number.starts_with('#')) {
        point.counted = true;
        number.remove_prefix(1);
        if (number.find_first_not_of("0123456789") != std::string_view::npos) {
            return badMeasures(whole, "a count is missing after #");
        }
    }
    if (number.empty()) return badMeasures(whole, "a measure number is missing");
    point.number = number;
    if (colon != std::string_view::npos) {
        const std::string_view beatText = part.substr(colon + 1);
        double beat = 0;
        const auto [end, error] = std::from_chars(beatText.data(), beatText.data() + beatText.size(), beat);
        // Written so that what is no number at all fails as well.
        if (error != std::errc() || end != beatText.data() + beatText.size() ||
            !(beat >= 1 && beat < 10000)) {
            return badMeasures(whole, "\"" + std::string(beatText) + "\" is not a beat; beats count from 1");
        }
        point.beat = beat;
    }
    return point;
}

// Other ways to write a range, as word processors and programming languages have them.
std::string withHyphens(std::string text) {
    for (const std::string_view sign : {"\u2013", "\u2014", "\u2212", ".."}) {
        for (std::size_t at = 0; (at = text.find(sign, at)) != std::string::npos;)
            text.replace(at, sign.size(), "-");
    }
    return text;
}

// What stands between commas, without blanks around it; at least one part.
std::vector<std::string_view> partsOf(std::string_view text) {
    std::vector<std::string_view> parts;
    for (std::size_t comma = 0; comma != std::string_view::npos;) {
        comma = text.find(',');
        std::string_view part = text.substr(0, comma);
        while (part.starts_with(' ')) part.remove_prefix(1);
        while (part.ends_with(' ')) part.remove_suffix(1);
        parts.push_back(part);
        if (comma != std::string_view::npos) text.remove_prefix(comma + 1);
    }
    return parts;
}

Result<MeasureRange> parseRange(std::string_view whole, const std::string& text) {
    MeasureRange range;
    const std::size_t dash = whole.find('-');
    if (dash == std::string_view::npos) {
        Result<MeasurePoint> only = parsePoint(whole, text);
        if (!only) return only.problem();
        if (only->beat) return badMeasures(text, "a single beat is not a range");
        range.first = range.last = *only;
        return range;
    }
    const std::string_view first = whole.substr(0, dash);
    const std::string_view last = whole.substr(dash + 1);
    if (first.empty() && last.empty()) return badMeasures(text, "both ends are missing");
    for (const auto& [part, point] : {std::pair(first, &range.first), std::pair(last, &range.last)}) {
        if (part.empty()) continue;
        Result<MeasurePoint> parsed = parsePoint(part, text);
        if (!parsed) return parsed.problem();
        *point = *parsed;
    }
    return range;
}

// Reads a positive number; 0 when the text is none.
int positive(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::max(number, 0) : 0;
}

}  // namespace

Result<MeasureRanges> parseMeasures(const std::string& text) {
    MeasureRanges ranges;
    const std::string plain = withHyphens(text);
    for (const std::string_view part : partsOf(plain)) {
        Result<MeasureRange> range = parseRange(part, text);
        if (!range) return range.problem();
        ranges.push_back(std::move(*range));
    }
    return ranges;
}

Result<NumberRuns> parseNumberRuns(const std::string& text, const std::string& what) {
    const Problem bad = problemWith("--" + what + " \"" + text + "\" is not a list of " + what,
                                    "Write numbers and ranges, such as 1-2 or 1,3-4");
    NumberRuns runs;
    const std::string plain = withHyphens(text);
    for (const std::string_view part : partsOf(plain)) {
        const std::size_t dash = part.find('-');
        const int first = positive(part.substr(0, dash));
        const int last = dash == std::string_view::npos ? first : positive(part.substr(dash + 1));
        if (first == 0 || last < first) return bad;
        runs.emplace_back(first, last);
    }
    std::sort(runs.begin(), runs.end());
    NumberRuns joined;
    for (const auto& run : runs) {
        if (!joined.empty() && run.first <= joined.back().second + 1) {
            joined.back().second = std::max(joined.back().second, run.second);
        } else {
            joined.push_back(run);
        }
    }
    return joined;
}

}  // namespace rovescio::cli
