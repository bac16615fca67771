// Reversal of a layer's entries.
#include "support/reversal.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace rovescio::test {

void reverse(engine::Session& session, short staff, short layer) {
    engine::Document& document = session.document;
    std::vector<std::vector<EXENTRY>> measures;
    std::vector<EXENTRY*> all;
    for (short m = 1; m <= document.measureCount(); ++m) {
        measures.push_back(std::as_const(document).entries({staff, m, layer}).expanded());
    }
    for (auto& measure : measures) {
        for (EXENTRY& entry : measure) all.push_back(&entry);
    }
    for (std::size_t i = 0; i < all.size() / 2; ++i) {
        std::swap(*all[i], *all[all.size() - 1 - i]);
        for (EXENTRY* entry : {all[i], all[all.size() - 1 - i]}) {
            for (ENOTE& note : entry->notes) {
                const std::uint32_t ties = note.noteFlags & NOTE_TIES;
                if (ties != 0 && ties != NOTE_TIES) note.noteFlags ^= NOTE_TIES;
            }
        }
    }
    for (short m = 1; m <= document.measureCount(); ++m) {
        session.massEdits.replace({staff, m, layer},
                                  engine::PackedEntries(measures[static_cast<std::size_t>(m - 1)]));
    }
}

bool reverseStaff(engine::Session& session, short staff) {
    const SXMassEdit edit = session.massEdits.start();
    for (short layer = 0; layer < engine::kMaxLayers; ++layer) reverse(session, staff, layer);
    const bool done =
        session.rebar({{0, staff, 1, 0}, {0, staff, session.document.measureCount(), 0x7FFFFFFF}});
    session.massEdits.end(edit, !done);
    return done;
}

}  // namespace rovescio::test
