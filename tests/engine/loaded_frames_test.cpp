// Frames as a plug-in gets them, and the rules it breaks with them.
#include "engine/loaded_frames.h"

#include <gtest/gtest.h>

#include <functional>

#include "contract/host_parameters.h"
#include "engine/session.h"
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
    EXPECT_EQ(SX_LoadTGF(0, 2, 1, 0, 0, V), nullptr);
    EXPECT_EQ(SX_LoadTGF(0, 1, 3, 0, 0, V), nullptr);
    EXPECT_EQ(SX_LoadTGF(0, 1, 1, 4, 0, V), nullptr);
    EXPECT_EQ(SX_LoadTGF(7, 1, 1, 0, 0, V), nullptr);
    EXTGF2005a* empty = SX_LoadTGF(0, 1, 1, 3, 0, V);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(+empty->entryCount, 0);
    SX_FreeTGF(empty, V);
    EXPECT_TRUE(broken.empty());
}

TEST_F(LoadedFramesTest, SavingSortsChordsDropsPlaceholdersAndKeepsUnpitchedNotes) {
    const SXMassEdit edit = SX_StartMassEdit(nullptr, 100, V);
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
    const SXMassEdit edit = SX_StartMassEdit(nullptr, 100, V);
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

TEST_F(LoadedFramesTest, EachBrokenRuleIsNamed) {
    const struct {
        const char* what;
        Rule rule;
        std::function<void(LoadedFramesTest&)> act;
    } cases[] = {
        {"leak", Rule::frameNotFreed, [](auto&) { load(); }},
        {"freed twice", Rule::frameFreedTwice,
         [](auto&) {
             EXTGF2005a* frame = load();
             SX_FreeTGF(frame, V);
             SX_FreeTGF(frame, V);
         }},
        {"saved after free", Rule::frameUnknown,
         [](auto&) {
             EXTGF2005a* frame = load();
             SX_FreeTGF(frame, V);
             SX_SaveTGF(frame, V);
         }},
        {"a frame of its own", Rule::frameUnknown,
         [](auto&) {
             EXTGF2005a own{};
             SX_FreeTGF(&own, V);
         }},
        {"written after free", Rule::frameWrittenAfterFree,
         [](auto&) {
             EXTGF2005a* frame = load();
             EXENTRY* entries = frame->entries;
             SX_FreeTGF(frame, V);
             entries[1].duration = 7;
         }},
        {"written to the buffer that an insertion replaced", Rule::frameWrittenAfterFree,
         [](auto&) {
             EXTGF2005a* frame = load();
             EXENTRY* entries = frame->entries;
             SX_InsertEXENTRY(frame, 0, 1, V);
             entries[0].duration = 7;
             SX_FreeTGF(frame, V);
         }},
        {"count changed", Rule::frameHeaderChanged,
         [](auto&) {
             EXTGF2005a* frame = load();
             frame->entryCount = 1;
             SX_SaveTGF(frame, V);
             frame->entryCount = 2;
             SX_FreeTGF(frame, V);
         }},
        {"notes beyond the count", Rule::notesBeyondCount,
         [](auto&) {
             const SXMassEdit edit = SX_StartMassEdit(nullptr, 100, V);
             EXTGF2005a* frame = load();
             frame->entries[1].noteCount = 2;
             SX_SaveTGF(frame, V);
             SX_FreeTGF(frame, V);
             SX_EndMassEdit(edit, 0, V);
         }},
        {"saved outside a mass edit", Rule::saveOutsideMassEdit,
         [](auto&) {
             EXTGF2005a* frame = load();
             SX_SaveTGF(frame, V);
             SX_FreeTGF(frame, V);
         }},
        {"mass edit left open", Rule::massEditNotEnded, [](auto&) { SX_StartMassEdit(nullptr, 100, V); }},
        {"mass edit ended twice", Rule::massEditEndedTwice,
         [](auto&) {
             const SXMassEdit edit = SX_StartMassEdit(nullptr, 100, V);
             SX_EndMassEdit(edit, 0, V);
             SX_EndMassEdit(edit, 0, V);
         }},
        {"progress outside a mass edit", Rule::progressOutsideMassEdit,
         [](auto&) { EXPECT_EQ(SX_MassEditProgress(nullptr, 0, 0, 0, -1, V), 0); }},
        {"dialog without procedure", Rule::dialogWithoutProcedure,
         [](auto&) { SX_Dialog(20130, nullptr, nullptr, 0, nullptr, V); }},
        {"wrong version word", Rule::versionWord, [](auto&) { SX_GetMaxLayers(V + 1); }},
        {"records left", Rule::recordsLeft,
         [](auto&) {
             EDATAKEY key{0xFFF9, 0};
             EDTPlaybackStaff record{};
             std::uint32_t size = sizeof record;
             SX_CreateEData(0x534F4975, &key, &record, &size, V);
         }},
        {"string missing", Rule::stringMissing,
         [](auto&) { SX_AlertMessage_UTF16(nullptr, kAlertWarning, 0x4EA60063, nullptr, V); }},
    };
    for (const auto& c : cases) {
        broken.clear();
        c.act(*this);
        session.checkBalanced();
        EXPECT_EQ(broken, std::vector<Rule>{c.rule}) << c.what;
        session.records = {};
    }
}

}  // namespace
}  // namespace rovescio::engine
