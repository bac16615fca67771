// Ties whose notes part company.
#include "engine/edit/ties.h"

#include <gtest/gtest.h>

#include "engine/edit/consequences.h"
#include "support/score_text.h"

namespace rovescio::engine {
namespace {

struct Move {
    short measure;
    std::size_t entry;
    short steps;
};

std::string textAfter(const std::string& line, const std::vector<Move>& moves) {
    Document document = test::scoreFromText({line});
    MassEdits edits(document);
    const Consequences consequences(document, edits);
    const SXMassEdit edit = edits.start();
    for (const Move& move : moves) {
        for (ENOTE& note : edits.editable({1, move.measure, 0})[move.entry].notes()) {
            note.displacement = static_cast<short>(note.displacement + move.steps);
        }
    }
    edits.end(edit, false);
    return test::textOf(document);
}

TEST(Ties, BreakOnlyWhereTheNotesDiffer) {
    const std::tuple<const char*, std::vector<Move>, const char*> cases[] = {
        {"C 4/4 c4~:h c4^:h", {{1, 0, 1}, {1, 1, 1}}, "d4~:h d4^:h"},
        {"C 4/4 c4~:h c4^:h", {{1, 0, 1}}, "d4:h c4:h"},
        {"C 4/4 c4:h c4~:h | c4^~:h c4^:h", {{2, 0, 1}, {2, 1, 1}}, "c4:h c4:h | d4~:h d4^:h"},
        {"C 4/4 c4~:w | c4^:w", {{1, 0, 2}}, "e4:w | c4:w"},
        {"C 4/4 <c4~ e4~>:w | <c4^ e4^>:w", {{2, 0, 1}}, "<c4 e4>:w | <d4 f4>:w"},
        // A tie that had no other end before is not the engine's concern.
        {"C 4/4 c4~:h d4:h", {{1, 0, 1}}, "d4~:h d4:h"},
        // Enharmonic ties join the same sound.
        {"C 4/4 c#4~:h db4^:h", {}, "c#4~:h db4^:h"},
    };
    for (const auto& [before, moves, after] : cases) EXPECT_EQ(textAfter(before, moves), after) << before;
}

}  // namespace
}  // namespace rovescio::engine
