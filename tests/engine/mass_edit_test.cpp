// Mass edits: rollback, nesting, undo and redo.
#include "engine/edit/mass_edit.h"

#include <gtest/gtest.h>

#include "support/score_text.h"

namespace rovescio::engine {
namespace {

class MassEditTest : public testing::Test {
  protected:
    void moveFirstNote(short measure, short steps) {
        ENOTE& note = edits.editable({1, measure, 0})[0].notes()[0];
        note.displacement = static_cast<short>(note.displacement + steps);
    }
    std::string text() const { return test::textOf(document); }

    Document document = test::scoreFromText({"C 4/4 c4:w | d4:w | e4:w"});
    MassEdits edits{document};
    const std::string original = test::textOf(document);
};

TEST_F(MassEditTest, IsOneExactUndoStepAndAnythingNewEndsWhatCouldBeRedone) {
    for (const short steps : {short{1}, short{2}}) {
        const SXMassEdit edit = edits.start();
        moveFirstNote(1, steps);
        moveFirstNote(2, steps);
        EXPECT_FALSE(edits.undo()) << "while it is open";
        edits.end(edit, false);
    }
    EXPECT_EQ(text(), "f4:w | g4:w | e4:w");
    ASSERT_TRUE(edits.undo());
    EXPECT_EQ(text(), "d4:w | e4:w | e4:w");
    ASSERT_TRUE(edits.redo());
    EXPECT_EQ(text(), "f4:w | g4:w | e4:w");
    edits.end(edits.start(), false);  // changes nothing
    ASSERT_TRUE(edits.undo() && edits.undo());
    EXPECT_EQ(text(), original);
    EXPECT_FALSE(edits.undo());
    const SXMassEdit edit = edits.start();
    moveFirstNote(3, 1);
    edits.end(edit, false);
    EXPECT_FALSE(edits.redo());
    EXPECT_EQ(document.changedFrames().size(), 3U);
}

TEST_F(MassEditTest, AnInnerEditBelongsToTheOuter) {
    const SXMassEdit outer = edits.start();
    moveFirstNote(1, 1);
    const SXMassEdit kept = edits.start();
    moveFirstNote(1, 1);
    moveFirstNote(2, 1);
    edits.end(kept, false);
    const SXMassEdit dropped = edits.start();
    moveFirstNote(2, 3);
    moveFirstNote(3, 3);
    edits.end(dropped, true);
    EXPECT_EQ(text(), "e4:w | e4:w | e4:w");
    edits.end(outer, true);
    EXPECT_EQ(text(), original);
    EXPECT_FALSE(edits.undo());
}

}  // namespace
}  // namespace rovescio::engine
