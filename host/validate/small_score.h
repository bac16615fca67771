// The score on which a plug-in is tried, and what to look at in it afterwards.
#pragma once

#include <functional>
#include <string>

#include "engine/model/document.h"

namespace rovescio::validate {

// Two staves in G major and E flat major, three measures with chords, single notes, rests and ties.
engine::Document smallScore();

// Both staves, from the second quarter of measure 1 to the third of measure 2.
EREGION smallSelection();

// All that the document holds, byte for byte.
std::string contentOf(const engine::Document& document);

// What a transformation makes of a note of the selection.
using Expectation = std::function<engine::SpelledPitch(const engine::KeySignature& key, const ENOTE& note)>;

// The first note of `after` that has not become what it should: as expected inside the selection, as it was
// outside. Empty when there is none.
std::string firstWrongNote(const engine::Document& before, const engine::Document& after,
                           const Expectation& expected);

}  // namespace rovescio::validate
