// Voices one after the other, with steps back between them.
#include "musicxml/measure_composer.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include "engine/entry_state.h"
#include "musicxml/tag_names.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

namespace {

using engine::Fraction;

constexpr int kMaxDots = 3;
constexpr const char* kNoVoice = "1";  // that of notes which name none

bool isRest(const Event& event) {
    return (event.entry->entryFlags & ENTRY_NOTE) == 0;
}

bool isGrace(const Event& event) {
    return engine::entryState(*event.entry).grace != engine::Grace::none;
}

// Parts of a chord that stands on two staves.
bool shareStem(const Event& first, const Event& second) {
    return first.source != nullptr && second.source != nullptr && first.source->sharesStem &&
           second.source->sharesStem && first.start == second.start && first.length == second.length &&
           isGrace(first) == isGrace(second);
}

// The children of an element that speak of divisions, in another number of them.
std::string rescaled(std::string_view item, const Decimal& from, std::int64_t to) {
    std::string text(item);
    TextWalk walk(item);
    walk.restart(0);
    if (from.scale != 1 || from.value == to || !walk.next(0)) return text;
    std::vector<std::pair<Element, std::string>> changes;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        if (walk.tagNumber() != tag("offset") && walk.tagNumber() != tag("duration")) continue;
        const Element element = walk.whole();
        const auto value = parseDecimal(valueOf(item, element));
        if (!value || value->value * to % (from.value * value->scale) != 0) continue;
        changes.emplace_back(element, std::to_string(value->value * to / (from.value * value->scale)));
    }
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        const Element& element = change->first;
        text.replace(element.contentBegin, element.contentEnd - element.contentBegin, change->second);
    }
    return text;
}

// An <attributes> element with other divisions; 0 for none. Empty when nothing is left of it.
std::string withDivisions(std::string_view attributes, std::int64_t divisions) {
    std::string text(attributes);
    TextWalk walk(attributes);
    walk.restart(0);
    if (!walk.next(0)) return text;
    const Element opening = walk.element();
    const std::string stated = "<divisions>" + std::to_string(divisions) + "</divisions>";
    int children = 0;
    Element found;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        ++children;
        if (walk.tagNumber() == tag("divisions")) found = walk.whole();
    }
    if (found.exists() && divisions == 0) {
        return children == 1 ? std::string() : text.erase(found.begin, found.end - found.begin);
    }
    if (found.exists()) return text.replace(found.begin, found.end - found.begin, stated);
    return divisions == 0 || children == 0 ? text : text.insert(opening.contentBegin, stated);
}

}  // namespace

MeasureComposer::MeasureComposer(NoteRewriter& rewriter, const MeasureText& text, Lines& lines,
                                 const engine::Metre& metre, bool severalStaves, VoiceLabels& labels,
                                 std::string cutPrefix)
    : rewriter_(rewriter),
      text_(text),
      lines_(lines),
      metre_(metre),
      severalStaves_(severalStaves),
      labels_(labels),
      cutPrefix_(std::move(cutPrefix)),
      emitted_(text.items().size()) {}

// A line keeps the label that its first note has in the file, or else the one it had before.
void MeasureComposer::labelLine(Line& line) {
    const std::string usual = std::to_string(4 * line.staff + line.layer + 1 + (line.second ? 4 : 0));
    std::string& known = labels_.try_emplace({line.staff, line.layer, line.second}, usual).first->second;
    bool labelled = false;
    for (Event& event : line.events) {
        if (event.notes.empty()) continue;
        NoteGroups& groups = event.notes.front()->groups;
        const bool isOnly = !event.continues && !event.continued;
        event.member.groups = isOnly ? std::move(groups) : groups;
        if (!labelled) known = event.member.groups.voice;
        labelled = true;
    }
    line.voice = known;
}

bool MeasureComposer::join(Stream& stream, Line& line) {
    std::vector<Event*> merged = stream.events;
    for (Event& event : line.events) {
        if (isRest(event) && engine::entryState(*event.entry).silence == engine::Silence::gap) continue;
        merged.push_back(&event);
    }
    std::stable_sort(merged.begin(), merged.end(),
                     [](const Event* a, const Event* b) { return a->start < b->start; });
    const Event* sounding = nullptr;
    for (const Event* event : merged) {
        if (isGrace(*event)) continue;
        const bool overlaps = sounding != nullptr && event->start < sounding->start + sounding->length;
        if (overlaps && !shareStem(*sounding, *event)) return false;
        sounding = event;
    }
    stream.events = std::move(merged);
    return true;
}

