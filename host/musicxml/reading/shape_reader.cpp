// Pairs the ends of lines.
#include "musicxml/reading/shape_reader.h"

#include <algorithm>
#include <tuple>

#include "musicxml/file/tag_names.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

bool isNoteLine(xml::Name name) {
    return name == tag("slur") || name == tag("glissando") || name == tag("slide");
}

std::uint8_t placementOf(std::string_view placement) {
    if (placement == "above") return 1;
    return placement == "below" ? 2 : 0;
}

std::uint8_t lineTypeOf(std::string_view type) {
    constexpr std::string_view kTypes[] = {"", "solid", "dashed", "dotted", "wavy"};
    const auto* const found = std::find(std::begin(kTypes), std::end(kTypes), type);
    return static_cast<std::uint8_t>(found == std::end(kTypes) ? 0 : found - std::begin(kTypes));
}

}  // namespace

bool ShapeReader::isSameLine(const End& left, const End& right) {
    const auto numberOf = [](const End& end) { return end.number.empty() ? "1" : end.number; };
    return left.name == right.name && numberOf(left) == numberOf(right);
}

void ShapeReader::addNote(const xml::Element& note, std::size_t entry, std::string_view voice) {
    for (const xml::Element notations : note) {
        if (notations.name() != tag("notations")) continue;
        for (const xml::Element line : notations) {
            if (!isNoteLine(line.name())) continue;
            const std::string_view type = line.attribute("type");
            if (type != "start" && type != "stop") continue;
            End& end = ends_.emplace_back();
            end.name = line.name();
            end.number = line.attribute("number");
            end.voice = voice;
            end.starts = type == "start";
            end.entry = entry;
            end.element = line;
            if (end.name != tag("slur")) end.shape.kind = SHAPE_LINE;
            end.shape.placement = placementOf(line.attribute("placement"));
            end.shape.lineType = lineTypeOf(line.attribute("line-type"));
        }
    }
}

void ShapeReader::addDirection(const xml::Element& direction, short measure, std::int32_t time) {
    const xml::Element staff = direction.child(tag("staff"));
    for (const xml::Element kind : direction) {
        if (kind.name() != tag("direction-type")) continue;
        for (const xml::Element line : kind) {
            const xml::Name name = line.name();
            if (name != tag("wedge") && name != tag("bracket") && name != tag("dashes")) continue;
            const std::string_view type = line.attribute("type");
            if (type == "continue") continue;
            End end;
            end.name = name;
            end.number = line.attribute("number");
            end.starts = type != "stop";
            end.element = line;
            end.shape.kind = type == "crescendo"    ? SHAPE_CRESCENDO
                             : type == "diminuendo" ? SHAPE_DIMINUENDO
                                                    : SHAPE_LINE;
            end.shape.placement = placementOf(direction.attribute("placement"));
            end.shape.lineType = lineTypeOf(line.attribute("line-type"));
            const int number = parseInteger(staff.exists() ? staff.text() : "").value_or(1);
            end.shape.firstStaff = static_cast<short>(std::clamp(number, 1, 0x7FFF) - 1);
            end.shape.firstMeasure = measure;
            end.shape.firstPosition = time;
            if (end.starts) {
                open(end);
            } else {
                close(end, false);
            }
        }
    }
}

// A line that starts again has lost its end.
void ShapeReader::open(const End& end) {
    std::erase_if(open_,
                  [&](const End& other) { return isSameLine(other, end) && other.voice == end.voice; });
    open_.push_back(end);
}

bool ShapeReader::close(const End& end, bool sameVoice) {
    const auto start = std::find_if(open_.begin(), open_.end(), [&](const End& candidate) {
        const auto place = [](const End& at) {
            return std::tuple(at.shape.firstMeasure, at.shape.firstPosition);
        };
        return isSameLine(candidate, end) && (!sameVoice || candidate.voice == end.voice) &&
               place(candidate) <= place(end) &&
               (!isNoteLine(end.name) || candidate.shape.firstEntry != end.shape.firstEntry);
    });
    if (start == open_.end()) return false;
    join(*start, end);
    open_.erase(start);
    return true;
}

void ShapeReader::join(const End& start, const End& end) {
    Line line{start.shape, {start.element.node(), end.element.node()}, start.element.offset()};
    line.shape.lastStaff = end.shape.firstStaff;
    line.shape.lastMeasure = end.shape.firstMeasure;
    line.shape.lastPosition = end.shape.firstPosition;
    line.shape.lastEntry = end.shape.firstEntry;
    (isNoteLine(start.name) ? onNotes_ : between_).push_back(line);
}

