// Notes and time of a part; its attributes are read in part_attributes.cpp.
#include "musicxml/part_reader.h"

#include <algorithm>
#include <optional>

#include "musicxml/measure_layout.h"
#include "musicxml/tag_names.h"

namespace rovescio::musicxml {

namespace {

constexpr std::int64_t kMaxParts = 1 << 10;  // of a duration unit that are told exactly
constexpr std::int64_t kMaxDuration = 1 << 30;
constexpr std::size_t kMaxEntries =
    16'000;  // of a measure; a frame's 16-bit count holds as many gaps besides

// Elements of a measure that hold nothing the document needs; they stay in the
// text as they are.
bool isKeptSilently(std::uint64_t name) {
    switch (name) {
        case tag("listening"):
        case tag("barline"):
        case tag("grouping"):
        case tag("link"):
        case tag("bookmark"):
        case tag(""):
            return true;
        default:
            return false;
    }
}

}  // namespace

void PartReader::beginMeasure() {
    ++measureCount_;
    clock_.reset();
    gathered_.clear();
    changes_.clear();
    inChord_ = false;
    for (StaffReading& staff : staves_) {
        staff.measureKey = staff.key;
        staff.keyPosition = 0;
        staff.measures.emplace_back();
    }
}

bool PartReader::readMeasure(TreeWalk& walk) {
    beginMeasure();
    offsets_.push_back(static_cast<std::uint32_t>(walk.offset()));
    if (!needStaves(static_cast<int>(staves_.size()), walk.offset())) return false;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        bool fine = true;
        switch (walk.tagNumber()) {
            case tag("note"):
                fine = addNote(walk);
                break;
            case tag("attributes"):
                fine = readAttributes(walk);
                break;
            case tag("backup"):
                fine = move(walk, true);
                break;
            case tag("forward"):
                fine = move(walk, false);
                break;
            case tag("direction"):
                shapes_.addDirection(walk.node(), measureCount_, clock_.now());
                performance_.readDirection(walk, measureCount_, clock_);
                break;
            case tag("sound"):
                performance_.readSound(walk, measureCount_, clock_);
                break;
            case tag("harmony"):
            case tag("figured-bass"):
                if (harmony_.empty() || harmony_.back().measure != measureCount_) {
                    harmony_.push_back({0, 0, measureCount_, static_cast<std::uint32_t>(walk.offset())});
                }
                break;
            case tag("print"):
                if (const std::int16_t distance = distanceIn(walk.node()); distance != 0) {
                    distances_.emplace_back(measureCount_, distance);
                }
                break;
            default:
                if (!isKeptSilently(walk.tagNumber())) {
                    const std::string name(walk.name().substr(0, 40));
                    journal_.notice("element " + name,
                                    "the element <" + name + "> is not known here; it is kept as it is",
                                    walk.offset());
                }
                break;
        }
        if (!fine) return false;
    }
    finishMeasure();
    return true;
}

void PartReader::skipMeasure() {
    beginMeasure();
    offsets_.push_back(0);
    finishMeasure();
}

bool PartReader::move(TreeWalk& walk, bool backwards) {
    inChord_ = false;
    const std::size_t offset = walk.offset();
    const std::string name(walk.name());
    std::string_view text;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        if (walk.tagNumber() == tag("duration")) text = walk.text();
    }
    const std::optional<Decimal> duration = parseDecimal(text);
    const MeasureClock::Span span = duration ? clock_.span(*duration) : MeasureClock::Span{};
    if (!span.valid) {
        journal_.fail("the duration of a <" + name + "> is missing or unusable: \"" +
                          std::string(text.substr(0, 40)) + "\"",
                      offset, "Give it a positive number of divisions.");
        return false;
    }
    if (!backwards) {
        if (clock_.forward(span)) return true;
        journal_.fail("the measure is too long", offset, "Correct the durations in it.");
        return false;
    }
    if (!clock_.back(span)) {
        journal_.notice("backup",
                        "a <backup> leads before the start of the measure; it is "
                        "taken to lead to the start",
                        offset);
    }
    return true;
}

