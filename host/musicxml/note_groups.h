// The groups that a note belongs to: beams, tuplet brackets, its voice and its chord.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

// A <tuplet> of a note.
struct TupletMark {
    std::string number;  // 1 if it says none
    bool start = false;
    std::string text;  // the whole element
};

// A <beam> of a note.
struct BeamMark {
    std::string number;
    std::string value;  // begin, continue, end, forward hook, backward hook
};

// What a note's text says about its groups.
struct NoteGroups {
    std::vector<TupletMark> tuplets;
    std::vector<BeamMark> beams;
    std::string voice;
    bool inChord = false;
};

// Takes in a child of a note that the walk over `text` is at, if it says something about groups.
void readGroup(TextWalk& walk, std::string_view text, NoteGroups& groups);

// An element with another id.
std::string withId(std::string_view element, std::string_view id);
// An element whose type, start or stop, is the other one.
std::string turned(std::string_view element);
// What a note is in a beam, or a syllable in its word, now that they are read backwards: begin and end change
// places.
std::string_view mirroredPart(std::string_view value);
TupletMark retyped(TupletMark mark, bool start);

}  // namespace rovescio::musicxml