void MeasureComposer::formStreams() {
    std::set<std::string> used = {kNoVoice};
    for (Line& line : lines_) {
        labelLine(line);
        used.insert(line.voice);
    }
    for (Line& line : lines_) {
        const auto same = std::find_if(streams_.begin(), streams_.end(),
                                       [&](const Stream& stream) { return stream.voice == line.voice; });
        if (same != streams_.end() && join(*same, line)) continue;
        Stream stream{line.voice, {}};
        for (int number = 1; same != streams_.end() && used.contains(stream.voice); ++number) {
            stream.voice = std::to_string(number);
        }
        used.insert(stream.voice);
        join(stream, line);
        if (!stream.events.empty()) streams_.push_back(std::move(stream));
    }
    for (Stream& stream : streams_) mend(stream);
}

void MeasureComposer::mend(Stream& stream) {
    std::vector<GroupMember*> members;
    for (Event* event : stream.events) {
        GroupMember& member = event->member;
        const engine::EntryState state = engine::entryState(*event->entry);
        member.start = event->start;
        member.length = event->length;
        member.value = event->entry->duration;
        member.rest = isRest(*event);
        member.grace = state.grace != engine::Grace::none;
        member.tuplet = state.actual != state.normal;
        member.mirrored = event->mirrored;
        member.cut = event->continues || event->continued ||
                     (event->source != nullptr && event->source->duration != event->entry->duration);
        // A bracket begins with the first and ends with the last part of a note that was cut.
        std::erase_if(member.groups.tuplets, [&](const TupletMark& mark) {
            const bool start = mark.start != event->mirrored;
            return start ? event->continues : event->continued;
        });
        members.push_back(&member);
    }
    mendGroups(members, metre_, [&] { return cutPrefix_ + std::to_string(++cuts_); });
}

void MeasureComposer::chooseDivisions(const Divisions& divisions) {
    std::int64_t needed = 1;
    const auto need = [&](const Fraction& time) {
        needed = std::lcm(needed, time.times(1, engine::kQuarter).denominator());
    };
    for (const Stream& stream : streams_) {
        for (const Event* event : stream.events) {
            need(event->start);
            need(event->length);
        }
    }
    for (const MeasureText::Item& item : text_.items()) need(item.time);
    need(Fraction(metre_.length));
    ownDivisions_ = divisions.own;
    const std::int64_t own = divisions.own.scale == 1 ? divisions.own.value : 1;
    divisions_ = own % needed == 0 && divisions.own.scale == 1 ? own : std::lcm(own, needed);
}

// Puts the divisions into force, in an element that the measure has at its start or a new one.
void MeasureComposer::declareDivisions(std::int64_t before) {
    bool declared = before == divisions_;
    for (const MeasureText::Item& item : text_.items()) {
        std::string text = rescaled(item.text, ownDivisions_, divisions_);
        if (item.tag == tag("attributes")) {
            const bool stated = text.find("<divisions>") != std::string::npos;
            const bool here = item.time == Fraction(0) && (stated || !declared);
            declared = declared || here;
            text = withDivisions(text, here ? divisions_ : 0);
        }
        items_.push_back(std::move(text));
    }
    if (!declared) emit("<attributes><divisions>" + std::to_string(divisions_) + "</divisions></attributes>");
}

std::string MeasureComposer::units(const Fraction& length) const {
    return std::to_string(length.times(divisions_, engine::kQuarter).numerator());
}

void MeasureComposer::emit(std::string_view text) {
    if (text.empty()) return;
    out_ += text_.indentation();
    out_ += text;
}

void MeasureComposer::moveTo(const Fraction& time) {
    if (cursor_ == time) return;
    const bool back = time < cursor_;
    const std::string name = back ? "backup" : "forward";
    emit("<" + name + "><duration>" + units(back ? cursor_ - time : time - cursor_) + "</duration></" + name +
         ">");
    cursor_ = time;
}

void MeasureComposer::emitItem(std::size_t index) {
    emitted_[index] = true;
    emit(items_[index]);
}

// The stream with a note that begins or ends at a time; the first one when none does.
std::size_t MeasureComposer::streamOf(const Fraction& time) const {
    if (time == Fraction(0)) return 0;
    for (std::size_t i = 0; i < streams_.size(); ++i) {
        for (const Event* event : streams_[i].events) {
            if (event->start == time || event->start + event->length == time) return i;
        }
    }
    return 0;
}

