// The parts of a <note> in the text that a change of pitch can touch.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

// A note's part in the outermost beam.
enum class Beam { none, begin, inside, end };

// A <tie>, or a <tied> inside one of the note's <notations>.
struct TieElement {
    Element element;
    std::uint32_t flag = 0;  // NOTE_TIE_START or NOTE_TIE_END
    int notations = -1;      // index of its <notations>; -1 for a <tie>
};

struct NotationsElement {
    Element element;
    int children = 0;
};

struct NoteText {
    Element step, alter, octave;
    Element accidental;
    Element beforeAccidental;  // the last of the children that stand before an
                               // <accidental>
    Element stem;
    std::vector<TieElement> ties;
    std::vector<NotationsElement> notations;
    Beam beam = Beam::none;
    bool tablature = false;  // says by string or fret where it is played
};

// Scans the note at an offset of the walk's text; a reused object keeps its
// memory.
void scanNote(TextWalk& walk, std::size_t offset, NoteText& note);

}  // namespace rovescio::musicxml
