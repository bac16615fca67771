// Beams and tuplet brackets of notes that have new neighbours.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/model/fraction.h"
#include "engine/model/note_values.h"
#include "musicxml/writing/note_groups.h"

namespace rovescio::musicxml {

// One chord or rest of a voice inside a measure, in order.
struct GroupMember {
    engine::Fraction start;  // duration units from the start of the measure
    engine::Fraction length;
    std::int32_t value = 0;  // written
    bool rest = false;
    bool grace = false;
    bool tuplet = false;    // its length is not that of its value
    bool reversed = false;  // the order around it is reversed
    bool cut = false;       // it is a part of a longer note
    NoteGroups groups;      // as they were; afterwards as they are to be
};

// Gives an id that no other element of the score has.
using IdSource = std::function<std::string()>;

// A beam or bracket that is whole is kept, reversed where the order is. Beams that have lost a member are
// rebuilt within the beat. A bracket that has lost an end is put over its notes in this measure; an end
// that is made for it has an id, by which it is known and left out when the notes are put together again.
void mendGroups(std::vector<GroupMember*>& members, const engine::Metre& metre, const IdSource& nextId);

}  // namespace rovescio::musicxml
