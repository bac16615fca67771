// Scores as lines of text: "D 3/4 f#4:q <d4 a4>:h | r:h." and back.
//
// A line begins with the key (C, F#, Bb; minor in lower case: f#, bb; "none" for no standard key) and the
// time signature. Measures are divided by "|". An entry is a pitch (letter, # or b signs, octave; c4 is
// middle C), a chord in angle brackets or r for a rest, then ":" and its value: w h q e s t (whole to 32nd),
// dots, "*3:2" for a tuplet. A pitch may be followed by "'" (a quarter tone higher), "~" (tie starts), "^"
// (tie arrives), "!" (accidental shown), "+" (shown or hidden by hand). Where a voice is absent, its text has
// "_" in place of r. "/" in front of an entry makes it a grace entry.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/model/document.h"

namespace rovescio::test {

// A document of one staff for each line, all lines with as many measures. Every line fills layer 1 of its
// staff. Measures are labelled from 1 unless labels are given.
engine::Document scoreFromText(const std::vector<std::string>& lines,
                               const std::vector<std::string>& measureLabels = {});

// Puts a second, third or fourth layer under an existing staff; the line has no key and time signature.
void addLayer(engine::Document& document, short staff, short layer, const std::string& measures);

// Changes the entries of a frame behind the engine's back.
void editEntries(engine::Document& document, const engine::FrameAddress& address,
                 const std::function<void(std::vector<EXENTRY>&)>& edit);

// The measures of one staff and layer in the same notation, without key and time signature.
std::string textOf(const engine::Document& document, short staff = 1, short layer = 0);

// A written pitch such as "f#4".
engine::SpelledPitch pitchFromText(const std::string& text);
std::string textOf(const engine::SpelledPitch& pitch);

}  // namespace rovescio::test
