// Brings the written pitch, accidental and ties of a note in line with its record.
#pragma once

#include <cstdint>
#include <string_view>

#include "contract/records.h"
#include "engine/model/key_signature.h"
#include "musicxml/file/journal.h"
#include "musicxml/writing/note_parts.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

// What became of a note.
struct NoteChange {
    int oldStep = 0;  // diatonic steps from middle C
    int newStep = 0;
    bool moved = false;    // the written pitch is another
    bool possible = true;  // false when the pitch lies outside of the octaves that scores can write
};

// Changes pitch and accidental where they differ. The pitch is the record's, spelled by its key. Unpitched
// notes keep both.
NoteChange editPitch(xml::Edits& edits, const NoteParts& note, const ENOTE& record,
                     const engine::SpelledPitch& pitch, bool unpitched);

// Reports that a note would leave the octaves that can be written; false.
bool refuseOctave(Journal& journal, std::size_t offset);

// Gives a note the ties of these flags and no others. A tie that starts where one has ended keeps its look.
void editTies(xml::Edits& edits, const NoteParts& note, std::uint32_t flags);
// The same with the id of the tie that joins the note with the part before a cut; empty for none.
void editTies(xml::Edits& edits, const NoteParts& note, std::uint32_t flags, std::string_view cutId);

}  // namespace rovescio::musicxml
