// Reversal of a layer's entries.
#include "support/reversal.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace rovescio::test {

void reverse(engine::Session& session, short staff, short layer, engine::NumberRange measures) {
    const engine::Document& document = session.document;
    std::vector<EXENTRY> all;
    for (const short m : measures)
        std::ranges::copy(document.entries({staff, m, layer}).expanded(), std::back_inserter(all));
    std::ranges::reverse(all);
    for (EXENTRY& entry : all) {
        for (ENOTE& note : entry.notes) {
            const std::uint32_t ties = note.noteFlags & NOTE_TIES;
            if (ties != 0 && ties != NOTE_TIES) note.noteFlags ^= NOTE_TIES;
        }
    }
    auto next = all.begin();
    for (const short m : measures) {
        const auto end = next + static_cast<std::ptrdiff_t>(document.entries({staff, m, layer}).size());
        session.massEdits.replace({staff, m, layer}, engine::PackedEntries(std::vector(next, end)));
        next = end;
    }
}

bool reverseStaff(engine::Session& session, short staff, short first, short last) {
    if (last == 0) last = session.document.measureCount();
    const SXMassEdit edit = session.massEdits.start();
    for (short layer = 0; layer < engine::kMaxLayers; ++layer) reverse(session, staff, layer, {first, last});
    const bool done = session.rebar({{0, staff, first, 0}, {0, staff, last, 0x7FFFFFFF}});
    session.massEdits.end(edit, !done);
    return done;
}

}  // namespace rovescio::test
