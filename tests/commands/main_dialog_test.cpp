// The main dialog and the axis dialog: settings that stay, apply, alerts.
#include "shell/main_dialog.h"

#include "engine_fixture.h"
#include "shell/settings.h"
#include "transform/mirror_dialog.h"

namespace rovescio::test {
namespace {

using Values = std::map<short, std::intptr_t>;

class MainDialogTest : public testing::Test {
  protected:
    MainDialogTest() { SUItems = {}; }
    // Up a major second, by the transposition dialog.
    void chooseTransposition(MemoryDialog& dialog) {
        engine.front.users[dialogs::transposition_dialog::kNumber] = [](MemoryDialog& sub) {
            sub.choose(3, 3);
            sub.choose(6, 5);
            sub.press(1);
        };
        EXPECT_EQ(dialog.press(7), 1);
    }

    EngineFixture engine{{"C 4/4 c4:w | d4:w", "C 4/4 e4:w | f4:w"}};
};

TEST_F(MainDialogTest, NothingChosenOrNothingSelectedIsToldAndStartsNoMassEdit) {
    const CallTrace trace;
    engine.workMainDialog([&](MemoryDialog& dialog) {
        engine.session.selection = engine.everything();
        EXPECT_EQ(dialog.press(1), 1);
        EXPECT_EQ(trace.text().find("SX_GetCurERegions"), std::string::npos);
        engine.session.selection.reset();
        chooseTransposition(dialog);
        EXPECT_EQ(dialog.press(1) + dialog.press(3), 2);
    });
    EXPECT_EQ(trace.text().find("SX_StartMassEdit"), std::string::npos);
    EXPECT_EQ(engine.front.alerts, (std::vector<std::string>{"20134,13", "20134,2", "20134,2"}));
    EXPECT_EQ(engine.front.redraws, 0);
}

TEST_F(MainDialogTest, ApplyStaysOpenAndSettingsStayFromOneInvocationToTheNext) {
    engine.session.selection = engine.everything();
    engine.workMainDialog([&](MemoryDialog& dialog) {
        EXPECT_EQ(dialog.values, (Values{{4, 1}, {6, 1}, {8, 1}, {9, 0}, {11, 0}}));
        EXPECT_EQ(dialog.kinds, (std::map<short, short>{{4, 0}, {6, 0}, {8, 0}, {9, 1}, {11, 1}}));
        EXPECT_EQ(std::pair(dialog.flags, dialog.userData), std::pair(short{0x3000}, SXHandle{nullptr}));
        for (const short item : std::vector<short>{4, 6, 8, 9, 11, 13, 0})
            EXPECT_EQ(dialog.press(item), 0) << item;
        chooseTransposition(dialog);
        EXPECT_EQ(dialog.values[6], 3);
        EXPECT_EQ(dialog.press(1), 1);
        EXPECT_TRUE(dialog.open);
        EXPECT_EQ(textOf(engine.document, 1), "d4:w | e4:w");
        EXPECT_EQ(dialog.press(1), 1);
        dialog.values[9] = 1;
        dialog.values[4] = 5;
        dialog.press(7);
        EXPECT_EQ(dialog.press(2), 1);
        EXPECT_FALSE(dialog.open);
    });
    EXPECT_EQ(textOf(engine.document, 2), "g#4!:w | a4:w");
    EXPECT_EQ(engine.front.redraws, 2);
    EXPECT_TRUE(engine.session.massEdits.undo());
    EXPECT_EQ(textOf(engine.document, 2), "f#4!:w | g4:w");
    engine.workMainDialog([&](MemoryDialog& dialog) {
        EXPECT_EQ(dialog.values, (Values{{4, 5}, {6, 3}, {8, 1}, {9, 1}, {11, 0}}));
    });
    EXPECT_EQ(SUItems.retrogradeOptions, 3U);
}

TEST(MirrorDialog, ShowsAndTakesTheAxis) {
    EngineFixture engine({"C 4/4 c4:w"});
    const struct {
        MirrorAxis axis;
        int entry, octave;
        short button;
        Values chosen;
        std::vector<int> after;
    } cases[] = {
        {{0, 0, 0, 4}, 2, 4, 1, {}, {0, 0, 0}},
        {{0, 1, 0, 4}, 3, 4, 1, {}, {0, 1, 0}},
        {{6, -1, 1, 3}, 19, 3, 1, {}, {6, -1, 1}},
        {{-1, 0, 0, 4}, 20, 3, 1, {}, {-1, 0, 0}},
        // Exact octaves below middle C show one octave too low and come back so.
        {{-7, 0, 0, 4}, 2, 2, 1, {}, {-14, 0, 0}},
        {{3, 1, 0, 4}, 12, 4, 2, {{3, 1}, {6, 1}}, {3, 1, 0}},
        // An entry that the menu has not leaves the note.
        {{3, 1, 0, 4}, 12, 4, 1, {{3, 22}, {5, 5}, {6, 1}}, {10, 1, 1}},
    };
    for (const auto& c : cases) {
        MirrorAxis axis = c.axis;
        engine.front.users[dialogs::axis_dialog::kNumber] = [&](MemoryDialog& dialog) {
            EXPECT_EQ(dialog.values, (Values{{3, c.entry}, {5, c.octave}, {6, axis.simplifySpelling}}));
            for (const auto& [item, value] : c.chosen) dialog.values[item] = value;
            EXPECT_EQ(dialog.press(c.button), 1);
        };
        // The octave number of middle C is the host's, so set it behind its back.
        SX_Dialog(dialogs::axis_dialog::kNumber, MirrorInversionDialogProc, nullptr, 0x3001, &axis);
        EXPECT_EQ((std::vector<int>{axis.axis, axis.axisAlteration, axis.simplifySpelling}), c.after);
    }
}

TEST(MirrorDialog, ListeningTakesNoteOns) {
    EngineFixture engine({"C 4/4 c4:w"});
    MirrorAxis axis;
    engine.front.users[dialogs::axis_dialog::kNumber] = [&](MemoryDialog& dialog) {
        const short entries[12] = {2, 3, 5, 6, 8, 11, 12, 14, 15, 17, 18, 20};
        for (std::uint8_t note = 48; note < 72; ++note) {
            engine.front.midi = {0x93, note, 64};
            EXPECT_EQ(dialog.press(4), 1);
            EXPECT_EQ(dialog.values, (Values{{3, entries[note % 12]}, {5, note / 12 - 1}, {6, 0}}));
        }
        for (const std::vector<std::uint8_t>& event : {std::vector<std::uint8_t>{0x83, 60, 64}, {}}) {
            engine.front.midi = event;
            EXPECT_EQ(dialog.press(4), 1);
            EXPECT_EQ(dialog.values, (Values{{3, 20}, {5, 4}, {6, 0}}));
        }
    };
    editMirrorAxis(nullptr, axis);
}

}  // namespace
}  // namespace rovescio::test
