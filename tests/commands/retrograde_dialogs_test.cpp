// The dialogs around a retrograde, and its place in the main dialog's run.
#include "retrograde/dialogs.h"

#include <array>
#include <tuple>

#include "engine_fixture.h"
#include "kit/string_resources.h"
#include "shell/main_dialog.h"
#include "shell/settings.h"

namespace rovescio::test {
namespace {

class RetrogradeDialogsTest : public testing::Test {
  protected:
    RetrogradeDialogsTest() {
        SUItems = {};
        engine.session.selection = engine.everything();
    }
    EngineFixture engine{{"C 3/4 c4:q d4:q e4:q | f4:h."}};
};

TEST_F(RetrogradeDialogsTest, OptionsComeBackFromTheCheckBoxes) {
    // Options, check boxes shown and set, button, options afterwards.
    const std::tuple<unsigned int, std::array<std::intptr_t, 4>, short, unsigned int> cases[] = {
        {0, {0, 0, 1, 0}, 1, 1},          {1, {1, 0, 0, 1}, 1, 2}, {2, {0, 1, 1, 1}, 1, 3},
        {3, {1, 1, 0, 0}, 1, 0},          {3, {1, 1, 0, 0}, 2, 3}, {1, {1, 0, 0, 1}, 2, 1},
        {0xFFFFFFFE, {0, 1, 0, 0}, 2, 2},
    };
    int parent = 0;
    for (const auto& [options, boxes, button, after] : cases) {
        engine.front.users[dialogs::retrograde_dialog::kNumber] = [&, boxes = boxes,
                                                                   button = button](MemoryDialog& dialog) {
            EXPECT_EQ(dialog.values, (std::map<short, std::intptr_t>{{3, boxes[0]}, {4, boxes[1]}}));
            EXPECT_EQ(std::pair(dialog.flags, dialog.parent), std::pair(short{0x3001}, SXWindow{&parent}));
            EXPECT_TRUE(dialog.set(3, boxes[2]) + dialog.set(4, boxes[3]) == 0 && dialog.open);
            EXPECT_TRUE(dialog.press(button) == 1 && !dialog.open);
        };
        EXPECT_EQ(RetrogradeOptionsDialog(&parent, options), after) << options;
    }
    engine.front.users[dialogs::retrograde_dialog::kNumber] = [](MemoryDialog& dialog) {
        dialog.values[3] = 0;
        dialog.press(1);
    };
    engine.workMainDialog([](MemoryDialog& dialog) { EXPECT_EQ(dialog.press(10), 1); });
    EXPECT_EQ(SUItems.retrogradeOptions, 2U);
}

TEST_F(RetrogradeDialogsTest, ReportNamesEveryProblemAndOffersRepairWhereItHelps) {
    const std::tuple<unsigned int, bool, const char*> cases[] = {
        {0, false, "20134,10"},
        {2, false, "20134,2"},
        {4, true, "20134,3"},
        {0x104, true, "20134,3, 20134,9"},
        {0x10E, false, "20134,2, 20134,3, 20134,9, 20134,11"},
        {0x200, false, ""},
    };
    for (const auto& [problems, repairable, report] : cases) {
        for (const short button : {short{1}, short{2}}) {
            engine.front.users[dialogs::report_dialog::kNumber] = [=, &repairable = repairable,
                                                                   &report = report](MemoryDialog& dialog) {
                EXPECT_EQ(dialog.texts, (std::map<short, std::string>{{2, "1 to 2"}, {3, report}}));
                EXPECT_EQ(dialog.enabled, (std::map<short, bool>{{7, repairable}}));
                EXPECT_TRUE(dialog.press(button) == 1 && !dialog.open);
            };
            EXPECT_EQ(RetrogradePreScanDialog(nullptr, problems), 0);
        }
    }
}

TEST_F(RetrogradeDialogsTest, ApplyReversesFirstAndStopsWhereItCannot) {
    engine.session.layerShown = {true, false, false, false};
    const std::string before = "c4:q d4:q e4:q | f4:h.";
    const std::string twoVoices = "c4:q c4:q d4:q e4:q | f4:h.";
    const struct {
        std::string after;
        std::vector<std::string> alerts;
        int redraws;
        int cancelAfter = -1;
        std::uint64_t failLoad = 0;  // which of the frames loaded; 0: none
        short repair = 0;            // the answer to the question, which a second voice raises
    } cases[] = {
        // Reversed, then a step up.
        {"g4:h. | f4:q e4:q d4:q", {}, 1},
        // The check loads 8 frames, the reversal the ninth and tenth.
        {before, {"20134,1"}, 0, -1, 10},
        // A cancel during the check, the reversal, the transposition.
        {before, {}, 0, 3},
        {before, {}, 0, 10},
        {twoVoices, {"20134,12"}, 0, -1, 0, 7},
        // A repair draws its work by itself; then a cancel during the second check, and none.
        {twoVoices, {"20134,12"}, 1, 20, 0, 6},
        {"g4:h. | f4:q e4:q d4:q", {"20134,12"}, 2, -1, 0, 6},
    };
    engine.front.users[dialogs::report_dialog::kNumber] = [](MemoryDialog& dialog) {
        EXPECT_EQ(dialog.press(7), 1);
        if (dialog.open) dialog.press(1);
    };
    for (const auto& c : cases) {
        SUItems = {};
        SUItems.retrogradeOptions = 0;
        SUItems.transpose.kind = kDiatonicTransposition;
        SUItems.transpose.steps = 1;
        // Another C against the first note.
        if (c.repair != 0 && textOf(engine.document) == before) {
            editEntries(engine.document, {1, 1, 0}, [&](std::vector<EXENTRY>& entries) {
                entries.insert(entries.begin(), entries.front());
                entries[0].entryFlags |= ENTRY_STARTS_VOICE2;
                entries[1].entryFlags |= ENTRY_VOICE2;
                entries[1].entryNumber = engine.document.nextEntryNumber();
            });
        }
        engine.front.alerts.clear();
        engine.front.redraws = engine.front.polls = 0;
        engine.front.cancelAfter = c.cancelAfter;
        engine.front.alertAnswer = c.repair;
        if (c.failLoad) engine::planFault(engine::HostFunction::SX_LoadTGF, c.failLoad);
        engine.workMainDialog([](MemoryDialog& dialog) {
            dialog.values[9] = 1;
            EXPECT_TRUE(dialog.press(1) == 1 && dialog.open);
        });
        EXPECT_EQ(engine.front.alerts, c.alerts);
        EXPECT_EQ(engine.front.redraws, c.redraws);
        EXPECT_EQ(textOf(engine.document), c.after);
        EXPECT_EQ(MassEditDepth, 0);
        engine.session.massEdits.undo();
    }
}

}  // namespace
}  // namespace rovescio::test
