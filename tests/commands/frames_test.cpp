// The cleaning pass, and the counters around frame calls.
#include "kit/frames.h"

#include "engine_fixture.h"

namespace rovescio::test {
namespace {

EXENTRY entryWithIds(const std::vector<int>& ids) {
    EXENTRY entry{};
    entry.entryFlags = ENTRY_VALID | ENTRY_NOTE;
    entry.noteCount = static_cast<short>(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        entry.notes[i].noteId = static_cast<std::uint16_t>(ids[i]);
        entry.notes[i].noteFlags = 0x41FF0003;
    }
    return entry;
}

void clean(EXENTRY& entry) {
    EXTGF2005a frame{};
    frame.entries = &entry;
    frame.entryCount = 1;
    CleanTGF(&frame);
}

TEST(CleanTGF, MakesNoteIdsUnique) {
    const std::pair<std::vector<int>, std::vector<int>> cases[] = {
        {{2, 2, 0}, {3, 2, 4}},
        {{5, 5, 5}, {6, 7, 5}},
        {{0x8000, 0, 40}, {0x8000, 41, 40}},  // an id is signed when the largest one is sought
    };
    for (const auto& [before, after] : cases) {
        EXENTRY entry = entryWithIds(before);
        clean(entry);
        for (std::size_t i = 0; i < after.size(); ++i) {
            EXPECT_EQ(+entry.notes[i].noteId, after[i])
                << "note " << i << " of " << testing::PrintToString(before);
            const std::uint32_t bits = static_cast<std::uint32_t>(after[i] & 31) << 16;
            EXPECT_EQ(+entry.notes[i].noteFlags, 0x41E00003 | bits);
        }
    }
}

TEST(CleanTGF, GivesARestANoteAndLeavesNothingBehindTheNotes) {
    for (const bool allowed : {true, false}) {
        for (const short count : {short{0}, short{1}, short{12}, short{-1}}) {
            EXENTRY entry = entryWithIds(std::vector<int>(12, 0));
            entry.entryFlags = ENTRY_VALID;
            entry.noteCount = count;
            CanAddNoteRecordToRests = allowed;
            clean(entry);
            CanAddNoteRecordToRests = true;
            const bool added = allowed && count == 0;
            EXPECT_EQ(+entry.noteCount, added ? 1 : count);
            EXPECT_EQ(+entry.entryFlags, added ? ENTRY_VALID | ENTRY_RESTFLAG : ENTRY_VALID);
            for (int i = 0; i < 12; ++i) {
                const auto id = static_cast<std::uint16_t>(i < count ? i + 1 : 0);
                EXPECT_EQ(+entry.notes[i].noteId, id) << i << " of " << count;
                EXPECT_EQ(+entry.notes[i].noteFlags, i < count         ? 0x41E00003U | std::uint32_t{id} << 16
                                                     : added && i == 0 ? NOTE_PLACEHOLDER
                                                                       : 0U);
            }
        }
    }
    CleanTGF(nullptr);
}

TEST(Frames, AreCountedAndCleanedBeforeTheHostSeesThem) {
    EngineFixture engine({"C 4/4 c4:h r:h"});
    const std::int32_t before = LoadedTGFCounter;
    EXPECT_EQ(SX_LoadTGF(0, 9, 1, 0, 0), nullptr);
    EXPECT_EQ(LoadedTGFCounter, before + 1);
    LoadedTGFCounter = before;
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
    EXPECT_EQ(textOf(engine.document), "c4:h r:h");
}

}  // namespace
}  // namespace rovescio::test
