// Lines out of the text and into it.
#include "musicxml/shape_edits.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "musicxml/numbers.h"
#include "musicxml/tag_names.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

namespace {

using engine::Shape;
using engine::SmartShapes;

// Lines at notes can be numbered from 1 to 16.
constexpr int kMostNumbers = 16;

bool isNoteLine(std::uint64_t name) {
    return name == tag("slur") || name == tag("glissando") || name == tag("slide");
}

// What is to happen to the lines of one <note>.
struct NotePlan {
    std::set<std::size_t> gone;  // which of its lines, counted in the order of the text
    std::string added;           // elements for a <notations>
};

// Edits the lines of a note, given as the text of its element.
std::string withLines(const std::string& note, const NotePlan& plan) {
    TextEdits edits(note);
    TextWalk walk(note);
    walk.restart(0);
    walk.next(0);
    std::size_t line = 0;
    Element room;    // a <notations> that stays
    Element before;  // the last child that stands before a <notations>
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        const std::uint64_t name = walk.tagNumber();
        if (name != tag("notations")) {
            const Element child = walk.whole();
            if (name != tag("lyric") && name != tag("play") && name != tag("listen")) before = child;
            continue;
        }
        Element notations = walk.element();
        std::vector<Element> gone;
        int children = 0;
        for (const std::size_t inner = walk.enter(); walk.next(inner); ++children) {
            if (!isNoteLine(walk.tagNumber())) continue;
            if (plan.gone.contains(line++)) gone.push_back(walk.whole());
        }
        if (children > 0) walk.complete(notations);
        before = notations;
        if (children > 0 && static_cast<int>(gone.size()) == children) {
            edits.remove(notations);
            continue;
        }
        if (children > 0) room = notations;
        for (const Element& element : gone) edits.remove(element);
    }
    if (!plan.added.empty() && room.exists()) {
        edits.replace(room.contentEnd, room.contentEnd, plan.added);
    } else if (!plan.added.empty() && before.exists()) {
        edits.insertAfter(before, "<notations>" + plan.added + "</notations>");
    }
    edits.settleAll();
    std::string result;
    edits.applyTo([&](std::string_view piece) {
        result += piece;
        return true;
    });
    return result;
}

