// One <note> element, read into plain values.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/model/key_signature.h"
#include "musicxml/file/journal.h"
#include "musicxml/rules/numbers.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

// How the ids of ties and tuplet brackets begin that stand only because a barline, or the edge of a
// selection, has come between what belongs together.
inline constexpr std::string_view kCutId = "rovescio-cut-";

// What a note element says; positions and keys are not its concern.
struct NoteReading {
    xml::Element element;
    bool grace = false;
    bool chord = false;      // sounds together with the note before it
    bool rest = true;        // has neither a pitch nor a place on the staff
    bool unpitched = false;  // has a place on the staff only
    bool hasShapes = false;  // a slur, glissando or slide starts or ends here
    bool cut = false;        // its tie joins what a barline had cut
    bool marked = false;     // carries lyrics, articulations, ornaments or the like
    bool hasDuration = false;
    engine::SpelledPitch pitch;
    Decimal duration;          // in divisions
    std::int32_t nominal = 0;  // note value with dots, duration units; 0 when the note gives none
    std::uint16_t actual = 1;  // tuplet ratio: actual notes in the time of normal
    std::uint16_t normal = 1;
    std::uint32_t noteFlags = 0;  // ties and accidental
    std::string_view voice;       // empty when the note names none
    std::string_view instrument;  // likewise
    int staff = 0;                // within the part, from 1; 0 when the note names none
};

// Reads a note; on failure the journal has the problem and the result is false.
bool readNote(const xml::Element& element, NoteReading& note, Journal& journal);

// Letter number (0 C to 6 B) of a step's text; -1 when it is none.
int letterOf(std::string_view step);

}  // namespace rovescio::musicxml
