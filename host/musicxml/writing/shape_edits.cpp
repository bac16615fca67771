// Lines removed from the score and written into it.
#include "musicxml/writing/shape_edits.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "musicxml/file/tag_names.h"
#include "musicxml/rules/numbers.h"
#include "musicxml/writing/note_parts.h"

namespace rovescio::musicxml {

namespace {

using engine::Shape;
using engine::SmartShapes;

// Lines at notes can be numbered from 1 to 16.
constexpr int kMostNumbers = 16;

class ShapeWriter {
  public:
    ShapeWriter(const SourceMap& sources, const engine::Document& document, Journal& journal,
                xml::Edits& edits)
        : sources_(sources), document_(document), journal_(journal), edits_(edits) {}

    bool write() {
        const engine::RecordStore& records = document_.records();
        std::vector<std::pair<std::uint16_t, Shape>> made;
        const std::vector<Shape>& asRead = document_.shapes().asRead();
        for (std::size_t i = 0; i < asRead.size(); ++i) {
            const auto number = static_cast<std::uint16_t>(i + 1);
            // Marks without their record go on showing the shape that was read.
            const Shape shape = SmartShapes::recorded(records, number).value_or(asRead[i]);
            const bool shown = SmartShapes::isShown(records, number, shape);
            if (shown && shape == asRead[i]) continue;
            erase(sources_.shapes[i].first);
            erase(sources_.shapes[i].last);
            if (shown) made.emplace_back(number, shape);
        }
        engine::RecordKey key(static_cast<std::uint32_t>(asRead.size()), 0, 0xFFFF);
        while (records.next(kSmartShapeTag, key) != nullptr) {
            const auto number = static_cast<std::uint16_t>(key.owner);
            const std::optional<Shape> shape = SmartShapes::recorded(records, number);
            if (shape && SmartShapes::isShown(records, number, *shape)) made.emplace_back(number, *shape);
        }
        return std::ranges::all_of(made, [&](const auto& numbered) { return add(numbered.second); });
    }

  private:
    // --- out of the score ---

    // A line's end goes with what is left empty around it. What else a direction says stays; a sound that is
    // left alone needs no direction.
    void erase(xml::Node line) {
        const xml::Node around = edits_.parent(line);
        if (edits_.name(around) == tag("notations")) {
            removeFromNotations(edits_, around, line);
            return;
        }
        const xml::Node direction = edits_.parent(around);
        edits_.remove(around);
        if (edits_.child(direction, tag("direction-type")) != 0) return;
        const xml::Node sound = edits_.child(direction, tag("sound"));
        if (sound != 0) edits_.insertAfter(direction, edits_.copy(sound));
        edits_.remove(direction);
    }

    // --- into the score ---

    bool add(const Shape& shape) {
        const auto first = notesOf(shape.firstEntry);
        const auto last = notesOf(shape.lastEntry);
        const bool isSlur = shape.kind == SHAPE_SLUR;
        const bool isHairpin = shape.kind == SHAPE_CRESCENDO || shape.kind == SHAPE_DIMINUENDO;
        if (!first || !last || !(isSlur || isHairpin)) return refuse(shape);
        if (isSlur) return addSlur(shape, first->first, last->first);
        addHairpin(shape, first->first, last->second);
        return true;
    }

    bool refuse(const Shape& shape) {
        if (document_.has(1, shape.firstMeasure)) {
            journal_.setMeasure(document_.measure(shape.firstMeasure).label);
        }
        journal_.fail("a new line cannot be written", 0, "Only slurs and hairpins between notes can.");
        return false;
    }

    // The first and the last note of an entry in the score.
    std::optional<std::pair<xml::Node, xml::Node>> notesOf(std::uint32_t entry) const {
        if (entry < 1 || entry > sources_.entries.size()) return std::nullopt;
        const EntrySource& source = sources_.entries[entry - 1];
        if (source.isGap) return std::nullopt;
        const auto first = sources_.notes.begin() + source.firstNote;
        const auto [low, high] = std::minmax_element(first, first + std::max<int>(source.noteCount, 1));
        return std::pair(*low, *high);
    }

