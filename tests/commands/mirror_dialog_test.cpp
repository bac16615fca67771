// The mirror-inversion dialog, and the steps of an apply run in their order.
#include "transform/mirror_dialog.h"

#include "engine_fixture.h"
#include "shell/main_dialog.h"
#include "shell/settings.h"

namespace rovescio::test {
namespace {

class MirrorDialogTest : public testing::Test {
  protected:
    MirrorDialogTest() { SUItems = {}; }

    EngineFixture engine{{"C 4/4 <c4 e4 g4>:w"}};
};

TEST_F(MirrorDialogTest, ShowsAndTakesTheAxis) {
    const struct {
        MirrorAxis axis;
        int entry, octave;
        short button;
        std::map<short, std::intptr_t> chosen;
        int axisAfter, alterationAfter, checkAfter;
    } cases[] = {
        {{0, 0, 0, 4}, 2, 4, 1, {}, 0, 0, 0},
        {{0, 1, 0, 4}, 3, 4, 1, {}, 0, 1, 0},
        {{6, -1, 1, 3}, 19, 3, 1, {}, 6, -1, 1},
        {{-1, 0, 0, 4}, 20, 3, 1, {}, -1, 0, 0},
        // Exact octaves below middle C show one octave too low and come back so.
        {{-7, 0, 0, 4}, 2, 2, 1, {}, -14, 0, 0},
        {{3, 1, 0, 4}, 12, 4, 2, {{3, 1}, {6, 1}}, 3, 1, 0},
        // An entry that the menu has not leaves the note.
        {{3, 1, 0, 4}, 12, 4, 1, {{3, 22}, {5, 5}, {6, 1}}, 10, 1, 1},
    };
    for (const auto& c : cases) {
        engine.front.users[20140] = [&](MemoryDialog& dialog) {
            EXPECT_EQ(dialog.values, (std::map<short, std::intptr_t>{
                                         {3, c.entry}, {5, c.octave}, {6, c.axis.simplifySpelling}}));
            for (const auto& [item, value] : c.chosen) dialog.values[item] = value;
            EXPECT_EQ(dialog.press(c.button), 1);
        };
        MirrorAxis axis = c.axis;
        // The octave number of middle C is the host's, so set it behind its back.
        SX_Dialog(20140, MirrorInversionDialogProc, nullptr, 0x3001, &axis);
        EXPECT_EQ((std::vector<int>{axis.axis, axis.axisAlteration, axis.simplifySpelling}),
                  (std::vector<int>{c.axisAfter, c.alterationAfter, c.checkAfter}));
    }
}

TEST_F(MirrorDialogTest, ListeningTakesNoteOns) {
    MirrorAxis axis;
    engine.front.users[20140] = [&](MemoryDialog& dialog) {
        const short entries[12] = {2, 3, 5, 6, 8, 11, 12, 14, 15, 17, 18, 20};
        for (std::uint8_t note = 48; note < 72; ++note) {
            engine.front.midi = {0x93, note, 64};
            EXPECT_EQ(dialog.press(4), 1);
            EXPECT_EQ(dialog.values[3], entries[note % 12]);
            EXPECT_EQ(dialog.values[5], note / 12 - 1);
        }
        for (const std::vector<std::uint8_t>& event : {std::vector<std::uint8_t>{0x83, 60, 64}, {}}) {
            engine.front.midi = event;
            EXPECT_EQ(dialog.press(4), 1);
            EXPECT_EQ((std::vector{dialog.values[3], dialog.values[5]}),
                      (std::vector<std::intptr_t>{entries[11], 4}));
        }
        dialog.press(2);
    };
    editMirrorAxis(nullptr, axis);
}

}  // namespace
}  // namespace rovescio::test
