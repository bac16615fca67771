// The `width` of a measure and the <measure-distance> of its <print>.
#include "musicxml/measure_layout.h"

#include <optional>
#include <set>
#include <string>

#include "musicxml/numbers.h"
#include "musicxml/tag_names.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

namespace {

constexpr std::int64_t kMostHundredths = 32767;

std::string tenths(std::int16_t hundredths) {
    std::string text = std::to_string(hundredths / 10);
    if (hundredths % 10 != 0) text += "." + std::to_string(hundredths % 10);
    return text;
}

void editWidth(std::size_t begin, std::int16_t width, TextEdits& edits) {
    const Attribute old = findAttribute(edits.text(), begin, "width");
    const std::string text = width == 0 ? "" : " width=\"" + tenths(width) + "\"";
    if (old.exists()) {
        edits.replace(old.begin, old.end, text);
    } else if (width != 0) {
        TextWalk walk(edits.text());
        walk.restart(begin);
        if (!walk.next(0)) return;
        std::size_t end = walk.element().contentBegin - 1;
        if (edits.text()[end - 1] == '/') --end;
        edits.replace(end, end, text);
    }
}

struct PrintText {
    Element print, layout, distance;
    Element before;  // the last child that stands before a <measure-layout>
};

PrintText scanPrint(std::string_view text, std::size_t contents) {
    PrintText found;
    TextWalk walk(text);
    walk.restart(contents);
    if (!walk.next(0)) return found;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        if (walk.tagNumber() != tag("print")) continue;
        found.print = walk.element();
        bool children = false;
        for (const std::size_t inner = walk.enter(); walk.next(inner); children = true) {
            switch (walk.tagNumber()) {
                case tag("page-layout"):
                case tag("system-layout"):
                case tag("staff-layout"):
                    found.before = walk.whole();
                    break;
                case tag("measure-layout"): {
                    found.layout = walk.element();
                    for (const std::size_t last = walk.enter(); walk.next(last);) {
                        if (walk.tagNumber() == tag("measure-distance")) found.distance = walk.whole();
                    }
                    break;
                }
                default:
                    break;
            }
        }
        if (children) walk.complete(found.print);
        break;
    }
    return found;
}

void editDistance(std::size_t contents, std::int16_t distance, bool add, TextEdits& edits) {
    const PrintText old = scanPrint(edits.text(), contents);
    const std::string value = tenths(distance);
    const std::string layout =
        "<measure-layout><measure-distance>" + value + "</measure-distance></measure-layout>";
    if (old.distance.exists()) {
        edits.replaceContent(old.distance, value);
    } else if (!add || distance == 0) {
        return;
    } else if (!old.print.exists()) {
        TextWalk walk(edits.text());
        walk.restart(contents);
        if (walk.next(0) && walk.element().contentBegin != 0) {
            edits.replace(walk.element().contentBegin, walk.element().contentBegin,
                          "<print>" + layout + "</print>");
        }
    } else if (old.layout.exists()) {
        edits.replace(old.layout.contentBegin, old.layout.contentBegin,
                      "<measure-distance>" + value + "</measure-distance>");
    } else if (old.before.exists()) {
        edits.insertAfter(old.before, layout);
    } else if (edits.text()[old.print.contentBegin - 2] == '/') {
        edits.replace(old.print.contentBegin - 2, old.print.contentBegin, ">" + layout + "</print>");
    } else {
        edits.replace(old.print.contentBegin, old.print.contentBegin, layout);
    }
}

}  // namespace

std::int16_t hundredths(std::string_view tenths) {
    const std::optional<Decimal> length = parseDecimal(tenths);
    if (!length || length->value <= 0) return 0;
    const std::int64_t rounded = (10 * length->value + length->scale / 2) / length->scale;
    return static_cast<std::int16_t>(rounded > kMostHundredths ? kMostHundredths : rounded);
}

std::int16_t distanceIn(const pugi::xml_node& print) {
    return hundredths(print.child("measure-layout").child_value("measure-distance"));
}

std::size_t measureBegin(std::string_view text, std::size_t contents) {
    constexpr std::string_view kStart = "<measure";
    std::size_t begin = text.rfind(kStart, contents);
    while (begin != std::string_view::npos && begin > 0 && text[begin + kStart.size()] > ' ' &&
           text[begin + kStart.size()] != '>') {
        begin = text.rfind(kStart, begin - 1);
    }
    return begin;
}

void editLayouts(const SourceMap& sources, const engine::Document& document, TextEdits& edits) {
    for (const auto& [measure, old] : document.changedMeasures()) {
        const engine::MeasureLayout& layout = document.measure(measure).layout;
        std::set<std::size_t> begins;  // parts may share a measure element
        for (const PartSource& part : sources.parts) {
            const std::uint32_t contents = part.measures[static_cast<std::size_t>(measure - 1)];
            if (contents == 0) continue;
            const std::size_t begin = measureBegin(edits.text(), contents);
            const bool first = begins.empty();
            if (begins.insert(begin).second && layout.width != old.layout.width) {
                editWidth(begin, layout.width, edits);
            }
            if (layout.spaceBefore != old.layout.spaceBefore) {
                editDistance(contents, layout.spaceBefore, first, edits);
            }
        }
    }
}

}  // namespace rovescio::musicxml
