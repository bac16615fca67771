// What the kit puts around host functions: binding, cleaning of frames, counters.
#include "engine_fixture.h"
#include "kit/frames.h"

namespace rovescio::test {
namespace {

using engine::callCount;
using engine::HostFunction;

TEST(HostApi, ALookupThatFailedIsNeverRepeated) {
    EngineFixture engine({"C 4/4 c4:w"});
    auto* const bundle = std::exchange(gScorixBundle, nullptr);
    EXPECT_EQ(SX_FontNameToNum_UTF16(u"Serif"), 0);
    gScorixBundle = bundle;
    EXPECT_EQ(SX_FontNameToNum_UTF16(u"Serif"), 0);
    EXPECT_EQ(callCount(HostFunction::SX_FontNameToNum_UTF16), 0U);
}

TEST(HostApi, HostEditsAreEndedAsOftenAsTheyWereStarted) {
    EngineFixture engine({"C 4/4 c4:w"});
    const auto before = callCount(HostFunction::SX_EndScorixEdit);
    EXPECT_EQ(SX_EndScorixEdit() + SX_CancelScorixEdit(), 2);
    EXPECT_EQ(ScorixEditDepth, 0);
    EXPECT_EQ(callCount(HostFunction::SX_EndScorixEdit), before);
    SX_StartScorixEdit("a");
    SX_StartScorixEdit_UTF16(u"b");
    SX_StartScorixEdit("c");
    EXPECT_EQ(SX_CancelScorixEdit(), 0);  // this host has none
    EXPECT_EQ(ScorixEditDepth, 2);
    SX_EndAllScorixEdit();
    EXPECT_EQ(ScorixEditDepth, 0);
    EXPECT_EQ(callCount(HostFunction::SX_EndScorixEdit), before + 2);
}

TEST(HostApi, NumbersArriveInTheirWidth) {
    EngineFixture engine({"C 4/4 c4:w"});
    engine::planFault(HostFunction::SX_RebarRegion, 1);
    const CallTrace trace;
    const auto wide = [](int number) { return static_cast<short>(number); };
    EXPECT_EQ(SX_RebarRegion(nullptr, 0xFFFE, wide(0x12345), wide(0xFFFF), 0), 0);
    EXPECT_NE(trace.text().find("mode=65534, regroup=9029, options=-1, redraw=0"), std::string::npos);
}

TEST(CleanTGF, MakesNoteIdsUniqueAndGivesARestANote) {
    // Notes in use, their ids before and after. An id is signed when the largest one is sought.
    const struct {
        short count;
        std::vector<std::uint16_t> before, after;
    } cases[] = {{3, {2, 2, 0}, {3, 2, 4}},
                 {3, {5, 5, 5}, {6, 7, 5}},
                 {3, {0x8000, 0, 50}, {0x8000, 51, 50}},
                 {12, {}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
                 {0, {}, {}},
                 {-1, {}, {}}};
    for (const auto& c : cases) {
        for (const bool allowed : {true, false}) {
            EXENTRY entry{};
            entry.entryFlags = ENTRY_VALID;
            entry.noteCount = c.count;
            for (std::size_t i = 0; i < 12; ++i)
                entry.notes[i] = {1, 1, i < c.before.size() ? c.before[i] : std::uint16_t{0}, 0x41FF0003};
            EXTGF2005a frame{};
            frame.entries = &entry;
            frame.entryCount = 1;
            CanAddNoteRecordToRests = allowed;
            CleanTGF(&frame);
            CanAddNoteRecordToRests = true;
            const bool added = allowed && c.count == 0;
            EXPECT_EQ(+entry.noteCount, added ? 1 : c.count);
            EXPECT_EQ(+entry.entryFlags, added ? ENTRY_VALID | ENTRY_RESTFLAG : ENTRY_VALID);
            for (std::size_t i = 0; i < 12; ++i) {
                const std::uint32_t id = i < c.after.size() ? c.after[i] : 0;
                EXPECT_EQ(entry.notes[i].noteId, id) << i << " of " << c.count;
                EXPECT_EQ(+entry.notes[i].noteFlags, id != 0           ? 0x41E00003 | (id & 31) << 16
                                                     : added && i == 0 ? NOTE_PLACEHOLDER
                                                                       : 0);
            }
        }
    }
    CleanTGF(nullptr);
}

TEST(Frames, AreCountedAndCleanedBeforeTheHostSeesThem) {
    EngineFixture engine({"C 4/4 c4:h r:h"});
    const std::int32_t before = LoadedTGFCounter;
    EXPECT_EQ(SX_LoadTGF(0, 9, 1, 0, 0), nullptr);
    EXPECT_EQ(std::exchange(LoadedTGFCounter, before), before + 1);
    kit::MassEdit massEdit;
    EXPECT_EQ(MassEditDepth, 1);
    EXTGF2005a* frame = SX_LoadTGF(0, 1, 1, 0, 0);
    ASSERT_NE(frame, nullptr);
    const auto cleanedBy = [&](auto call) {
        frame->entries[0].notes[5].displacement = 3;  // left over after the notes in use
        return call() == 1 && frame->entries[0].notes[5].displacement == 0;
    };
    EXPECT_TRUE(cleanedBy([&] { return SX_InsertEXENTRY(frame, 1, 1); }));
    EXPECT_EQ(+frame->entries[2].noteCount, 1);
    EXPECT_TRUE(cleanedBy([&] { return SX_DeleteEXENTRY(frame, 1, 1); }));
    EXPECT_TRUE(cleanedBy([&] { return SX_SaveTGF(frame); }));
    SX_FreeTGF(frame);
    EXPECT_EQ(LoadedTGFCounter, before);
    massEdit.end();
    EXPECT_EQ(MassEditDepth, 0);
}

}  // namespace
}  // namespace rovescio::test
