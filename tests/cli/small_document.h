// Documents for tests that need staves, measures and a few notes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/document.h"

namespace rovescio::test {

inline EXENTRY quarterNote(std::int32_t elapsed) {
    EXENTRY entry{};
    entry.duration = engine::kQuarter;
    entry.entryFlags = ENTRY_VALID | ENTRY_NOTE;
    entry.noteCount = 1;
    entry.elapsed = elapsed;
    return entry;
}

// Quarter notes at these positions, which may overlap.
inline void setNotes(engine::Document& document, const engine::FrameAddress& address,
                     const std::vector<std::int32_t>& positions) {
    std::vector<EXENTRY> entries;
    entries.reserve(positions.size());
    for (const std::int32_t position : positions) entries.push_back(quarterNote(position));
    document.setEntries(address, entries);
}

// Measures of 3/4 with the printed numbers given; three quarter notes in layer 1 of each measure and staff.
inline engine::Document smallDocument(short staves, const std::vector<std::string>& numbers) {
    engine::Document document;
    for (short staff = 1; staff <= staves; ++staff) {
        document.addStaff({.name = "Staff " + std::to_string(staff)});
    }
    for (const std::string& number : numbers) document.addMeasure({number});
    document.layOut();
    for (short staff = 1; staff <= staves; ++staff) {
        for (short measure = 1; measure <= document.measureCount(); ++measure) {
            document.staffMeasure(staff, measure).duration = 3 * engine::kQuarter;
            setNotes(document, {staff, measure, 0}, {0, engine::kQuarter, 2 * engine::kQuarter});
        }
    }
    return document;
}

}  // namespace rovescio::test
