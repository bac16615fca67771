// Where in the text of a score the document's entries come from.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/document.h"
#include "musicxml/clef.h"

namespace rovescio::musicxml {

// What the text says about one entry.
struct EntrySource {
    std::uint32_t firstNote = 0;  // index into SourceMap::notes
    std::int32_t duration = 0;
    std::int32_t elapsed = 0;
    engine::FrameAddress address;
    std::uint8_t noteCount = 0;  // 0 for a rest, which still has one element
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

struct SourceMap {
    std::vector<EntrySource> entries;  // of entry number n at n - 1
    std::vector<std::uint32_t> notes;  // offset of each <note>, by entry and then by note id
    std::vector<ClefMark> clefs;       // ascending by staff, measure and position
    std::vector<HarmonyMark> harmony;  // ascending by first staff and measure
};

}  // namespace rovescio::musicxml
