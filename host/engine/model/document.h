// The document: staves, measures, keys and the frames of entries that transformations edit.
//
// Built by a score reader, edited through mass edits, read back by a score writer. Staves and measures count
// from 1, layers from 0, as in the host interface.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "contract/records.h"
#include "engine/model/entry_state.h"
#include "engine/model/key_signature.h"
#include "engine/model/number_range.h"
#include "engine/model/packed_entries.h"
#include "engine/model/record_store.h"
#include "engine/model/smart_shapes.h"

namespace rovescio::engine {

inline constexpr short kMaxLayers = 4;

struct Staff {
    std::string name;        // the part's name; for display
    bool unpitched = false;  // percussion: the key word is off the standard scales
    int fifths = 0;          // from the key of the score to the one written for a transposing instrument
};

// How a measure is spaced, for all staves; in hundredths of a staff space.
struct MeasureLayout {
    std::int16_t width = 0;  // 0: left to the program that shows the score
    std::int16_t spaceBefore = 0;
    std::int16_t spaceAfter = 0;
    std::uint16_t flags = 0;

    friend bool operator==(const MeasureLayout&, const MeasureLayout&) = default;
};

struct Measure {
    std::string label;  // the printed number, not always numeric nor unique
    MeasureLayout layout{};
};

// What a measure specification can change.
struct MeasureState {
    MeasureLayout layout;
    std::vector<KeySignature> keys;  // at the start of the measure, of all staves
};

// What one staff has in one measure.
struct StaffMeasure {
    KeySignature key;  // in force at the start of the measure; all notes are stored relative to it
    std::int32_t duration = 4 * kQuarter;  // length of the measure by its time signature or its contents
    std::int32_t beat = kQuarter;          // length of the beat unit
    bool changesInside = false;            // clef or key changes inside the measure
};

// A key change after the start of a measure. It governs which accidentals are shown, not how notes are
// stored.
struct KeyChange {
    short staff = 0;
    short measure = 0;
    std::int32_t position = 0;  // duration units from the start of the measure
    KeySignature key;
};

// Where a frame stands.
struct FrameAddress {
    short staff = 1;
    short measure = 1;
    short layer = 0;

    friend bool operator==(const FrameAddress&, const FrameAddress&) = default;
};

class Document {
  public:
    // --- building, by a score reader ---
    short addStaff(Staff staff);  // returns its number
    // Adds a measure after the last; fails (returns 0) beyond 32767.
    short addMeasure(Measure measure);
    // Once all staves and measures are known: makes room for frames. Frames are empty until set.
    void layOut();
    StaffMeasure& staffMeasure(short staff, short measure);
    void addKeyChange(const KeyChange& change);
    MeasureLayout& layout(short measure);
    // A slur, hairpin or other line; false when there are too many.
    bool addShape(const Shape& shape);
    // Entry numbers count from 1; one that is dropped is not given again.
    std::uint32_t nextEntryNumber() { return ++lastEntryNumber_; }
    // A new number for an entry that continues one that a barline split.
    std::uint32_t continuationOf(std::uint32_t entryNumber);
    // The entry that a continuation began with; any other entry is its own.
    [[nodiscard]] std::uint32_t originOf(std::uint32_t entryNumber) const;
    // Puts entries into an empty frame; they must be in the order of the layer.
    void setEntries(const FrameAddress& address, std::span<const EXENTRY> entries);
    void setPackedEntries(const FrameAddress& address, PackedEntries entries);

    // --- reading ---
    [[nodiscard]] short staffCount() const { return static_cast<short>(staves_.size()); }
    [[nodiscard]] short measureCount() const { return static_cast<short>(measures_.size()); }
    [[nodiscard]] NumberRange staffNumbers() const { return numbers(1, staffCount()); }
    [[nodiscard]] NumberRange measureNumbers() const { return numbers(1, measureCount()); }
    [[nodiscard]] const Staff& staff(short staff) const;
    [[nodiscard]] const Measure& measure(short measure) const;
    [[nodiscard]] const StaffMeasure& staffMeasure(short staff, short measure) const;
    [[nodiscard]] const PackedEntries& entries(const FrameAddress& address) const;
    // The key in force at a position, mid-measure changes included.
    [[nodiscard]] const KeySignature& keyAt(short staff, short measure, std::int32_t position) const;
    [[nodiscard]] std::uint32_t lastEntryNumber() const { return lastEntryNumber_; }
    [[nodiscard]] bool has(short staff, short measure) const;
    // A frame's place among all of them, and how many there are.
    [[nodiscard]] std::size_t frameIndex(const FrameAddress& address) const;
    [[nodiscard]] std::size_t frameCount() const { return frames_.size(); }

    // Slurs, hairpins and other lines as they were read, and the data records, theirs among them.
    [[nodiscard]] const SmartShapes& shapes() const { return shapes_; }
    [[nodiscard]] const RecordStore& records() const;
    // Whether any entry, or this one, has a mark of a shape that begins or ends there.
    [[nodiscard]] bool hasShapes() const { return !shapeEnds_.empty(); }
    [[nodiscard]] bool hasShapes(std::uint32_t entryNumber) const {
        return entryNumber < shapeEnds_.size() && shapeEnds_[entryNumber];
    }
    // Exchanges the records of one list, or what a measure specification can change, with those given; the
    // way of mass edits.
    void exchangeRecords(const RecordStore::Place& place, RecordStore::Incidents& incidents);
    // The records for a change of one list, which changeOfRecordsDone() is to follow.
    RecordStore& changingRecords();
    void changeOfRecordsDone(const RecordStore::Place& place);
    void exchangeMeasure(short measure, MeasureState& state);
    // Whether any record was ever exchanged.
    [[nodiscard]] bool recordsChanged() const { return recordsChanged_; }
    // Measures that were ever exchanged, with what they had when they were read.
    [[nodiscard]] const std::map<short, MeasureState>& changedMeasures() const { return changedMeasures_; }

    // Exchanges a frame's entries with those given; the way of mass edits, undo and rollback. The document
    // remembers the frame as changed.
    void exchangeEntries(const FrameAddress& address, PackedEntries& entries);
    // The entries of a frame that was exchanged before, for changes that keep their number.
    PackedEntries& changedEntries(const FrameAddress& address);
    // Frames that were ever exchanged, ascending, each once.
    [[nodiscard]] std::vector<FrameAddress> changedFrames() const;

  private:
    struct Frame {
        PackedEntries entries;
        bool changed = false;
    };
    [[nodiscard]] std::size_t cell(short staff, short measure) const;

    std::vector<Staff> staves_;
    std::vector<Measure> measures_;
    std::vector<StaffMeasure> staffMeasures_;
    std::vector<Frame> frames_;
    // By staff and measure, ascending.
    std::map<std::pair<short, short>, std::vector<KeyChange>> keyChanges_;
    std::uint32_t lastEntryNumber_ = 0;
    std::unordered_map<std::uint32_t, std::uint32_t> origins_;  // of continuations
    SmartShapes shapes_;
    std::vector<bool> shapeEnds_;  // by entry number
    // Most documents are never asked for a record: those of the shapes are made when the first one is.
    mutable RecordStore records_;
    mutable bool recordsMade_ = false;
    bool recordsChanged_ = false;
    std::map<short, MeasureState> changedMeasures_;
};

}  // namespace rovescio::engine