// Numbers are distinguished by voice first. Voices follow one another in the text, so an end in another
// voice may come before its start.
void ShapeReader::endMeasure(const std::vector<GatheredEntry>& entries, short measure) {
    if (ends_.empty()) return;
    std::vector<End> unmatched;
    for (End& end : ends_) {
        const GatheredEntry& entry = entries[end.entry];
        end.shape.firstStaff = static_cast<short>(entry.staff);
        end.shape.firstMeasure = measure;
        end.shape.firstEntry = entry.record.entryNumber;
        end.shape.firstPosition = entry.record.elapsed;
    }
    for (auto next = ends_.begin(); next != ends_.end();) {
        // What ends on an entry ends before anything starts there.
        const auto behind =
            std::find_if(next, ends_.end(), [&](const End& end) { return end.entry != next->entry; });
        for (auto end = next; end != behind; ++end) {
            if (!end->starts && !close(*end, true)) unmatched.push_back(*end);
        }
        for (auto end = next; end != behind; ++end) {
            if (end->starts) open(*end);
        }
        next = behind;
    }
    for (const End& end : unmatched) close(end, false);
    ends_.clear();
}

const engine::StoredEntry* ShapeReader::nearest(const std::vector<GatheredFrame>& frames, Place& place,
                                                short until, bool forward) {
    const auto isBefore = [](const GatheredFrame& frame, short measure) { return frame.measure < measure; };
    const engine::StoredEntry* best = nullptr;
    for (int number = place.measure; best == nullptr && (forward ? number <= until : number >= until);
         number += forward ? 1 : -1) {
        const auto measure = static_cast<short>(number);
        auto frame = std::lower_bound(frames.begin(), frames.end(), measure, isBefore);
        for (; frame != frames.end() && frame->measure == measure; ++frame) {
            if (frame->staff != place.staff) continue;
            for (const engine::StoredEntry& entry : frame->entries) {
                const engine::EntryState state = engine::entryState(entry);
                if (state.grace != engine::Grace::none || state.silence == engine::Silence::gap) continue;
                const bool outside = measure == place.measure && (forward ? entry.elapsed < place.position
                                                                          : entry.elapsed > place.position);
                if (outside) continue;
                const bool nearer =
                    !best || (forward ? entry.elapsed < best->elapsed : entry.elapsed > best->elapsed);
                if (nearer) best = &entry;
            }
        }
        if (best) place = {place.staff, measure, best->elapsed};
    }
    return best;
}

// A line that begins inside the last note below it belongs to that note.
bool ShapeReader::attach(const std::vector<GatheredFrame>& frames, engine::Shape& shape) {
    Place start{shape.firstStaff, shape.firstMeasure, shape.firstPosition};
    Place end{shape.lastStaff, shape.lastMeasure, shape.lastPosition};
    const auto* last = nearest(frames, end, shape.firstMeasure, false);
    const auto* first = nearest(frames, start, shape.lastMeasure, true);
    if (!first && !last) return false;
    if (!first) std::tie(first, start) = std::tie(last, end);
    if (!last || std::tie(end.measure, end.position) < std::tie(start.measure, start.position)) {
        std::tie(last, end) = std::tie(first, start);
    }
    shape.firstStaff = static_cast<short>(start.staff);
    shape.firstMeasure = start.measure;
    shape.firstPosition = start.position;
    shape.firstEntry = first->entryNumber;
    shape.lastStaff = static_cast<short>(end.staff);
    shape.lastMeasure = end.measure;
    shape.lastPosition = end.position;
    shape.lastEntry = last->entryNumber;
    return true;
}

void ShapeReader::finish(short firstStaff, const std::vector<GatheredFrame>& frames,
                         engine::Document& document, SourceMap& sources, Journal& journal) {
    std::erase_if(between_, [&](Line& line) { return !attach(frames, line.shape); });
    onNotes_.insert(onNotes_.end(), between_.begin(), between_.end());
    for (Line& line : onNotes_) {
        line.shape.firstStaff = static_cast<short>(line.shape.firstStaff + firstStaff);
        line.shape.lastStaff = static_cast<short>(line.shape.lastStaff + firstStaff);
        if (!document.addShape(line.shape)) {
            journal.notice("shapes",
                           "the score has too many slurs and other lines to number; these stay as they are",
                           line.offset);
            return;
        }
        sources.shapes.push_back(line.source);
    }
}

}  // namespace rovescio::musicxml
