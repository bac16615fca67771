// Walks the children of a measure and counts their time.
#include "musicxml/measure_text.h"

#include <algorithm>
#include <utility>

#include "musicxml/measure_clock.h"
#include "musicxml/tag_names.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

namespace {

// What a child says about time, and a note about its groups.
struct Timing {
    std::string duration;
    bool grace = false;
    std::string divisions;
    NoteGroups groups;
};

Timing timingOf(TextWalk& walk, std::string_view text) {
    Timing timing;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        switch (walk.tagNumber()) {
            case tag("duration"):
                timing.duration = walk.value();
                break;
            case tag("grace"):
                timing.grace = true;
                break;
            case tag("divisions"):
                timing.divisions = walk.value();
                break;
            default:
                readGroup(walk, text, timing.groups);
                break;
        }
    }
    return timing;
}

}  // namespace

MeasureText::MeasureText(std::string_view text, const Decimal& divisions) : size_(text.size()) {
    TextWalk walk(text);
    walk.restart(0);
    if (!walk.next(0)) return;
    Element measure = walk.element();
    measure.contentEnd = text.rfind("</");
    startTag_ = text.substr(0, measure.contentBegin);
    if (startTag_.ends_with("/>")) {
        const std::string name = startTag_.substr(1, startTag_.find_first_of(" \t\r\n/") - 1);
        startTag_.replace(startTag_.size() - 2, 2, ">");
        endTag_ = "</" + name + ">";
        return;
    }
    endTag_ = text.substr(measure.contentEnd);

    MeasureClock clock;
    clock.setDivisions(divisions);
    clock.reset();
    std::size_t reached = measure.contentBegin;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        Element child = walk.element();
        const std::uint64_t name = walk.tagNumber();
        if (indentation_.empty()) indentation_ = text.substr(reached, child.begin - reached);
        const bool timed = name == tag("note") || name == tag("backup") || name == tag("forward") ||
                           name == tag("attributes");
        Timing timing = timed ? timingOf(walk, text) : Timing{};
        if (timed && walk.element().begin != child.begin) {
            walk.complete(child);
        } else {
            child = walk.whole();
        }
        const std::string_view slice = trimmed(text.substr(reached, child.end - reached));
        reached = child.end;
        const engine::Fraction time = clock.exactNow();
        const MeasureClock::Span span = clock.span(parseDecimal(timing.duration).value_or(Decimal{}));
        switch (name) {
            case tag("note"):
                if (!timing.groups.inChord && !timing.grace) clock.forward(span);
                notes_.push_back({slice, std::move(timing.groups)});
                break;
            case tag("backup"):
                clock.back(span);
                break;
            case tag("forward"):
                clock.forward(span);
                break;
            default:
                if (const auto changed = parseDecimal(timing.divisions)) clock.setDivisions(*changed);
                items_.push_back({slice, name, time});
                break;
        }
    }
    closing_ = text.substr(reached, measure.contentEnd - reached);
    // Text on one line has no whitespace to copy; a comment before the first child stays with it alone.
    if (indentation_.find('<') != std::string_view::npos) indentation_ = "\n";
}

}  // namespace rovescio::musicxml
