// What one measure holds beside its notes, with the time of each element.
#pragma once

#include <vector>

#include "engine/model/fraction.h"
#include "musicxml/rules/numbers.h"
#include "xml/edits.h"

namespace rovescio::musicxml {

struct MeasureContents {
    // Anything but notes, backups and forwards.
    struct Item {
        xml::Node node = 0;
        xml::Name name = 0;
        engine::Fraction time;  // from the start of the measure, duration units
    };
    std::vector<Item> items;
    // Steps in time that hold nothing but a duration, in order.
    std::vector<xml::Node> backups;
    std::vector<xml::Node> forwards;
};

// The measure as it is now; the divisions are those in force at its start.
MeasureContents readContents(const xml::Edits& edits, xml::Node measure, const Decimal& divisions);

}  // namespace rovescio::musicxml
