// Notes and time of a part; its attributes are read in part_attributes.cpp.
#include "musicxml/reading/part_reader.h"

#include <algorithm>
#include <optional>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/measure_layout.h"
#include "musicxml/reading/measure_time.h"

namespace rovescio::musicxml {

namespace {

constexpr std::int64_t kMaxParts = 1 << 10;  // of a duration unit that are exact
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

bool PartReader::readMeasure(const xml::Element& element) {
    beginMeasure();
    nodes_.push_back(element.node());
    if (!needStaves(static_cast<int>(staves_.size()), element.offset())) return false;
    for (const xml::Element child : element) {
        bool fine = true;
        switch (child.name()) {
            case tag("note"):
                fine = addNote(child);
                break;
            case tag("attributes"):
                fine = readAttributes(child);
                break;
            case tag("backup"):
                fine = move(child, true);
                break;
            case tag("forward"):
                fine = move(child, false);
                break;
            case tag("direction"):
                shapes_.addDirection(child, measureCount_, clock_.now());
                performance_.readDirection(child, measureCount_, clock_);
                break;
            case tag("sound"):
                performance_.readSound(child, measureCount_, clock_);
                break;
            case tag("harmony"):
            case tag("figured-bass"):
                if (harmony_.empty() || harmony_.back().measure != measureCount_) {
                    harmony_.push_back({0, 0, measureCount_, child.node()});
                }
                break;
            case tag("print"):
                if (const std::int16_t distance = distanceIn(child); distance != 0) {
                    distances_.emplace_back(measureCount_, distance);
                }
                break;
            default:
                if (!isKeptSilently(child.name())) {
                    const std::string name(child.nameText().substr(0, 40));
                    journal_.notice("element " + name,
                                    "the element <" + name + "> is unknown; it is kept as it is",
                                    child.offset());
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
    nodes_.push_back(0);
    finishMeasure();
}

bool PartReader::move(const xml::Element& element, bool backwards) {
    inChord_ = false;
    const std::size_t offset = element.offset();
    const std::string name(element.nameText());
    const xml::Element stated = element.child(tag("duration"));
    const std::string_view text = stated.exists() ? stated.text() : "";
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
                        "a <backup> goes beyond the start of the measure; it is "
                        "taken to go to the start",
                        offset);
    }
    return true;
}

// Where the note is in time. The first note of a chord moves the clock;
// chord notes sound with it.
bool PartReader::timeNote(const NoteReading& note) {
    chordState_ = {};
    chordIsRounded_ = false;
    chordStated_ = note.duration;
    chordStart_ = clock_.exactNow();
    if (note.grace) {
        chordState_.grace = engine::Grace::grace;
        chordDuration_ = note.nominal > 0 ? note.nominal : engine::kQuarter / 2;
        return true;
    }
    if (!note.hasDuration) {
        journal_.fail("a note has no duration", note.element.offset(),
                      "Give it a <duration>; only grace notes have none.");
        return false;
    }
    const auto [span, isNominal] = timeOf(note, clock_);
    if (!span.valid) {
        journal_.fail("the duration of a note is too large or too fine", note.element.offset(),
                      "Correct the note's <duration> or the <divisions> of the part.");
        return false;
    }
    // The printed value says more than the sounding one, but only where both
    // agree.
    if (isNominal) {
        chordDuration_ = note.nominal;
        chordState_.actual = note.actual;
        chordState_.normal = note.normal;
    } else {
        chordDuration_ = clock_.units(span);
        const engine::Fraction exact = clock_.exact(span);
        if (!exact.isWhole() && exact.denominator() <= kMaxParts && exact.numerator() <= kMaxDuration) {
            chordDuration_ = static_cast<std::int32_t>(exact.numerator());
            chordState_.actual = static_cast<std::uint16_t>(exact.denominator());
        } else if (!exact.isWhole()) {
            chordIsRounded_ = true;
        }
    }
    if (!clock_.forward(span)) {
        journal_.fail("the measure is too long", note.element.offset(), "Correct the durations in it.");
        return false;
    }
    return true;
}

bool PartReader::addNote(const xml::Element& element) {
    NoteReading note;
    if (!readNote(element, note, journal_)) return false;
    if (!note.instrument.empty()) performance_.addNoteInstrument(note.element.node(), note.instrument);
    if (!needStaves(note.staff, note.element.offset())) return false;
    if (note.chord && inChord_) return joinEntry(note);
    if (note.chord) {
        journal_.notice("chord", "a chord note follows no note; it is taken as a note of its own",
                        note.element.offset());
    }
    if (!timeNote(note)) return false;
    chordBegin_ = gathered_.entries().size();
    chordVoice_ = note.voice.empty() ? "1" : note.voice;
    chordStaff_ = note.staff == 0 ? 0 : static_cast<std::size_t>(note.staff - 1);
    inChord_ = true;
    return startEntry(note, chordStaff_, false);
}

bool PartReader::statesChordLength(const NoteReading& note) const {
    return note.grace ||
           (note.duration.value == chordStated_.value && note.duration.scale == chordStated_.scale);
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
            entry.statesLength = entry.statesLength && statesChordLength(note);
            if (note.hasShapes) shapes_.addNote(note.element, i, chordVoice_);
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
                      note.element.offset(), "Divide the measure.");
        return false;
    }
    const int number = gathered_.voice(static_cast<int>(staff), chordVoice_);
    if (number < 0) {
        journal_.fail("staff " + std::to_string(staff + 1) + " of part \"" + name_ + "\" has more than " +
                          std::to_string(MeasureFrames::kMaxVoices) + " voices",
                      note.element.offset(), "Move voices of this measure to another staff.");
        return false;
    }
    GatheredEntry& entry = gathered_.add();
    entry.staff = static_cast<int>(staff);
    entry.voice = number;
    entry.sharesStem = continuesChord;
    entry.nodes[0] = note.element.node();
    entry.record.entryFlags = ENTRY_VALID | (note.rest ? 0U : ENTRY_NOTE);
    entry.record.duration = chordDuration_;
    entry.start = chordStart_;
    entry.statesLength = !chordIsRounded_ && statesChordLength(note);
    entry.record.elapsed = chordStart_.floor();
    engine::EntryState state = chordState_;
    state.unpitched = note.unpitched ? 1 : 0;
    state.marked = note.marked;
    state.cut = note.cut;
    engine::setEntryState(entry.record, state);
    if (!note.rest) addPitch(entry, note);
    if (note.hasShapes) shapes_.addNote(note.element, gathered_.entries().size() - 1, chordVoice_);
    return true;
}

void PartReader::addPitch(GatheredEntry& entry, const NoteReading& note) {
    const std::int16_t index = entry.record.noteCount++;
    ENOTE& record = entry.record.notes[index];
    record.displacement = static_cast<std::int16_t>(note.pitch.step);
    record.alteration = static_cast<std::int16_t>(note.pitch.alter);
    record.noteId = static_cast<std::uint16_t>(index + 1);
    record.noteFlags = note.noteFlags | (static_cast<std::uint32_t>(record.noteId & 31) << 16);
    entry.nodes[static_cast<std::size_t>(index)] = note.element.node();
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