// Everything but notes that stands before a time or at it; what stands at the measure's end comes last.
void MeasureComposer::emitItemsUntil(const Fraction& time, std::size_t stream) {
    const std::vector<MeasureText::Item>& items = text_.items();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (emitted_[i] || items[i].time > time || items[i].time >= Fraction(metre_.length)) continue;
        if (streamOf(items[i].time) != stream) continue;
        const Fraction here = cursor_;
        moveTo(items[i].time);
        emitItem(i);
        if (here > cursor_) moveTo(here);
    }
}

NoteShape MeasureComposer::shapeOf(const Event& event, const Stream& stream, std::string_view note) const {
    NoteShape shape;
    const bool grace = isGrace(event);
    if (!grace) shape.duration = units(event.length);
    shape.voice = stream.voice;
    shape.mirrored = event.mirrored;
    shape.continuation = event.continues;
    const std::int32_t value = event.entry->duration;
    const bool rest = isRest(event);
    const bool saysMeasure = rest && note.find("measure=\"yes\"") != std::string_view::npos;
    const bool fills = event.start == Fraction(0) && event.length == Fraction(metre_.length);
    if (rest && fills) {
        shape.measureRest = event.source == nullptr || saysMeasure || event.source->duration != value ||
                            !engine::isWritable(value, kMaxDots);
    }
    const bool newValue = event.source == nullptr || event.source->duration != value;
    if (!grace && (newValue || saysMeasure) && engine::isWritable(value, kMaxDots)) {
        shape.value = engine::noteValueOf(value, kMaxDots);
    }
    return shape;
}

void MeasureComposer::emitEvent(const Event& event, const Stream& stream, bool chord) {
    if (event.notes.empty()) {
        const Line* const line = [&] {
            const auto found = std::find_if(lines_.begin(), lines_.end(), [&](const Line& candidate) {
                return std::any_of(candidate.events.begin(), candidate.events.end(),
                                   [&](const Event& other) { return &other == &event; });
            });
            return &*found;
        }();
        emit(restText(shapeOf(event, stream, {}), severalStaves_ ? line->staff + 1 : 0));
        return;
    }
    for (std::size_t i = 0; i < event.notes.size(); ++i) {
        NoteShape shape = shapeOf(event, stream, event.notes[i]->text);
        shape.chord = chord || i > 0;
        if (i == 0) shape.groups = &event.member.groups;
        if (i == 0 && engine::entryState(*event.entry).cut)
            shape.cutId = cutPrefix_ + std::to_string(++cuts_);
        for (const ENOTE& note : event.entry->notes()) {
            if (note.noteId == i + 1) shape.ties = note.noteFlags & NOTE_TIES;
        }
        out_ += text_.indentation();
        rewriter_.rewrite(event.notes[i]->text, shape, out_);
    }
}

void MeasureComposer::emitStream(std::size_t index) {
    const Stream& stream = streams_[index];
    const Event* earlier = nullptr;
    for (const Event* event : stream.events) {
        const bool chord = earlier != nullptr && shareStem(*earlier, *event);
        if (!chord) {
            emitItemsUntil(event->start, index);
            moveTo(event->start);
        }
        emitEvent(*event, stream, chord);
        if (!chord) cursor_ += event->length;
        earlier = event;
    }
    emitItemsUntil(Fraction(metre_.length), index);
}

std::string MeasureComposer::compose(const Divisions& divisions) {
    formStreams();
    chooseDivisions(divisions);
    out_.reserve(2 * text_.size());
    out_ = text_.startTag();
    declareDivisions(divisions.before.scale == 1 ? divisions.before.value : 0);
    for (std::size_t i = 0; i < streams_.size(); ++i) {
        moveTo(0);
        emitStream(i);
    }
    moveTo(metre_.length);
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (!emitted_[i]) emitItem(i);
    }
    const bool same = divisions.own.scale == 1 && divisions.own.value == divisions_;
    if (divisions.restore && !same && divisions.own.scale == 1) {
        emit("<attributes><divisions>" + std::to_string(divisions.own.value) + "</divisions></attributes>");
        divisions_ = divisions.own.value;
    }
    out_ += text_.closing();
    out_ += text_.endTag();
    return std::move(out_);
}

}  // namespace rovescio::musicxml