class ShapeWriter {
  public:
    ShapeWriter(const SourceMap& sources, const engine::Document& document, Journal& journal,
                TextEdits& edits)
        : sources_(sources), document_(document), journal_(journal), edits_(edits), walk_(edits.text()) {}

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
            erase(asRead[i], sources_.shapes[i]);
            if (shown) made.emplace_back(number, shape);
        }
        engine::RecordKey key(static_cast<std::uint32_t>(asRead.size()), 0, 0xFFFF);
        while (records.next(kSmartShapeTag, key) != nullptr) {
            const auto number = static_cast<std::uint16_t>(key.owner);
            const std::optional<Shape> shape = SmartShapes::recorded(records, number);
            if (shape && SmartShapes::isShown(records, number, *shape)) made.emplace_back(number, *shape);
        }
        for (const auto& [number, shape] : made) {
            if (!add(shape)) return false;
        }
        for (const auto& [offset, plan] : notes_) {
            const Element note = elementAt(offset);
            edits_.replaceStretch(note.begin, note.end, withLines(edits_.edited(note.begin, note.end), plan));
        }
        for (const auto& [offset, gone] : directions_) eraseDirection(offset, gone);
        for (const auto& [place, text] : inserted_) edits_.replace(place, place, text);
        return true;
    }

  private:
    Element elementAt(std::size_t offset) {
        walk_.restart(offset);
        return walk_.next(0) ? walk_.whole() : Element{};
    }

    // --- out of the text ---

    void erase(const Shape& shape, const ShapeSource& source) {
        const std::uint32_t firstNote = noteAround(shape.firstEntry, source.first);
        const std::uint32_t lastNote = noteAround(shape.lastEntry, source.last);
        for (const auto& [note, offset] :
             {std::pair(firstNote, source.first), std::pair(lastNote, source.last)}) {
            if (note != 0) {
                notes_[note].gone.insert(lineIndex(note, offset));
            } else {
                directions_[directionAround(offset)].insert(offset);
            }
        }
    }

    // The note of an entry that holds a place of the text; 0 for none.
    std::uint32_t noteAround(std::uint32_t entry, std::uint32_t offset) {
        const EntrySource& source = sources_.entries[entry - 1];
        if (source.isGap) return 0;
        for (int i = 0; i < std::max<int>(source.noteCount, 1); ++i) {
            const std::uint32_t note = sources_.notes[source.firstNote + static_cast<std::uint32_t>(i)];
            if (note < offset && offset < elementAt(note).end) return note;
        }
        return 0;
    }

    std::size_t lineIndex(std::uint32_t note, std::uint32_t offset) {
        std::size_t index = 0;
        walk_.restart(note);
        walk_.next(0);
        for (const std::size_t level = walk_.enter(); walk_.next(level);) {
            if (walk_.tagNumber() != tag("notations")) continue;
            for (const std::size_t inner = walk_.enter(); walk_.next(inner);) {
                if (isNoteLine(walk_.tagNumber()) && walk_.element().begin < offset) ++index;
            }
        }
        return index;
    }

    // Offset of the <direction> around a place.
    [[nodiscard]] std::size_t directionAround(std::size_t offset) const {
        constexpr std::string_view kStart = "<direction";
        std::size_t begin = edits_.text().rfind(kStart, offset);
        while (edits_.text()[begin + kStart.size()] == '-') begin = edits_.text().rfind(kStart, begin - 1);
        return begin;
    }

    // What is left of a direction stays, with its other kinds. A sound that is left alone needs no direction.
    void eraseDirection(std::size_t offset, const std::set<std::uint32_t>& gone) {
        walk_.restart(offset);
        if (!walk_.next(0)) return;
        Element direction = walk_.element();
        std::vector<Element> empty;
        Element sound;
        int kept = 0;
        for (const std::size_t level = walk_.enter(); walk_.next(level);) {
            if (walk_.tagNumber() == tag("sound")) sound = walk_.whole();
            if (walk_.tagNumber() != tag("direction-type")) continue;
            Element kind = walk_.element();
            bool isGone = false;
            for (const std::size_t inner = walk_.enter(); walk_.next(inner);) {
                isGone |= gone.contains(static_cast<std::uint32_t>(walk_.element().begin));
            }
            walk_.complete(kind);
            if (isGone) {
                empty.push_back(kind);
            } else {
                ++kept;
            }
        }
        walk_.complete(direction);
        if (kept == 0 && sound.exists()) {
            edits_.replace(direction.begin, direction.end,
                           edits_.text().substr(sound.begin, sound.end - sound.begin));
        } else if (kept == 0) {
            edits_.remove(direction);
        } else {
            for (const Element& kind : empty) edits_.remove(kind);
        }
    }

    // --- into the text ---

    bool add(const Shape& shape) {
        const std::optional<std::pair<std::uint32_t, std::uint32_t>> first = notesOf(shape.firstEntry);
        const std::optional<std::pair<std::uint32_t, std::uint32_t>> last = notesOf(shape.lastEntry);
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
        journal_.fail("a new line cannot be written", 0, "Only slurs and hairpins between notes can be.");
        return false;
    }

    // The first and the last note of an entry in the text.
    std::optional<std::pair<std::uint32_t, std::uint32_t>> notesOf(std::uint32_t entry) const {
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
            taken.insert(parseInteger(findAttribute(edits_.text(), sources_.shapes[i].first, "number").value)
                             .value_or(1));
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

    bool addSlur(const Shape& shape, std::uint32_t first, std::uint32_t last) {
        const std::string number = freeNumber(shape);
        if (number.empty()) return refuse(shape);
        notes_[first].added += "<slur type=\"start\" number=\"" + number + "\"" + look(shape, true) + "/>";
        notes_[last].added += "<slur type=\"stop\" number=\"" + number + "\"/>";
        return true;
    }

    void addHairpin(const Shape& shape, std::uint32_t first, std::uint32_t last) {
        const std::string placement = shape.placement == 0   ? ""
                                      : shape.placement == 1 ? " placement=\"above\""
                                                             : " placement=\"below\"";
        const auto direction = [&](const std::string& type, short staff) {
            const auto part = std::prev(
                std::upper_bound(sources_.parts.begin(), sources_.parts.end(), staff,
                                 [](short wanted, const PartSource& at) { return wanted < at.firstStaff; }));
            std::string text =
                "<direction" + placement + "><direction-type><wedge type=\"" + type + "\"/></direction-type>";
            if (part->staffCount > 1)
                text += "<staff>" + std::to_string(staff - part->firstStaff + 1) + "</staff>";
            return text + "</direction>";
        };
        inserted_[first] +=
            direction(shape.kind == SHAPE_CRESCENDO ? "crescendo" : "diminuendo", shape.firstStaff);
        inserted_[elementAt(last).end] += direction("stop", shape.lastStaff);
    }

    const SourceMap& sources_;
    const engine::Document& document_;
    Journal& journal_;
    TextEdits& edits_;
    TextWalk walk_;
    std::map<std::uint32_t, NotePlan> notes_;                    // by the offset of the note
    std::map<std::size_t, std::set<std::uint32_t>> directions_;  // offsets of lines to be taken out
    std::map<std::size_t, std::string> inserted_;
    std::vector<std::pair<Shape, int>> added_;  // new slurs and their numbers
};

}  // namespace

bool editShapes(const SourceMap& sources, const engine::Document& document, Journal& journal,
                TextEdits& edits) {
    return ShapeWriter(sources, document, journal, edits).write();
}

}  // namespace rovescio::musicxml
