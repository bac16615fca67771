// Brings the text of one note in line with its record.
#pragma once

#include <optional>

#include "engine/key_signature.h"
#include "musicxml/note_text.h"
#include "musicxml/text_edits.h"

namespace rovescio::musicxml {

// What became of a note.
struct NoteChange {
    int oldStep = 0;  // diatonic steps from middle C
    int newStep = 0;
    bool moved = false;      // the written pitch is another
    bool possible = true;    // false when the pitch lies outside of the octaves that
                             // scores can write
    bool tiesAdded = false;  // the record has a tie that the text lacks
};

// Edits pitch, accidental and ties where they differ. Unpitched notes keep
// pitch and accidental. The pitch is the record's, spelled by its key.
NoteChange editNote(const NoteText& note, const ENOTE& record, const engine::SpelledPitch& pitch,
                    bool unpitched, TextEdits& edits);

}  // namespace rovescio::musicxml
