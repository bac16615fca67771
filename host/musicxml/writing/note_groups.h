// The groups that a note belongs to: beams, tuplet brackets, its voice and its chord.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "xml/edits.h"

namespace rovescio::musicxml {

// An end of a tuplet's bracket.
struct TupletMark {
    std::string number;      // 1 if it says none
    bool start = false;      // what it is to be
    std::string text = {};   // the whole element, which may come from the bracket's other end
    std::string newId = {};  // the element is to have this id; empty: as it has
};

// A <beam> of a note.
struct BeamMark {
    std::string number;
    std::string value;  // begin, continue, end, forward hook, backward hook

    friend bool operator==(const BeamMark&, const BeamMark&) = default;
};

// What a note says about its groups.
struct NoteGroups {
    std::vector<TupletMark> tuplets;
    std::vector<BeamMark> beams;
    std::string voice;
    bool inChord = false;
};

// Brackets that only a cut had made necessary are left out.
NoteGroups readGroups(const xml::Edits& edits, xml::Node note);
// Gives a note these beams and brackets, and no others.
void writeGroups(xml::Edits& edits, xml::Node note, const NoteGroups& groups);

// The part that a note plays in a beam, or a syllable in its word, in reversed order: begin and end are
// exchanged.
std::string_view reversedPart(std::string_view value);
// Changes the type of an element from start to stop or the other way.
void reverseType(xml::Edits& edits, xml::Node element);

}  // namespace rovescio::musicxml
