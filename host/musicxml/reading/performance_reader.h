// Reads what a score says about its sound: instruments, tempo, dynamics, hairpins and transposing parts.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/model/performance.h"
#include "musicxml/reading/attributes_reader.h"
#include "musicxml/reading/measure_clock.h"
#include "musicxml/reading/source_map.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

// <note> elements that name their instrument, with its place in the list of their part.
using NoteInstruments = std::vector<std::pair<xml::Node, std::size_t>>;

// Tells the performance which instruments play the notes of the document; all parts have their sources.
void nameInstruments(NoteInstruments named, const SourceMap& sources, engine::Performance& performance);

// The instruments that the part list gives a part.
class PartInstruments {
  public:
    // Each reads such an element of a <score-part>.
    void addInstrument(const xml::Element& element);
    void addMidi(const xml::Element& element);

    // The place of an instrument in the list; the first for an unknown one.
    [[nodiscard]] std::size_t indexOf(std::string_view id) const;
    // At least one.
    [[nodiscard]] const std::vector<engine::Instrument>& list() const { return list_; }

  private:
    std::size_t place(std::string_view id);

    std::vector<std::string> ids_;
    std::vector<engine::Instrument> list_{1};
};

// Gathers the marks of one part while its measures are read. Nothing here can fail: what makes no sense is
// left out, since the score itself is none the worse for it.
class PerformanceReader {
  public:
    explicit PerformanceReader(PartInstruments instruments) : instruments_(std::move(instruments)) {}

    // Each reads such an element; the clock says when.
    void readDirection(const xml::Element& element, short measure, MeasureClock& clock);
    void readSound(const xml::Element& element, short measure, MeasureClock& clock);
    // A transposition of the staves from first to before last, which count from 0.
    void readTransposition(const xml::Element& element, short measure, const MeasureClock& clock,
                           std::size_t first, std::size_t last);
    // Fifths from the score's key to the one written for a staff, counted from 1, by its first transposition.
    [[nodiscard]] int fifths(short staff) const;
    void addTime(short measure, const TimeSignature& time);
    // A <note> names the instrument that plays it.
    void addNoteInstrument(xml::Node note, std::string_view id);

    // Adds the part's marks to those of the score, and its notes to those that name their instrument.
    void finish(short firstStaff, short staffCount, engine::Performance& performance, NoteInstruments& named);

  private:
    struct Direction;  // what the parts of one <direction> add up to
    static void readDynamics(const xml::Element& element, Direction& direction);
    static void readMetronome(const xml::Element& element, Direction& direction);
    static void readSoundOf(const xml::Element& element, Direction& direction);
    void add(const Direction& direction, short measure, MeasureClock& clock);
    void addWedge(const Direction& direction, const engine::ScorePlace& place);

    PartInstruments instruments_;
    engine::PartPerformance part_;
    std::vector<engine::TempoMark> tempos_;
    std::map<std::string, engine::Hairpin, std::less<>> openWedges_;  // by their numbers
    NoteInstruments noteInstruments_;
};

}  // namespace rovescio::musicxml
