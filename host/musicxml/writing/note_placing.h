// Gives a note what its place in the score decides: length, voice, chord, beams, brackets and ties.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/model/note_values.h"
#include "musicxml/writing/note_groups.h"
#include "musicxml/writing/note_parts.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

// What a note states in its new place.
struct NoteShape {
    std::string duration;                    // in divisions; empty: as it is
    std::optional<engine::NoteValue> value;  // none: as it is; a rest for the whole measure does not say it
    bool measureRest = false;                // a rest for the whole measure
    std::string voice;                       // empty: as it is
    bool chord = false;                      // sounds with the note before it
    std::uint32_t ties = 0;                  // NOTE_TIE_START, NOTE_TIE_END
    std::string cutId;          // of the tie that joins it with the part before a cut; empty for none
    bool reversed = false;      // the order of notes around it is reversed
    bool continuation = false;  // is a later part of a note that was cut, without its marks
    const NoteGroups* groups = nullptr;  // its beams and brackets; null for none
};

// What the shape does not mention stays as it is, and so does what already agrees with it.
void placeNote(xml::Edits& edits, NoteScan& scan, xml::Node note, const NoteShape& shape);

// Makes a rest that the file did not have; staff 0 for none.
xml::Node makeRest(xml::Edits& edits, const NoteShape& shape, int staff);

}  // namespace rovescio::musicxml
