// Fills measures with a sequence of entries, cutting those that cross a barline.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/model/entry_state.h"
#include "engine/model/fraction.h"
#include "engine/model/note_values.h"
#include "engine/model/packed_entries.h"

namespace rovescio::engine {

// The time that an entry takes in its layer; none for a grace entry.
Fraction lengthOf(const StoredEntry& entry);

// One entry of the sequence, which outlives the pour.
struct PourItem {
    const StoredEntry* entry = nullptr;
    bool graceOfBefore = false;  // a grace entry that belongs to the entry before it
    bool aside = false;          // of a second voice, which keeps its place and takes no time here

    [[nodiscard]] bool isRest() const { return (entry->entryFlags & ENTRY_NOTE) == 0; }
};

// A whole item or a part of one, in its measure.
struct PourPiece {
    std::uint32_t item = 0;       // whose notes it has
    std::uint32_t firstItem = 0;  // whose notes say which ties end here
    std::uint32_t lastItem = 0;   // and what ties leave
    std::uint32_t measure = 0;    // from 0
    Fraction start;               // from the start of the measure
    std::int32_t duration = 0;    // note value
    bool continues = false;       // an earlier piece of the item comes before it
    bool continued = false;
    bool cutBefore = false;   // tied to the piece before by a cut of this rebar or an earlier one
    bool renumbered = false;  // the item's own number belongs to another piece
    bool loose = false;       // a rest that was cut, to be grouped again
    Silence silence = Silence::rest;
};

struct PourResult {
    std::vector<PourPiece> pieces;
    std::string fault;        // why it cannot be done; empty when it was
    std::size_t measure = 0;  // where
};

// The items fill the measures exactly, or there is a fault. Parts of a note that has no single value are as
// many pieces as its metre asks for.
PourResult pour(const std::vector<PourItem>& items, const std::vector<Metre>& measures);

// Groups the rests again wherever a run of them has a loose one. Pieces are those of one measure, in order.
void groupRests(std::vector<PourPiece>& pieces, const std::vector<PourItem>& items, const Metre& metre);

}  // namespace rovescio::engine
