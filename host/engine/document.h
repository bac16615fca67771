// The document: staves, measures, keys and the frames of entries that transformations edit.
//
// Built by a score reader, edited through mass edits, read back by a score writer. Staves and measures count
// from 1, layers from 0, as in the host interface.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "contract/records.h"
#include "engine/entry_state.h"
#include "engine/key_signature.h"
#include "engine/packed_entries.h"

namespace rovescio::engine {

inline constexpr short kMaxLayers = 4;

struct Staff {
    std::string name;        // the part's name; for display
    bool unpitched = false;  // percussion: the key word is off the standard scales
};

struct Measure {
    std::string label;  // the printed number, not always numeric nor unique
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
    // Entry numbers count from 1; one that is dropped is not given again.
    std::uint32_t nextEntryNumber() { return ++lastEntryNumber_; }
    // Puts entries into an empty frame; they must be in the order of the layer.
    void setEntries(const FrameAddress& address, std::span<const EXENTRY> entries);
    void setPackedEntries(const FrameAddress& address, PackedEntries entries);

    // --- reading ---
    [[nodiscard]] short staffCount() const { return static_cast<short>(staves_.size()); }
    [[nodiscard]] short measureCount() const { return static_cast<short>(measures_.size()); }
    [[nodiscard]] const Staff& staff(short staff) const;
    [[nodiscard]] const Measure& measure(short measure) const;
    [[nodiscard]] const StaffMeasure& staffMeasure(short staff, short measure) const;
    [[nodiscard]] const PackedEntries& entries(const FrameAddress& address) const;
    // The key in force at a position, mid-measure changes included.
    [[nodiscard]] const KeySignature& keyAt(short staff, short measure, std::int32_t position) const;
    [[nodiscard]] std::uint32_t lastEntryNumber() const { return lastEntryNumber_; }
    [[nodiscard]] bool has(short staff, short measure) const;

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
    [[nodiscard]] std::size_t frameIndex(const FrameAddress& address) const;

    std::vector<Staff> staves_;
    std::vector<Measure> measures_;
    std::vector<StaffMeasure> staffMeasures_;
    std::vector<Frame> frames_;
    // By staff and measure.
    std::map<std::pair<short, short>, std::vector<KeyChange>> keyChanges_;
    std::uint32_t lastEntryNumber_ = 0;
};

}  // namespace rovescio::engine