// Where the note stands in time. The first note of a chord moves the clock;
// chord notes sound with it.
bool PartReader::timeNote(const NoteReading& note) {
    chordState_ = {};
    chordStart_ = clock_.exactNow();
    if (note.grace) {
        chordState_.grace = engine::Grace::grace;
        chordDuration_ = note.nominal > 0 ? note.nominal : engine::kQuarter / 2;
        return true;
    }
    if (!note.hasDuration) {
        journal_.fail("a note has no duration", note.offset,
                      "Give it a <duration>; only grace notes have none.");
        return false;
    }
    const MeasureClock::Span span = clock_.span(note.duration);
    if (!span.valid) {
        journal_.fail("the duration of a note is beyond what can be counted", note.offset,
                      "Correct the note's <duration> or the <divisions> of the part.");
        return false;
    }
    // The printed value says more than the sounding one, but only where both
    // agree.
    if (note.nominal > 0 && clock_.equals(span, note.nominal, note.actual, note.normal)) {
        chordDuration_ = note.nominal;
        chordState_.actual = note.actual;
        chordState_.normal = note.normal;
    } else {
        chordDuration_ = clock_.units(span);
        const engine::Fraction exact = clock_.exact(span);
        if (!exact.isWhole() && exact.denominator() <= kMaxParts && exact.numerator() <= kMaxDuration) {
            chordDuration_ = static_cast<std::int32_t>(exact.numerator());
            chordState_.actual = static_cast<std::uint16_t>(exact.denominator());
        }
    }
    if (!clock_.forward(span)) {
        journal_.fail("the measure is too long", note.offset, "Correct the durations in it.");
        return false;
    }
    return true;
}

bool PartReader::addNote(TreeWalk& walk) {
    NoteReading note;
    element_ = walk.node();
    if (!readNote(walk, note, journal_)) return false;
    if (!note.instrument.empty()) performance_.addNoteInstrument(note.offset, note.instrument);
    if (!needStaves(note.staff, note.offset)) return false;
    if (note.chord && inChord_) return joinEntry(note);
    if (note.chord) {
        journal_.notice("chord", "a chord note follows no note; it is taken to stand alone", note.offset);
    }
    if (!timeNote(note)) return false;
    chordBegin_ = gathered_.entries().size();
    chordVoice_ = note.voice.empty() ? "1" : note.voice;
    chordStaff_ = note.staff == 0 ? 0 : static_cast<std::size_t>(note.staff - 1);
    inChord_ = true;
    return startEntry(note, chordStaff_, false);
}

// A chord note belongs to the chord's entry on its staff, which it starts when
// there is none or it is full.
bool PartReader::joinEntry(const NoteReading& note) {
    const std::size_t staff = note.staff == 0 ? chordStaff_ : static_cast<std::size_t>(note.staff - 1);
    std::vector<GatheredEntry>& entries = gathered_.entries();
    for (std::size_t i = chordBegin_; i < entries.size(); ++i) {
        GatheredEntry& entry = entries[i];
        const bool sounding = entry.record.noteCount > 0 && !note.rest;
        const bool alike = (engine::entryState(entry.record).unpitched != 0) == note.unpitched;
        if (static_cast<std::size_t>(entry.staff) == staff && sounding && alike &&
            entry.record.noteCount < kMaxNotes) {
            addPitch(entry, note);
            if (note.hasShapes) shapes_.addNote(element_, i, chordVoice_);
            return true;
        }
    }
    for (std::size_t i = chordBegin_; i < entries.size(); ++i) entries[i].sharesStem = true;
    return startEntry(note, staff, true);
}

