// The `width` of a measure and the <measure-distance> of its <print>.
#include "musicxml/reading/measure_layout.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "musicxml/file/tag_names.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

constexpr std::int64_t kMostHundredths = 32767;

std::string tenths(std::int16_t hundredths) {
    std::string text = std::to_string(hundredths / 10);
    if (hundredths % 10 != 0) text += "." + std::to_string(hundredths % 10);
    return text;
}

void editWidth(xml::Edits& edits, xml::Node measure, std::int16_t width) {
    if (width == 0) {
        edits.removeAttribute(measure, "width");
    } else {
        edits.setAttribute(measure, "width", tenths(width));
    }
}

// Where a <measure-layout> goes: after the layouts of page, system and staves.
void insertLayout(xml::Edits& edits, xml::Node print, xml::Node layout) {
    std::vector<xml::Node> children;
    edits.children(print, children);
    xml::Node before = 0;
    for (const xml::Node child : children) {
        const xml::Name name = edits.name(child);
        if (name == tag("page-layout") || name == tag("system-layout") || name == tag("staff-layout"))
            before = child;
    }
    if (before != 0) {
        edits.insertAfter(before, layout);
    } else {
        edits.insertFirst(print, layout);
    }
}

void editDistance(xml::Edits& edits, xml::Node measure, std::int16_t distance, bool add) {
    const xml::Node print = edits.child(measure, tag("print"));
    const xml::Node layout = print == 0 ? 0 : edits.child(print, tag("measure-layout"));
    const xml::Node old = layout == 0 ? 0 : edits.child(layout, tag("measure-distance"));
    const std::string said = "<measure-distance>" + tenths(distance) + "</measure-distance>";
    if (old != 0) {
        edits.setText(old, tenths(distance));
    } else if (!add || distance == 0) {
        return;
    } else if (layout != 0) {
        edits.insertFirst(layout, edits.make(said));
    } else if (print != 0) {
        insertLayout(edits, print, edits.make("<measure-layout>" + said + "</measure-layout>"));
    } else {
        edits.insertFirst(measure,
                          edits.make("<print><measure-layout>" + said + "</measure-layout></print>"));
    }
}

}  // namespace

std::int16_t hundredths(std::string_view tenths) {
    const std::optional<Decimal> length = parseDecimal(tenths);
    if (!length || length->value <= 0) return 0;
    const std::int64_t rounded = (10 * length->value + length->scale / 2) / length->scale;
    return static_cast<std::int16_t>(rounded > kMostHundredths ? kMostHundredths : rounded);
}

std::int16_t distanceIn(const xml::Element& print) {
    const xml::Element layout = print.child(tag("measure-layout"));
    const xml::Element distance = layout.exists() ? layout.child(tag("measure-distance")) : layout;
    return distance.exists() ? hundredths(distance.text()) : std::int16_t{0};
}

void editLayouts(const SourceMap& sources, const engine::Document& document, xml::Edits& edits) {
    const xml::Tree& tree = edits.tree();
    for (const auto& [measure, old] : document.changedMeasures()) {
        const engine::MeasureLayout& layout = document.measure(measure).layout;
        std::set<xml::Node> known;  // parts may share a measure element
        for (const PartSource& part : sources.parts) {
            const xml::Node contents = part.measures[static_cast<std::size_t>(measure - 1)];
            if (contents == 0) continue;
            const bool isPart = tree.data(contents).name == tag("part");
            const xml::Node element = isPart ? tree.data(contents).parent : contents;
            const bool first = known.empty();
            if (known.insert(element).second && layout.width != old.layout.width) {
                editWidth(edits, element, layout.width);
            }
            if (layout.spaceBefore != old.layout.spaceBefore) {
                editDistance(edits, contents, layout.spaceBefore, first);
            }
        }
    }
}

}  // namespace rovescio::musicxml
