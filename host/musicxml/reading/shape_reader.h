// Finds slurs, hairpins and other lines of a part by their ends.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/model/document.h"
#include "musicxml/file/journal.h"
#include "musicxml/reading/measure_frames.h"
#include "musicxml/reading/source_map.h"

namespace rovescio::musicxml {

// A line has two ends with the same number. An end without the other is not a shape; it stays in the text.
// Slurs, glissandi and slides belong to notes. Hairpins, brackets and dashes are between them and are
// attached to the first entry of their staff from their start on and to the last one up to their end.
class ShapeReader {
  public:
    // The lines of a <note>, which became a part of a gathered entry.
    void addNote(const xml::Element& note, std::size_t entry, std::string_view voice);
    // The lines of a <direction> at a time of the measure, duration units.
    void addDirection(const xml::Element& direction, short measure, std::int32_t time);
    // Pairs what the measure has, once its entries have their numbers.
    void endMeasure(const std::vector<GatheredEntry>& entries, short measure);

    // Adds the shapes to the document and their places to the sources; all entries have been laid out. Staves
    // are counted from the part's first.
    void finish(short firstStaff, const std::vector<GatheredFrame>& frames, engine::Document& document,
                SourceMap& sources, Journal& journal);

  private:
    struct End {
        xml::Name name = 0;       // of the element
        std::string_view number;  // empty for 1
        std::string_view voice;   // of a note's
        bool starts = false;
        engine::Shape shape;  // its own end of it, and its look
        std::size_t entry = 0;
        xml::Element element;
    };
    struct Line {
        engine::Shape shape;
        ShapeSource source;
        std::size_t offset = 0;  // of its start, in the text
    };
    static bool isSameLine(const End& left, const End& right);
    void open(const End& end);
    bool close(const End& end, bool sameVoice);
    void join(const End& start, const End& end);
    struct Place {
        int staff = 0;
        short measure = 0;
        std::int32_t position = 0;
    };
    // The first entry of a staff from a place on, or the last one up to it, not beyond a measure; the place
    // becomes its own. Null when there is none.
    static const engine::StoredEntry* nearest(const std::vector<GatheredFrame>& frames, Place& place,
                                              short until, bool forward);
    static bool attach(const std::vector<GatheredFrame>& frames, engine::Shape& shape);

    std::vector<End> ends_;      // of the measure being read, in the order of the text
    std::vector<End> open_;      // starts without an end so far
    std::vector<Line> onNotes_;  // in the order of their ends
    std::vector<Line> between_;
};

}  // namespace rovescio::musicxml
