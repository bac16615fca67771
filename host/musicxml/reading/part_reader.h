// Reads the measures of one part, in order, into entries and what the staves
// need to know.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/model/document.h"
#include "musicxml/reading/attributes_reader.h"
#include "musicxml/reading/measure_clock.h"
#include "musicxml/reading/measure_frames.h"
#include "musicxml/reading/note_reading.h"
#include "musicxml/reading/performance_reader.h"
#include "musicxml/reading/shape_reader.h"
#include "musicxml/reading/source_map.h"

namespace rovescio::musicxml {

// One staff of a part: what is in force now and what each measure had.
struct StaffReading {
    engine::KeySignature key;
    engine::KeySignature measureKey;  // at the start of the measure being read
    std::int32_t keyPosition = 0;     // where in that measure `key` began
    Clef clef;
    TimeSignature time;
    std::vector<engine::StaffMeasure> measures;
    bool pitchedClef = false;  // had a clef other than percussion
    bool percussionClef = false;
    bool pitchedNote = false;
    bool unpitchedNote = false;

    // Whether nothing on the staff has a pitch in a key.
    [[nodiscard]] bool isUnpitched() const {
        return (percussionClef && !pitchedClef) || (unpitchedNote && !pitchedNote);
    }
};

class PartReader {
  public:
    // Staff-measures over the whole score; an orchestra of 60 staves reaches
    // 17,000 measures.
    static constexpr std::size_t kMaxCells = std::size_t{1} << 20;

    PartReader(std::string name, PartInstruments instruments, Journal& journal, engine::Document& document,
               SourceMap& sources)
        : name_(std::move(name)),
          journal_(journal),
          document_(document),
          sources_(sources),
          performance_(std::move(instruments)),
          staves_(1) {}

    // Reads the next measure from the element that holds its contents. False when the journal has a problem.
    bool readMeasure(const xml::Element& element);
    // The part has nothing for the next measure.
    void skipMeasure();
    // To be called after the last measure; the frames have their final layers then.
    void finishLayers() { gathered_.orderLayers(frames_); }

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] std::vector<StaffReading>& staves() { return staves_; }
    [[nodiscard]] std::vector<GatheredFrame>& frames() { return frames_; }
    [[nodiscard]] const std::vector<ClefMark>& clefs() const { return clefs_; }
    [[nodiscard]] const std::vector<engine::KeyChange>& keyChanges() const { return keyChanges_; }
    // Without their staves.
    [[nodiscard]] const std::vector<HarmonyMark>& harmony() const { return harmony_; }
    [[nodiscard]] ShapeReader& shapes() { return shapes_; }
    // Extra space before measures, hundredths of a staff space.
    [[nodiscard]] const std::vector<std::pair<short, std::int16_t>>& distances() const { return distances_; }
    [[nodiscard]] PerformanceReader& performance() { return performance_; }
    [[nodiscard]] short measureCount() const { return measureCount_; }
    // What a measure lasts by its contents and by its time signature, duration units; 0 for unknown.
    struct Lengths {
        std::int32_t contents = 0;
        std::int32_t signature = 0;
    };
    [[nodiscard]] const std::vector<Lengths>& lengths() const { return lengths_; }
    // The elements that hold the measures; none where the part has none.
    [[nodiscard]] std::vector<xml::Node>& nodes() { return nodes_; }
    [[nodiscard]] std::vector<DivisionsMark>& divisions() { return divisions_; }

  private:
    // A key or clef at some point of the measure.
    struct Change {
        std::size_t staff = 0;
        std::int32_t position = 0;
        bool isKey = false;
        engine::KeySignature key;
    };

    void beginMeasure();
    void finishMeasure();
    bool readAttributes(const xml::Element& element);
    bool readDivisions(const xml::Element& element);
    bool applyKey(const xml::Element& element);
    bool applyClef(const xml::Element& element);
    bool applyTime(const xml::Element& element);
    bool applyTransposition(const xml::Element& element);
    bool addNote(const xml::Element& element);
    bool timeNote(const NoteReading& note);
    bool joinEntry(const NoteReading& note);
    bool startEntry(const NoteReading& note, std::size_t staff, bool continuesChord);
    [[nodiscard]] bool statesChordLength(const NoteReading& note) const;
    void addPitch(GatheredEntry& entry, const NoteReading& note);
    bool move(const xml::Element& element, bool backwards);
    bool needStaves(int count, std::size_t offset);
    // The staves that an element's `number` means: from first to before last.
    // Without a number these are all.
    struct StaffRange {
        std::size_t first = 0;
        std::size_t last = 0;
    };
    bool numberedStaves(const xml::Element& element, StaffRange& range);

    std::string name_;
    Journal& journal_;
    engine::Document& document_;
    SourceMap& sources_;
    PerformanceReader performance_;
    ShapeReader shapes_;
    std::vector<std::pair<short, std::int16_t>> distances_;
    std::vector<StaffReading> staves_;
    std::vector<GatheredFrame> frames_;
    std::vector<ClefMark> clefs_;
    std::vector<engine::KeyChange> keyChanges_;
    std::vector<HarmonyMark> harmony_;
    std::vector<Lengths> lengths_;
    std::vector<xml::Node> nodes_;
    std::vector<DivisionsMark> divisions_;
    short measureCount_ = 0;

    // Of the measure being read.
    MeasureClock clock_;
    MeasureFrames gathered_;
    std::vector<Change> changes_;
    std::vector<engine::KeySignature> keys_;

    // Of the note or chord being read.
    std::size_t chordBegin_ = 0;  // its first entry
    engine::Fraction chordStart_;
    std::int32_t chordDuration_ = 0;
    Decimal chordStated_;          // duration of its first note
    bool chordIsRounded_ = false;  // the entry cannot express it exactly
    engine::EntryState chordState_;
    std::string_view chordVoice_;
    std::size_t chordStaff_ = 0;
    bool inChord_ = false;  // a note has been read that a chord note can join
};

}  // namespace rovescio::musicxml
