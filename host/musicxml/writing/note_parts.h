// The parts of a <note>, by the order that the format gives them.
#pragma once

#include <cstdint>
#include <vector>

#include "xml/edits.h"

namespace rovescio::musicxml {

// A note's part in the outermost beam.
enum class Beam { none, begin, inside, end };

// A <tie>, or a <tied> inside one of the note's <notations>.
struct TieElement {
    xml::Node node = 0;
    std::uint32_t flag = 0;  // NOTE_TIE_START or NOTE_TIE_END
    bool notated = false;    // <tied>
};

// The elements that a change of pitch can touch; 0 for what is not there.
struct NoteParts {
    xml::Node note = 0;
    xml::Node step = 0, alter = 0, octave = 0;
    xml::Node accidental = 0;
    xml::Node stem = 0;
    std::vector<TieElement> ties;
    Beam beam = Beam::none;
    bool tablature = false;  // says by string or fret where it is played
};

class NoteScan {
  public:
    explicit NoteScan(const xml::Edits& edits) : edits_(edits) {}

    // The parts of a note as it is now, valid until the next call.
    const NoteParts& of(xml::Node note);

  private:
    void scanPitch(xml::Node pitch);
    void scanNotations(xml::Node notations);
    void addTie(xml::Node tie, bool notated);

    const xml::Edits& edits_;
    NoteParts parts_;
};

// Puts an element that has no place yet into a note, where the format wants it: after everything that the
// format puts before it.
void insertIntoNote(xml::Edits& edits, xml::Node note, xml::Node added);
// Puts an element into the first <notations> of a note, which is made where there is none.
void insertIntoNotations(xml::Edits& edits, xml::Node note, xml::Node added);
// Takes an element out of <notations>, which goes with it when nothing is left.
void removeFromNotations(xml::Edits& edits, xml::Node notations, xml::Node gone);

// The elements of a name in all <notations> of a note.
std::vector<xml::Node> inNotations(const xml::Edits& edits, xml::Node note, xml::Name name);

}  // namespace rovescio::musicxml
