// Keys, clefs and time signatures as the <attributes> of a score give them.
#pragma once

#include <cstdint>

#include "engine/model/entry_state.h"
#include "engine/model/key_signature.h"
#include "musicxml/file/journal.h"
#include "musicxml/rules/clef.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

struct TimeSignature {
    std::int32_t length = 0;  // of a measure, duration units; 0 when measures are free
    std::int32_t beat = engine::kQuarter;
};

// Each reads such an element.
Clef readClef(const xml::Element& element);
// Fails, with the problem in the journal, when the fifths are no number or
// beyond reason.
bool readKey(const xml::Element& element, engine::KeySignature& key, Journal& journal);
// A signature that cannot be counted is noted and read as free.
TimeSignature readTime(const xml::Element& element, Journal& journal);

}  // namespace rovescio::musicxml
