// Voices one after the other, with steps back between them.
#include "musicxml/writing/measure_composer.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "engine/model/entry_state.h"
#include "musicxml/file/tag_names.h"
#include "musicxml/writing/note_edits.h"
#include "musicxml/writing/stem_edits.h"

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

// Parts of a chord that spans two staves.
bool shareStem(const Event& first, const Event& second) {
    return first.source != nullptr && second.source != nullptr && first.source->sharesStem &&
           second.source->sharesStem && first.start == second.start && first.length == second.length &&
           isGrace(first) == isGrace(second);
}

}  // namespace

MeasureComposer::MeasureComposer(PartWriting& part, const MeasureSite& site, const MeasureContents& contents,
                                 Lines& lines)
    : part_(part), site_(site), contents_(contents), lines_(lines), emitted_(contents.items.size()) {}

// A line keeps the label that its first note has in the file, or else the one it had before.
void MeasureComposer::labelLine(Line& line) {
    const std::string usual = std::to_string(4 * line.staff + line.layer + 1 + (line.second ? 4 : 0));
    std::string& known = part_.labels.try_emplace({line.staff, line.layer, line.second}, usual).first->second;
    bool labelled = false;
    for (Event& event : line.events) {
        if (event.notes.empty()) continue;
        event.member.groups = readGroups(part_.edits, event.notes.front());
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
    std::stable_sort(merged.begin(), merged.end(), [](const Event* a, const Event* b) {
        return a->start < b->start || (a->start == b->start && a->line < b->line);
    });
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

// Lines whose notes are where they were come first to their labels, so that these stay.
void MeasureComposer::formStreams() {
    std::set<std::string> used = {kNoVoice};
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        labelLine(lines_[i]);
        used.insert(lines_[i].voice);
        for (Event& event : lines_[i].events) event.line = i;
    }
    for (const bool asBefore : {true, false}) {
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            if (lines_[i].asBefore == asBefore) formStream(i, used);
        }
    }
    std::ranges::sort(streams_, {}, &Stream::line);
    for (Stream& stream : streams_) mend(stream);
}

void MeasureComposer::formStream(std::size_t index, std::set<std::string>& used) {
    Line& line = lines_[index];
    const auto same = std::ranges::find(streams_, line.voice, &Stream::voice);
    if (same != streams_.end() && join(*same, line)) {
        same->line = std::min(same->line, index);
        return;
    }
    Stream stream{line.voice, {}, index};
    for (int number = 1; same != streams_.end() && used.contains(stream.voice); ++number) {
        stream.voice = std::to_string(number);
    }
    used.insert(stream.voice);
    join(stream, line);
    if (!stream.events.empty()) streams_.push_back(std::move(stream));
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
        member.reversed = event->reversed;
        member.cut = event->continues || event->continued ||
                     (event->source != nullptr && event->source->duration != event->entry->duration);
        // A bracket begins with the first and ends with the last part of a note that was cut.
        std::erase_if(member.groups.tuplets, [&](const TupletMark& mark) {
            const bool start = mark.start != event->reversed;
            return start ? event->continues : event->continued;
        });
        members.push_back(&member);
    }
    mendGroups(members, site_.metre, [&] { return site_.cutPrefix + std::to_string(++cuts_); });
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
    for (const MeasureContents::Item& item : contents_.items) need(item.time);
    need(Fraction(site_.metre.length));
    ownDivisions_ = divisions.own;
    const std::int64_t own = divisions.own.scale == 1 ? divisions.own.value : 1;
    divisions_ = own % needed == 0 && divisions.own.scale == 1 ? own : std::lcm(own, needed);
}

// The children of an element that count in divisions.
void MeasureComposer::rescale(xml::Node item) {
    if (ownDivisions_.scale != 1 || isInOwnDivisions()) return;
    xml::Edits& edits = part_.edits;
    std::vector<xml::Node> children;
    edits.children(item, children);
    for (const xml::Node child : children) {
        const xml::Name name = edits.name(child);
        if (name == tag("sound")) rescale(child);
        if (name != tag("offset") && name != tag("duration")) continue;
        const auto value = parseDecimal(edits.text(child));
        if (!value || value->value * divisions_ % (ownDivisions_.value * value->scale) != 0) continue;
        edits.setText(child,
                      std::to_string(value->value * divisions_ / (ownDivisions_.value * value->scale)));
    }
}

