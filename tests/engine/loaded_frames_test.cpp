// Frames as a plug-in gets them, and the rules it breaks with them.
#include "engine/interface/loaded_frames.h"

#include <gtest/gtest.h>

#include "engine/interface/functions.h"
#include "engine/interface/session.h"
#include "support/memory_user_interface.h"
#include "support/score_text.h"

namespace rovescio::engine {
namespace {

using namespace functions;

class LoadedFramesTest : public testing::Test {
  protected:
    LoadedFramesTest() {
        setBrokenRuleHandler([this](Rule rule, const std::string&) { broken.push_back(rule); });
    }
    ~LoadedFramesTest() override { setBrokenRuleHandler({}); }

    static EXTGF2005a* load(short measure = 1) { return SX_LoadTGF(0, 1, measure, 0, 0); }

    Document document = test::scoreFromText({"C 4/4 c4:h <e4 g4 b4>:h | r:w"});
    test::MemoryUserInterface front;
    Session session{document, front};
    std::vector<Rule> broken;
};

TEST_F(LoadedFramesTest, FramesThatDoNotExistAreNull) {
    EXPECT_TRUE(!SX_LoadTGF(0, 2, 1, 0, 0) && !SX_LoadTGF(0, 1, 3, 0, 0));
    EXPECT_TRUE(!SX_LoadTGF(0, 1, 1, 4, 0) && !SX_LoadTGF(7, 1, 1, 0, 0));
    EXTGF2005a* empty = SX_LoadTGF(0, 1, 1, 3, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(+empty->entryCount, 0);
    SX_FreeTGF(empty);
    EXPECT_TRUE(broken.empty());
}

TEST_F(LoadedFramesTest, SavingSortsChordsDropsPlaceholdersAndKeepsUnpitchedNotes) {
    SXMassEdit edit = SX_StartMassEdit(nullptr, 100);
    EXTGF2005a* frame = load();
    frame->entries[1].notes[0].displacement += 7;
    SX_SaveTGF(frame);
    SX_FreeTGF(frame);
    frame = load(2);
    frame->entries[0].noteCount = 1;
    frame->entries[0].notes[0].noteFlags = NOTE_PLACEHOLDER;
    SX_SaveTGF(frame);
    SX_FreeTGF(frame);
    EXPECT_EQ(test::textOf(document), "c4:h <g4 b4 e5>:h | r:w");

    EntryState unpitched = entryState(session.massEdits.editable({1, 1, 0})[0]);
    unpitched.unpitched = 1;
    setEntryState(session.massEdits.editable({1, 1, 0})[0], unpitched);
    frame = load();
    frame->entries[0].notes[0].displacement += 2;
    frame->entries[0].notes[0].alteration += 1;
    std::swap(frame->entries[0], frame->entries[1]);
    SX_SaveTGF(frame);
    SX_FreeTGF(frame);
    EXPECT_EQ(test::textOf(document), "<g4 b4 e5>:h c4:h | r:w");
    SX_EndMassEdit(edit, 0);
    EXPECT_TRUE(broken.empty());
}

TEST_F(LoadedFramesTest, InsertsAndDeletesEntries) {
    SXMassEdit edit = SX_StartMassEdit(nullptr, 100);
    EXTGF2005a* frame = load(2);
    EXPECT_EQ(SX_InsertEXENTRY(frame, 2, 1), 0);
    ASSERT_EQ(SX_InsertEXENTRY(frame, 1, 2), 1);
    ASSERT_EQ(+frame->entryCount, 3);
    EXPECT_EQ(+frame->entries[0].duration, 4096);
    EXPECT_EQ(+frame->entries[1].entryFlags, ENTRY_VALID);
    EXPECT_NE(+frame->entries[1].entryNumber, +frame->entries[2].entryNumber);
    EXPECT_EQ(SX_DeleteEXENTRY(frame, 2, 2), 0);
    EXPECT_EQ(SX_DeleteEXENTRY(frame, 0, 2), 1);
    EXPECT_EQ(+frame->entryCount, 1);
    frame->entries[0].entryFlags |= ENTRY_NOTE;
    frame->entries[0].noteCount = kMaxNotes;
    SX_SaveTGF(frame);
    SX_FreeTGF(frame);
    SX_EndMassEdit(edit, 0);
    ASSERT_EQ(document.entries({1, 2, 0}).size(), 1U);
    EXPECT_EQ((*document.entries({1, 2, 0}).begin()).noteCount, kMaxNotes);
    EXPECT_TRUE(broken.empty());
}

// The other rules are broken by the plug-ins that the validator is tried on.
TEST_F(LoadedFramesTest, BrokenRulesAreNamed) {
    EXTGF2005a own{};
    SX_FreeTGF(&own);
    EXPECT_EQ(broken, std::vector<Rule>{Rule::frameUnknown});

    EXTGF2005a* frame = load();
    EXENTRY* const replaced = frame->entries;
    SX_InsertEXENTRY(frame, 0, 1);
    replaced[0].duration = 7;
    SX_FreeTGF(frame);
    session.checkBalanced();
    EXPECT_EQ(broken.back(), Rule::frameWrittenAfterFree);

    SXMassEdit edit = SX_StartMassEdit(nullptr, 100);
    frame = load();
    frame->entryCount = 1;
    SX_SaveTGF(frame);
    EXPECT_EQ(broken.back(), Rule::frameHeaderChanged);
    frame->entryCount = 2;
    SX_FreeTGF(frame);
    SX_EndMassEdit(edit, 0);
    EXPECT_EQ(broken.size(), 3U);
}

}  // namespace
}  // namespace rovescio::engine
