// The main dialog: settings that stay, apply, playback, alerts.
#include "shell/main_dialog.h"

#include "engine_fixture.h"
#include "shell/settings.h"

namespace rovescio::test {
namespace {

class MainDialogTest : public testing::Test {
  protected:
    MainDialogTest() { SUItems = {}; }
    // Up a major second, by the transposition dialog.
    void chooseTransposition(MemoryDialog& dialog) {
        engine.front.users[20150] = [](MemoryDialog& sub) {
            sub.choose(3, 3);
            sub.choose(6, 5);
            sub.press(1);
        };
        EXPECT_EQ(dialog.press(7), 1);
    }
    void selectAll() { engine.session.selection = engine.everything(); }

    EngineFixture engine{{"C 4/4 c4:w | d4:w", "C 4/4 e4:w | f4:w"}};
};

TEST_F(MainDialogTest, ShowsItsSettings) {
    engine.workMainDialog([&](MemoryDialog& dialog) {
        EXPECT_EQ(dialog.values, (std::map<short, std::intptr_t>{{4, 1}, {6, 1}, {8, 1}, {9, 0}, {11, 0}}));
        EXPECT_EQ(dialog.kinds, (std::map<short, short>{{4, 0}, {6, 0}, {8, 0}, {9, 1}, {11, 1}}));
        EXPECT_EQ(dialog.flags, 0x3000);
        EXPECT_EQ(dialog.userData, nullptr);
        for (const short item : std::initializer_list<short>{4, 6, 8, 9, 11, 13, 0})
            EXPECT_EQ(dialog.press(item), 0) << item;
        EXPECT_TRUE(dialog.open);
        EXPECT_EQ(dialog.press(2), 1);
        EXPECT_FALSE(dialog.open);
    });
}

TEST_F(MainDialogTest, NothingChosenOrNothingSelectedIsToldAndStartsNoMassEdit) {
    const CallTrace trace;
    engine.workMainDialog([&](MemoryDialog& dialog) {
        selectAll();
        EXPECT_EQ(dialog.press(1), 1);
        EXPECT_EQ(trace.text().find("SX_GetCurERegions"), std::string::npos);
        engine.session.selection.reset();
        chooseTransposition(dialog);
        EXPECT_EQ(dialog.press(1), 1);
        EXPECT_EQ(dialog.press(3), 1);
    });
    EXPECT_EQ(trace.text().find("SX_StartMassEdit"), std::string::npos);
    EXPECT_EQ(engine.front.alerts, (std::vector<std::string>{"20134,13", "20134,2", "20134,2"}));
    EXPECT_EQ(engine.front.redraws, 0);
}

TEST_F(MainDialogTest, ApplyStaysOpenAndSettingsStayFromOneInvocationToTheNext) {
    selectAll();
    engine.workMainDialog([&](MemoryDialog& dialog) {
        chooseTransposition(dialog);
        EXPECT_EQ(dialog.values[6], 3);
        EXPECT_EQ(dialog.press(1), 1);
        EXPECT_TRUE(dialog.open);
        EXPECT_EQ(textOf(engine.document, 1), "d4:w | e4:w");
        EXPECT_EQ(dialog.press(1), 1);
        dialog.values[9] = 1;
        dialog.values[4] = 5;
        dialog.press(7);
    });
    EXPECT_EQ(textOf(engine.document, 2), "g#4!:w | a4:w");
    EXPECT_EQ(engine.front.redraws, 2);
    EXPECT_TRUE(engine.session.massEdits.undo());
    EXPECT_EQ(textOf(engine.document, 2), "f#4!:w | g4:w");
    engine.workMainDialog([&](MemoryDialog& dialog) {
        EXPECT_EQ(dialog.values, (std::map<short, std::intptr_t>{{4, 5}, {6, 3}, {8, 1}, {9, 1}, {11, 0}}));
    });
    EXPECT_EQ(SUItems.retrogradeOptions, 3U);
}

}  // namespace
}  // namespace rovescio::test