// Puts the divisions into force, in an element that the measure has at its start or a new one.
void MeasureComposer::declareDivisions(std::int64_t before) {
    xml::Edits& edits = part_.edits;
    bool declared = before == divisions_;
    for (std::size_t i = 0; i < contents_.items.size(); ++i) {
        const MeasureContents::Item& item = contents_.items[i];
        rescale(item.node);
        if (item.name != tag("attributes")) continue;
        const xml::Node stated = edits.child(item.node, tag("divisions"));
        const bool here = item.time == Fraction(0) && (stated != 0 || !declared);
        if (here && stated != 0) {
            const std::string said = std::to_string(divisions_);
            if (!edits.says(stated, said)) edits.setText(stated, said);
        } else if (here && edits.hasChildren(item.node)) {
            edits.insertFirst(item.node,
                              edits.make("<divisions>" + std::to_string(divisions_) + "</divisions>"));
        } else if (stated != 0) {
            edits.remove(stated);
            emitted_[i] = !edits.hasChildren(item.node);
        }
        declared = declared || here;
    }
    if (!declared) emit("<attributes><divisions>" + std::to_string(divisions_) + "</divisions></attributes>");
}

std::string MeasureComposer::units(const Fraction& length) const {
    return std::to_string(length.times(divisions_, engine::kQuarter).numerator());
}

// Steps that the measure had are used again as long as there are some.
void MeasureComposer::moveTo(const Fraction& time) {
    if (cursor_ == time) return;
    const bool back = time < cursor_;
    const std::string duration = units(back ? cursor_ - time : time - cursor_);
    cursor_ = time;
    const std::vector<xml::Node>& steps = back ? contents_.backups : contents_.forwards;
    std::size_t& used = back ? backups_ : forwards_;
    if (used == steps.size()) {
        const std::string name = back ? "backup" : "forward";
        emit("<" + name + "><duration>" + duration + "</duration></" + name + ">");
        return;
    }
    const xml::Node step = steps[used++];
    const xml::Node said = part_.edits.child(step, tag("duration"));
    if (!part_.edits.says(said, duration)) part_.edits.setText(said, duration);
    list_.push_back(step);
}

void MeasureComposer::emitItem(std::size_t index) {
    emitted_[index] = true;
    list_.push_back(contents_.items[index].node);
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

// Everything but notes up to and including a time; what is at the measure's end comes last.
void MeasureComposer::emitItemsUntil(const Fraction& time, std::size_t stream) {
    const std::vector<MeasureContents::Item>& items = contents_.items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (emitted_[i] || items[i].time > time || items[i].time >= Fraction(site_.metre.length)) continue;
        if (streamOf(items[i].time) != stream) continue;
        const Fraction here = cursor_;
        moveTo(items[i].time);
        emitItem(i);
        if (here > cursor_) moveTo(here);
    }
}

NoteShape MeasureComposer::shapeOf(const Event& event, const Stream& stream) const {
    NoteShape shape;
    const bool grace = isGrace(event);
    if (!grace) shape.duration = units(event.length);
    shape.voice = stream.voice;
    shape.reversed = event.reversed;
    shape.continuation = event.continues;
    const std::int32_t value = event.entry->duration;
    const xml::Node rest =
        !isRest(event) || event.notes.empty() ? 0 : part_.edits.child(event.notes.front(), tag("rest"));
    const bool saysMeasure = rest != 0 && part_.edits.attribute(rest, "measure") == "yes";
    const bool fills = event.start == Fraction(0) && event.length == Fraction(site_.metre.length);
    if (isRest(event) && fills) {
        shape.measureRest = event.source == nullptr || saysMeasure || event.source->duration != value ||
                            !engine::isWritable(value, kMaxDots);
    }
    const bool newValue = event.source == nullptr || event.source->duration != value;
    if (!grace && (newValue || (saysMeasure && !shape.measureRest)) && engine::isWritable(value, kMaxDots)) {
        shape.value = engine::noteValueOf(value, kMaxDots);
    }
    return shape;
}

bool MeasureComposer::emitEvent(Event& event, const Stream& stream, bool chord) {
    NoteShape shape = shapeOf(event, stream);
    event.changes = changes_.size();
    if (event.notes.empty()) {
        list_.push_back(makeRest(part_.edits, shape, part_.severalStaves ? event.staff + 1 : 0));
        return true;
    }
    for (std::size_t i = 0; i < event.notes.size(); ++i) {
        shape.chord = chord || i > 0;
        shape.groups = i == 0 ? &event.member.groups : nullptr;
        shape.cutId = i == 0 && engine::entryState(*event.entry).cut
                          ? site_.cutPrefix + std::to_string(++cuts_)
                          : std::string();
        if (!emitNote(event, i, shape)) return false;
    }
    return true;
}

