// Keeps the directions of stems right when notes move.
#pragma once

#include <cstddef>
#include <vector>

#include "musicxml/rules/clef.h"
#include "musicxml/writing/note_parts.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

// The stems of one voice that is alone on its staff, in order. A stem is flipped
// only where the directions written before followed the usual rule: away from
// the side of the middle line on which the note of a chord or beamed group that
// lies farthest from it stands.
class StemEdits {
  public:
    explicit StemEdits(xml::Edits& edits) : edits_(edits) {}

    void clear();
    // Begins the next chord; false for fixed when its stem must stay as it is.
    void beginChord(const Clef& clef, bool movable);
    // Adds a note of the chord, with its steps from middle C before and now.
    void addNote(const NoteParts& note, int oldStep, int newStep, bool moved);
    // Flips the stems of the chords added since clear() where they need it.
    void apply();

  private:
    struct Chord {
        int middle = 0;
        bool movable = true;
        bool moved = false;
        Beam beam = Beam::none;
        int oldLow = 0, oldHigh = 0, newLow = 0,
            newHigh = 0;  // steps from the middle line
        std::size_t noteCount = 0;
        std::size_t firstStem = 0;
        std::size_t stemEnd = 0;
    };
    void settle(std::size_t first, std::size_t end);

    xml::Edits& edits_;
    std::vector<Chord> chords_;
    std::vector<xml::Node> stems_;
};

}  // namespace rovescio::musicxml
