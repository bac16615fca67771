// Where in the text of a score the document's entries come from.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/document.h"
#include "engine/note_state.h"
#include "musicxml/clef.h"
#include "musicxml/numbers.h"

namespace rovescio::musicxml {

// What the text says about one entry.
struct EntrySource {
    std::uint32_t firstNote = 0;  // index into SourceMap::notes
    std::int32_t duration = 0;
    std::int32_t elapsed = 0;
    std::uint32_t look = 0;  // lookOf() its notes
    engine::FrameAddress address;
    std::uint8_t noteCount = 0;  // 0 for a rest, which still has one element
    bool isGap = false;          // nothing is written; it has no element at all
    bool sharesStem = false;     // the chord goes on in another entry, so its stem is
                                 // not this entry's own
    bool endsFrame = false;      // the last entry of its frame
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
    std::uint32_t offset = 0;  // of the first such element in the text
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
    std::vector<std::uint32_t>
        measures;  // offset of the element that holds each measure; 0 where the part has none
    std::vector<DivisionsMark> divisions;  // in force at the end of the measure; ascending
};

// A number that is another one when a note's written pitch or its showing of an accidental is; to be added up
// over the notes of an entry.
inline std::uint32_t lookOf(const engine::SpelledPitch& pitch, const ENOTE& note) {
    const auto place = static_cast<std::uint32_t>(pitch.step * 64 + pitch.alter);
    const std::uint32_t shown = (note.noteFlags & NOTE_FLAG24) != 0 ? 1 : 0;
    const auto cents = static_cast<std::uint32_t>(engine::centsOf(note));
    return (place * 256 + cents * 2 + shown) * 2654435761U * (2U * note.noteId + 1U);
}

// Offsets of the elements at both ends of a line.
struct ShapeSource {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
};

struct SourceMap {
    std::vector<EntrySource> entries;  // of entry number n at n - 1
    std::vector<std::uint32_t> notes;  // offset of each <note>, by entry and then by note id
    std::vector<ClefMark> clefs;       // ascending by staff, measure and position
    std::vector<HarmonyMark> harmony;  // ascending by first staff and measure
    std::vector<PartSource> parts;     // ascending by first staff
    std::vector<ShapeSource> shapes;   // of shape number n at n - 1
};

}  // namespace rovescio::musicxml
