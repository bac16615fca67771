// The elements of a score that the document's entries come from.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/model/document.h"
#include "musicxml/rules/clef.h"
#include "musicxml/rules/numbers.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

// What the text says about one entry.
struct EntrySource {
    std::uint32_t firstNote = 0;  // index into SourceMap::notes
    std::int32_t duration = 0;
    std::int32_t elapsed = 0;
    engine::FrameAddress address;
    std::uint8_t noteCount = 0;  // 0 for a rest, which still has one element
    bool isGap = false;          // nothing is written; it has no element at all
    bool sharesStem = false;     // the chord goes on in another entry, so its stem is
                                 // not this entry's own
    bool endsFrame = false;      // the last entry of its frame
    bool statesLength = true;    // each of its notes has the duration of the entry, exactly
};

// A clef takes effect.
struct ClefMark {
    short staff = 0;
    short measure = 0;
    std::int32_t position = 0;  // duration units
    Clef clef;
};

// A measure holds harmony or figured bass, which says what pitches sound.
struct HarmonyMark {
    short firstStaff = 0;
    short lastStaff = 0;
    short measure = 0;
    xml::Node node = 0;  // the first such element
};

// Divisions of a quarter, from a measure of a part on.
struct DivisionsMark {
    short measure = 0;
    Decimal divisions;
};

// A part in the text.
struct PartSource {
    short firstStaff = 0;
    short staffCount = 0;
    std::vector<xml::Node> measures;       // the element that holds each measure; 0 where the part has none
    std::vector<DivisionsMark> divisions;  // in force at the end of the measure; ascending
    std::vector<std::int32_t> contents;    // what each measure lasts by its contents, duration units
};

// The elements at both ends of a line.
struct ShapeSource {
    xml::Node first = 0;
    xml::Node last = 0;
};

struct SourceMap {
    std::vector<EntrySource> entries;  // of entry number n at n - 1
    std::vector<xml::Node> notes;      // each <note>, by entry and then by note id
    std::vector<ClefMark> clefs;       // ascending by staff, measure and position
    std::vector<HarmonyMark> harmony;  // ascending by first staff and measure
    std::vector<PartSource> parts;     // ascending by first staff
    std::vector<ShapeSource> shapes;   // of shape number n at n - 1
};

// The clef in force at a position; treble where none was written.
const Clef& clefAt(const SourceMap& sources, const engine::FrameAddress& address, std::int32_t position);

}  // namespace rovescio::musicxml