    // The lowest number that no slur of the part has which is drawn over the same measures.
    std::string freeNumber(const Shape& shape) {
        std::set<int> taken;
        const std::vector<Shape>& asRead = document_.shapes().asRead();
        const auto part = [&](short staff) {
            return std::upper_bound(
                sources_.parts.begin(), sources_.parts.end(), staff,
                [](short wanted, const PartSource& at) { return wanted < at.firstStaff; });
        };
        const auto isNear = [&](const Shape& other) {
            return other.firstMeasure <= shape.lastMeasure && shape.firstMeasure <= other.lastMeasure &&
                   part(other.firstStaff) == part(shape.firstStaff);
        };
        for (std::size_t i = 0; i < asRead.size(); ++i) {
            if (asRead[i].kind != SHAPE_SLUR || !isNear(asRead[i])) continue;
            taken.insert(parseInteger(edits_.attribute(sources_.shapes[i].first, "number")).value_or(1));
        }
        for (const auto& [other, number] : added_) {
            if (isNear(other)) taken.insert(number);
        }
        int number = 1;
        while (taken.contains(number)) ++number;
        added_.emplace_back(shape, number);
        return number > kMostNumbers ? std::string() : std::to_string(number);
    }

    static std::string look(const Shape& shape, bool placed) {
        constexpr std::string_view kTypes[] = {"", "solid", "dashed", "dotted", "wavy"};
        constexpr std::string_view kPlacements[] = {"", "above", "below"};
        std::string text;
        if (shape.lineType > 0 && shape.lineType < std::size(kTypes)) {
            text += " line-type=\"" + std::string(kTypes[shape.lineType]) + "\"";
        }
        if (placed && shape.placement > 0 && shape.placement < std::size(kPlacements)) {
            text += " placement=\"" + std::string(kPlacements[shape.placement]) + "\"";
        }
        return text;
    }

    bool addSlur(const Shape& shape, xml::Node first, xml::Node last) {
        const std::string number = freeNumber(shape);
        if (number.empty()) return refuse(shape);
        const std::string start = "<slur type=\"start\" number=\"" + number + "\"" + look(shape, true) + "/>";
        insertIntoNotations(edits_, first, edits_.make(start));
        insertIntoNotations(edits_, last, edits_.make("<slur type=\"stop\" number=\"" + number + "\"/>"));
        return true;
    }

    void addHairpin(const Shape& shape, xml::Node first, xml::Node last) {
        const char* const type = shape.kind == SHAPE_CRESCENDO ? "crescendo" : "diminuendo";
        edits_.insertBefore(first, makeWedge(shape, type, shape.firstStaff));
        const xml::Node stop = makeWedge(shape, "stop", shape.lastStaff);
        const auto [behind, isFirst] = behind_.try_emplace(last, last);
        edits_.insertAfter(behind->second, stop);
        behind->second = stop;
    }

    xml::Node makeWedge(const Shape& shape, const std::string& type, short staff) {
        const std::string placement = shape.placement == 0   ? ""
                                      : shape.placement == 1 ? " placement=\"above\""
                                                             : " placement=\"below\"";
        const auto part = std::prev(
            std::upper_bound(sources_.parts.begin(), sources_.parts.end(), staff,
                             [](short wanted, const PartSource& at) { return wanted < at.firstStaff; }));
        std::string text =
            "<direction" + placement + "><direction-type><wedge type=\"" + type + "\"/></direction-type>";
        if (part->staffCount > 1)
            text += "<staff>" + std::to_string(staff - part->firstStaff + 1) + "</staff>";
        return edits_.make(text + "</direction>");
    }

    const SourceMap& sources_;
    const engine::Document& document_;
    Journal& journal_;
    xml::Edits& edits_;
    std::map<xml::Node, xml::Node> behind_;     // the last direction put after a note
    std::vector<std::pair<Shape, int>> added_;  // new slurs and their numbers
};

}  // namespace

bool editShapes(const SourceMap& sources, const engine::Document& document, Journal& journal,
                xml::Edits& edits) {
    return ShapeWriter(sources, document, journal, edits).write();
}

}  // namespace rovescio::musicxml