bool PartReader::startEntry(const NoteReading& note, std::size_t staff, bool continuesChord) {
    if (gathered_.entries().size() == kMaxEntries) {
        journal_.fail("a measure of part \"" + name_ + "\" has more than " + std::to_string(kMaxEntries) +
                          " notes and rests",
                      note.offset, "Divide the measure.");
        return false;
    }
    const int number = gathered_.voice(static_cast<int>(staff), chordVoice_);
    if (number < 0) {
        journal_.fail("staff " + std::to_string(staff + 1) + " of part \"" + name_ + "\" has more than " +
                          std::to_string(MeasureFrames::kMaxVoices) + " voices",
                      note.offset, "Move voices of this measure to another staff.");
        return false;
    }
    GatheredEntry& entry = gathered_.add();
    entry.staff = static_cast<int>(staff);
    entry.voice = number;
    entry.sharesStem = continuesChord;
    entry.offsets[0] = static_cast<std::uint32_t>(note.offset);
    entry.record.entryFlags = ENTRY_VALID | (note.rest ? 0U : ENTRY_NOTE);
    entry.record.duration = chordDuration_;
    entry.start = chordStart_;
    entry.record.elapsed = chordStart_.floor();
    engine::EntryState state = chordState_;
    state.unpitched = note.unpitched ? 1 : 0;
    state.marked = note.marked;
    state.cut = note.cut;
    engine::setEntryState(entry.record, state);
    if (!note.rest) addPitch(entry, note);
    if (note.hasShapes) shapes_.addNote(element_, gathered_.entries().size() - 1, chordVoice_);
    return true;
}

void PartReader::addPitch(GatheredEntry& entry, const NoteReading& note) {
    const std::int16_t index = entry.record.noteCount++;
    ENOTE& record = entry.record.notes[index];
    record.displacement = static_cast<std::int16_t>(note.pitch.step);
    record.alteration = static_cast<std::int16_t>(note.pitch.alter);
    record.noteId = static_cast<std::uint16_t>(index + 1);
    record.noteFlags = note.noteFlags | (static_cast<std::uint32_t>(record.noteId & 31) << 16);
    entry.offsets[static_cast<std::size_t>(index)] = static_cast<std::uint32_t>(note.offset);
    if (note.marked && index > 0) {
        engine::EntryState state = engine::entryState(entry.record);
        state.marked = true;
        engine::setEntryState(entry.record, state);
    }

    StaffReading& staff = staves_[static_cast<std::size_t>(entry.staff)];
    (note.unpitched ? staff.unpitchedNote : staff.pitchedNote) = true;
}

void PartReader::finishMeasure() {
    const std::int32_t contents = clock_.end();
    lengths_.push_back({contents, staves_.front().time.length});
    if (divisions_.empty() || divisions_.back().divisions.value != clock_.divisions().value ||
        divisions_.back().divisions.scale != clock_.divisions().scale) {
        divisions_.push_back({measureCount_, clock_.divisions()});
    }
    keys_.clear();
    for (StaffReading& staff : staves_) {
        engine::StaffMeasure& measure = staff.measures.back();
        // What is in a measure says more than its signature: pick-ups, measures divided by a repeat.
        if (contents > 0) {
            measure.duration = contents;
        } else if (staff.time.length > 0) {
            measure.duration = staff.time.length;
        }
        measure.beat = staff.time.beat;
        measure.key = staff.measureKey;
        keys_.push_back(staff.measureKey);
    }
    // What comes after the last note belongs to the next measure.
    for (const Change& change : changes_) {
        engine::StaffMeasure& measure = staves_[change.staff].measures.back();
        const std::int32_t end = contents > 0 ? std::min(contents, measure.duration) : measure.duration;
        if (change.position >= end) continue;
        measure.changesInside = true;
        if (change.isKey) {
            keyChanges_.push_back(
                {static_cast<short>(change.staff + 1), measureCount_, change.position, change.key});
        }
    }
    gathered_.layOut(measureCount_, clock_.exactEnd(), keys_, document_, sources_, frames_);
    shapes_.endMeasure(gathered_.entries(), measureCount_);
}

}  // namespace rovescio::musicxml