bool MeasureComposer::emitNote(const Event& event, std::size_t index, NoteShape& shape) {
    const xml::Node node = event.notes[index];
    const auto notes = event.entry->notes();
    const auto record =
        std::ranges::find_if(notes, [&](const ENOTE& note) { return note.noteId == index + 1; });
    shape.ties = record == notes.end() ? 0 : record->noteFlags & NOTE_TIES;
    NoteShape own = shape;
    if (!isGrace(event) && event.source != nullptr && !event.source->statesLength &&
        !keepOwnDuration(node, own, event)) {
        return false;
    }
    NoteChange change;
    if (record != notes.end() && !isRest(event)) {
        const engine::KeySignature& key = *site_.keys[static_cast<std::size_t>(event.staff)];
        const bool unpitched = engine::entryState(*event.entry).unpitched != 0;
        change = editPitch(part_.edits, part_.scan.of(node), *record, key.spell(*record), unpitched);
        if (!change.possible) return refuseOctave(part_.journal, part_.edits.place(node));
    }
    changes_.push_back(change);
    placeNote(part_.edits, part_.scan, node, own);
    list_.push_back(node);
    return true;
}

// The stems of a voice that is alone on its staff follow notes that have another pitch now.
void MeasureComposer::turnStems() {
    StemEdits stems(part_.edits);
    for (const Line& line : lines_) {
        const bool alone = std::ranges::count(lines_, line.staff, &Line::staff) == 1;
        const engine::FrameAddress here{static_cast<short>(site_.firstStaff + line.staff), site_.measure,
                                        line.layer};
        stems.clear();
        for (const Event& event : line.events) {
            const bool hasStem = !event.notes.empty() && !isRest(event) && !isGrace(event) &&
                                 engine::entryState(*event.entry).unpitched == 0;
            if (!hasStem) continue;
            const Clef& clef = clefAt(part_.sources, here, event.start.floor());
            const Clef& before = clefAt(part_.sources, event.source->address, event.source->elapsed);
            stems.beginChord(clef, alone && !event.source->sharesStem);
            for (std::size_t i = 0; i < event.notes.size(); ++i) {
                const NoteChange& change = changes_[event.changes + i];
                stems.addNote(part_.scan.of(event.notes[i]),
                              change.oldStep - before.middleStep + clef.middleStep, change.newStep,
                              change.moved);
            }
        }
        stems.apply();
    }
}

// A note of a chord with a duration of its own keeps it, and so does one whose duration is rounded.
bool MeasureComposer::keepOwnDuration(xml::Node note, NoteShape& shape, const Event& event) {
    const xml::Node said = part_.edits.child(note, tag("duration"));
    const std::optional<Decimal> own = said == 0 ? std::nullopt : parseDecimal(part_.edits.text(said));
    if (!own) return true;
    const std::int64_t scale = ownDivisions_.value * own->scale;
    const bool fits = ownDivisions_.scale == 1 && own->value * divisions_ % scale == 0;
    const bool isCut = event.source->duration != event.entry->duration;
    // The first note of a chord moves the time on. Rounding is less than a unit.
    const Fraction lasts = Fraction(own->value)
                               .times(engine::kQuarter, own->scale)
                               .times(ownDivisions_.scale, ownDivisions_.value);
    const bool isInTime = shape.chord || (lasts < event.length + 1 && event.length < lasts + 1);
    if (!isCut && isInTime && (fits || isInOwnDivisions())) {
        shape.duration = isInOwnDivisions() ? "" : std::to_string(own->value * divisions_ / scale);
        return true;
    }
    part_.journal.fail("a note has a rounded duration, or not that of its chord, which cannot be kept",
                       part_.edits.place(note), "Correct the duration there, or select other measures.");
    return false;
}

bool MeasureComposer::emitStream(std::size_t index) {
    const Stream& stream = streams_[index];
    const Event* earlier = nullptr;
    for (Event* const event : stream.events) {
        const bool chord = earlier != nullptr && shareStem(*earlier, *event);
        if (!chord) {
            emitItemsUntil(event->start, index);
            moveTo(event->start);
        }
        if (!emitEvent(*event, stream, chord)) return false;
        if (!chord) cursor_ += event->length;
        earlier = event;
    }
    emitItemsUntil(Fraction(site_.metre.length), index);
    return true;
}

bool MeasureComposer::compose(const Divisions& divisions) {
    formStreams();
    chooseDivisions(divisions);
    declareDivisions(divisions.before.scale == 1 ? divisions.before.value : 0);
    for (std::size_t i = 0; i < streams_.size(); ++i) {
        moveTo(0);
        if (!emitStream(i)) return false;
    }
    moveTo(site_.metre.length);
    for (std::size_t i = 0; i < contents_.items.size(); ++i) {
        if (!emitted_[i]) emitItem(i);
    }
    if (divisions.restore && !isInOwnDivisions() && divisions.own.scale == 1) {
        emit("<attributes><divisions>" + std::to_string(divisions.own.value) + "</divisions></attributes>");
        divisions_ = divisions.own.value;
    }
    turnStems();
    part_.edits.setChildren(site_.node, list_);
    return true;
}

}  // namespace rovescio::musicxml
