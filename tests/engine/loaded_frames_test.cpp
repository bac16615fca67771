// Frames as a plug-in gets them, and the rules it breaks with them.
#include "engine/interface/loaded_frames.h"

#include <gtest/gtest.h>

#include "contract/host_parameters.h"
#include "engine/interface/session.h"
#include "support/memory_user_interface.h"
#include "support/score_text.h"

// The exported host functions, called as a plug-in does.
#define HOST_FUNCTION(result, name, ...) extern "C" result name(HOST_DECLARATIONS_AND_VERSION(__VA_ARGS__));
#define HOST_GUARDED(result, name, ...) HOST_FUNCTION(result, name, __VA_ARGS__)
#define HOST_KIT_FUNCTION(result, name, ...)
#define HOST_KIT_GUARDED(result, name, ...)
#include "contract/host_functions.def"

namespace rovescio::engine {
namespace {

constexpr std::uint32_t V = kKitVersion;

class LoadedFramesTest : public testing::Test {
  protected:
    LoadedFramesTest() {
        setBrokenRuleHandler([this](Rule rule, const std::string&) { broken.push_back(rule); });
    }
    ~LoadedFramesTest() override { setBrokenRuleHandler({}); }

    static EXTGF2005a* load(short measure = 1) { return SX_LoadTGF(0, 1, measure, 0, 0, V); }

    Document document = test::scoreFromText({"C 4/4 c4:h <e4 g4 b4>:h | r:w"});
    test::MemoryUserInterface front;
    Session session{document, front};
    std::vector<Rule> broken;
};

TEST_F(LoadedFramesTest, FramesThatDoNotExistAreNull) {
    EXPECT_TRUE(!SX_LoadTGF(0, 2, 1, 0, 0, V) && !SX_LoadTGF(0, 1, 3, 0, 0, V));
    EXPECT_TRUE(!SX_LoadTGF(0, 1, 1, 4, 0, V) && !SX_LoadTGF(7, 1, 1, 0, 0, V));
    EXTGF2005a* empty = SX_LoadTGF(0, 1, 1, 3, 0, V);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(+empty->entryCount, 0);
    SX_FreeTGF(empty, V);
    EXPECT_TRUE(broken.empty());
}

TEST_F(LoadedFramesTest, SavingSortsChordsDropsPlaceholdersAndKeepsUnpitchedNotes) {
    SXMassEdit edit = SX_StartMassEdit(nullptr, 100, V);
    EXTGF2005a* frame = load();
    frame->entries[1].notes[0].displacement += 7;
    SX_SaveTGF(frame, V);
    SX_FreeTGF(frame, V);
    frame = load(2);
    frame->entries[0].noteCount = 1;
    frame->entries[0].notes[0].noteFlags = NOTE_PLACEHOLDER;
    SX_SaveTGF(frame, V);
    SX_FreeTGF(frame, V);
    EXPECT_EQ(test::textOf(document), "c4:h <g4 b4 e5>:h | r:w");

    EntryState unpitched = entryState(session.massEdits.editable({1, 1, 0})[0]);
    unpitched.unpitched = 1;
    setEntryState(session.massEdits.editable({1, 1, 0})[0], unpitched);
    frame = load();
    frame->entries[0].notes[0].displacement += 2;
    SX_SaveTGF(frame, V);
    SX_FreeTGF(frame, V);
    EXPECT_EQ(test::textOf(document), "c4:h <g4 b4 e5>:h | r:w");
    SX_EndMassEdit(edit, 0, V);
    EXPECT_TRUE(broken.empty());
}

TEST_F(LoadedFramesTest, InsertsAndDeletesEntries) {
    SXMassEdit edit = SX_StartMassEdit(nullptr, 100, V);
    EXTGF2005a* frame = load(2);
    EXPECT_EQ(SX_InsertEXENTRY(frame, 2, 1, V), 0);
    ASSERT_EQ(SX_InsertEXENTRY(frame, 1, 2, V), 1);
    ASSERT_EQ(+frame->entryCount, 3);
    EXPECT_EQ(+frame->entries[0].duration, 4096);
    EXPECT_EQ(+frame->entries[1].entryFlags, ENTRY_VALID);
    EXPECT_NE(+frame->entries[1].entryNumber, +frame->entries[2].entryNumber);
    EXPECT_EQ(SX_DeleteEXENTRY(frame, 2, 2, V), 0);
    EXPECT_EQ(SX_DeleteEXENTRY(frame, 0, 2, V), 1);
    EXPECT_EQ(+frame->entryCount, 1);
    SX_SaveTGF(frame, V);
    SX_FreeTGF(frame, V);
    SX_EndMassEdit(edit, 0, V);
    EXPECT_EQ(document.entries({1, 2, 0}).size(), 1U);
    EXPECT_TRUE(broken.empty());
}

// The other rules are broken by the plug-ins that the validator is tried on.
TEST_F(LoadedFramesTest, BrokenRulesAreNamed) {
    EXTGF2005a own{};
    SX_FreeTGF(&own, V);
    EXPECT_EQ(broken, std::vector<Rule>{Rule::frameUnknown});

    EXTGF2005a* frame = load();
    EXENTRY* const replaced = frame->entries;
    SX_InsertEXENTRY(frame, 0, 1, V);
    replaced[0].duration = 7;
    SX_FreeTGF(frame, V);
    session.checkBalanced();
    EXPECT_EQ(broken.back(), Rule::frameWrittenAfterFree);

    SXMassEdit edit = SX_StartMassEdit(nullptr, 100, V);
    frame = load();
    frame->entryCount = 1;
    SX_SaveTGF(frame, V);
    EXPECT_EQ(broken.back(), Rule::frameHeaderChanged);
    frame->entryCount = 2;
    SX_FreeTGF(frame, V);
    SX_EndMassEdit(edit, 0, V);
    EXPECT_EQ(broken.size(), 3U);
}

}  // namespace
}  // namespace rovescio::engine
