// The dialogs around a retrograde, and its place in the main dialog's run.
#include "retrograde/dialogs.h"

#include "engine_fixture.h"
#include "kit/string_resources.h"
#include "shell/main_dialog.h"
#include "shell/settings.h"

namespace {

using rovescio::engine::HostFunction;
using rovescio::engine::PackedEntries;
using rovescio::engine::planFault;
using rovescio::test::CallTrace;
using rovescio::test::EngineFixture;
using rovescio::test::MemoryDialog;
using rovescio::test::textOf;

class RetrogradeDialogsTest : public testing::Test {
  protected:
    RetrogradeDialogsTest() {
        SUItems = {};
        engine.session.selection = engine.everything();
    }

    // Another C against the first note.
    void addSecondVoice() {
        std::vector<EXENTRY> entries = engine.document.entries({1, 1, 0}).expanded();
        entries.insert(entries.begin(), entries.front());
        entries[0].entryFlags |= ENTRY_STARTS_VOICE2;
        entries[1].entryFlags |= ENTRY_VOICE2;
        entries[1].entryNumber = engine.document.nextEntryNumber();
        PackedEntries changed(entries);
        engine.document.exchangeEntries({1, 1, 0}, changed);
    }

    void openMainDialog(const std::function<void(MemoryDialog&)>& hand) {
        engine.front.hands[20130] = hand;
        SUDialog(nullptr, nullptr, nullptr);
    }

    EngineFixture engine{{"C 3/4 c4:q d4:q e4:q | f4:h."}};
};

// The host calls of interest in order, by their names without the prefix.
std::string callsIn(const std::string& trace, const std::vector<std::string>& names) {
    std::istringstream in(trace);
    std::string calls;
    for (std::string line; std::getline(in, line);) {
        for (const std::string& name : names) {
            if (line.starts_with("SX_" + name + "(")) calls += name + ' ';
        }
    }
    return calls;
}

TEST_F(RetrogradeDialogsTest, OptionsComeBackFromTheCheckBoxes) {
    const struct {
        unsigned int options;
        std::intptr_t keysShown, spacingShown;
        std::intptr_t keys, spacing;
        short button;
        unsigned int result;
    } cases[] = {
        {0, 0, 0, 1, 0, 1, 1}, {1, 1, 0, 0, 1, 1, 2}, {2, 0, 1, 1, 1, 1, 3},          {3, 1, 1, 0, 0, 1, 0},
        {3, 1, 1, 0, 0, 2, 3}, {1, 1, 0, 0, 1, 2, 1}, {0xFFFFFFFE, 0, 1, 0, 0, 2, 2},
    };
    int parent = 0;
    for (const auto& c : cases) {
        engine.front.hands[20190] = [&](MemoryDialog& dialog) {
            EXPECT_EQ(dialog.values, (std::map<short, std::intptr_t>{{3, c.keysShown}, {4, c.spacingShown}}));
            EXPECT_EQ(dialog.kinds, (std::map<short, short>{{3, kCheckValue}, {4, kCheckValue}}));
            EXPECT_EQ(dialog.flags, 0x3001);
            EXPECT_EQ(dialog.parent, &parent);
            EXPECT_EQ(dialog.set(3, c.keys), 0);
            EXPECT_EQ(dialog.set(4, c.spacing), 0);
            EXPECT_TRUE(dialog.open);
            EXPECT_EQ(dialog.press(c.button), 1);
            EXPECT_FALSE(dialog.open);
        };
        EXPECT_EQ(RetrogradeOptionsDialog(&parent, c.options), c.result) << c.options;
    }
    engine.front.hands[20190] = [](MemoryDialog& dialog) {
        dialog.values[3] = 0;
        dialog.press(1);
    };
    openMainDialog([](MemoryDialog& dialog) { EXPECT_EQ(dialog.press(10), 1); });
    EXPECT_EQ(SUItems.retrogradeOptions, 2U);
}

TEST_F(RetrogradeDialogsTest, ReportNamesEveryProblemAndOffersRepairWhereItHelps) {
    const struct {
        unsigned int problems;
        bool repairable;
        const char* report;
    } cases[] = {
        {0, false, "20134,10"},
        {2, false, "20134,2"},
        {4, true, "20134,3"},
        {8, false, "20134,11"},
        {0x100, true, "20134,9"},
        {0x104, true, "20134,3, 20134,9"},
        {12, false, "20134,3, 20134,11"},
        {0x10E, false, "20134,2, 20134,3, 20134,9, 20134,11"},
        {0x200, false, ""},
    };
    engine.session.selection = EngineFixture::region(1, 1, 1, 2);
    int parent = 0;
    for (const auto& c : cases) {
        for (const short button : {short{1}, short{2}}) {
            engine.front.hands[20230] = [&](MemoryDialog& dialog) {
                EXPECT_EQ(dialog.texts, (std::map<short, std::string>{{2, "1 to 2"}, {3, c.report}}));
                EXPECT_EQ(dialog.enabled, (std::map<short, bool>{{7, c.repairable}}));
                EXPECT_EQ(dialog.flags, 0x3001);
                EXPECT_EQ(dialog.parent, &parent);
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(dialog.userData), c.problems);
                EXPECT_EQ(dialog.press(3), 0);
                EXPECT_EQ(dialog.press(button), 1);
                EXPECT_FALSE(dialog.open);
            };
            EXPECT_EQ(RetrogradePreScanDialog(&parent, c.problems), 0);
        }
    }
    engine.session.selection.reset();
    engine.front.hands[20230] = [](MemoryDialog& dialog) { EXPECT_EQ(dialog.texts.at(2), ""); };
    RetrogradePreScanDialog(nullptr, 2);
}

TEST(ErrStrCat, KeepsWithinTheReport) {
    std::array<char16_t, kReportUnits + 1> report{};
    report.fill(u'#');
    report[0] = 0;
    errStrCat(report.data(), makeStringId(1, 1));
    EXPECT_EQ(std::u16string(report.data()), std::u16string(63, u'x')) << "a fragment has 63 units";
    std::u16string expected(63, u'x');
    while (expected.size() < kReportUnits) {
        errStrCat(report.data(), kSecondVoiceText);
        expected += u", 20134,3";
        EXPECT_EQ(std::u16string(report.data()), expected.substr(0, kReportUnits - 1));
    }
    EXPECT_EQ(report.back(), u'#');
}

TEST_F(RetrogradeDialogsTest, RepairsAfterAQuestionInAMassEditOfItsOwn) {
    const struct {
        short answer;
        int cancelAfter;
        const char* calls;
        const char* after;
    } cases[] = {
        {7, -1, "AlertMessage_UTF16 EndDialog ", "c4:q c4:q d4:q e4:q | f4:h."},
        {0, -1, "AlertMessage_UTF16 EndDialog ", "c4:q c4:q d4:q e4:q | f4:h."},
        {6, 1, "AlertMessage_UTF16 StartMassEdit RedrawMusic EndDialog EndMassEdit ",
         "c4:q c4:q d4:q e4:q | f4:h."},
        {6, -1, "AlertMessage_UTF16 StartMassEdit RedrawMusic EndDialog EndMassEdit ",
         "c4:q d4:q e4:q | f4:h."},
    };
    addSecondVoice();
    for (const auto& c : cases) {
        engine.front.alertAnswer = c.answer;
        engine.front.alerts.clear();
        engine.front.polls = 0;
        engine.front.cancelAfter = c.cancelAfter;
        CallTrace trace;
        engine.front.hands[20230] = [&](MemoryDialog& dialog) {
            EXPECT_EQ(dialog.press(7), 1);
            EXPECT_EQ(dialog.open, c.answer != kAnswerYes);
            if (dialog.open) dialog.press(1);
        };
        RetrogradePreScanDialog(nullptr, 4);
        EXPECT_EQ(callsIn(trace.text(),
                          {"AlertMessage_UTF16", "StartMassEdit", "EndMassEdit", "EndDialog", "RedrawMusic"}),
                  c.calls);
        EXPECT_NE(trace.text().find("style=4, stringId=1319501836"), std::string::npos);
        EXPECT_EQ(textOf(engine.document), c.after);
        EXPECT_EQ(MassEditDepth, 0);
    }
}

TEST_F(RetrogradeDialogsTest, CheckButtonReportsWhateverItFinds) {
    for (const bool problem : {false, true}) {
        if (problem) addSecondVoice();
        engine.front.hands[20230] = [&](MemoryDialog& dialog) {
            EXPECT_EQ(dialog.texts.at(3), problem ? "20134,3" : "20134,10");
            EXPECT_EQ(MassEditDepth, 0);
        };
        openMainDialog([](MemoryDialog& dialog) {
            const CallTrace trace;
            EXPECT_EQ(dialog.press(12), 1);
            EXPECT_EQ(callsIn(trace.text(), {"StartMassEdit", "EndMassEdit", "Dialog", "RedrawMusic"}),
                      "StartMassEdit EndMassEdit Dialog ");
        });
    }
}

TEST_F(RetrogradeDialogsTest, ApplyReversesFirstAndStopsWhereItCannot) {
    engine.session.layerShown = {true, false, false, false};
    const struct {
        const char* after;
        std::vector<std::string> alerts;
        int redraws;
        int cancelAfter = -1;
        std::uint64_t failLoad = 0;  // which of the frames loaded; 0: none
        short repair = 7;            // the answer to the question
        bool problem = false;
    } cases[] = {
        // Reversed, then a step up.
        {"g4:h. | f4:q e4:q d4:q", {}, 1},
        // The check loads 8 frames, the reversal the ninth and tenth.
        {"c4:q d4:q e4:q | f4:h.", {"20134,1"}, 0, -1, 10},
        // A cancel during the check, the reversal, the transposition.
        {"c4:q d4:q e4:q | f4:h.", {}, 0, 3},
        {"c4:q d4:q e4:q | f4:h.", {}, 0, 9},
        {"c4:q d4:q e4:q | f4:h.", {}, 0, 10},
        {"c4:q c4:q d4:q e4:q | f4:h.", {"20134,12"}, 0, -1, 0, 7, true},
        // A repair draws its work by itself; then a cancel during the second check, and none.
        {"c4:q c4:q d4:q e4:q | f4:h.", {"20134,12"}, 1, 20, 0, 6, true},
        {"g4:h. | f4:q e4:q d4:q", {"20134,12"}, 2, -1, 0, 6, true},
    };
    for (const auto& c : cases) {
        SUItems = {};
        SUItems.retrogradeOptions = 0;
        SUItems.transpose.kind = kDiatonicTransposition;
        SUItems.transpose.steps = 1;
        if (c.problem && textOf(engine.document) == "c4:q d4:q e4:q | f4:h.") addSecondVoice();
        engine.front.alerts.clear();
        engine.front.redraws = 0;
        engine.front.polls = 0;
        engine.front.cancelAfter = c.cancelAfter;
        engine.front.alertAnswer = c.repair;
        engine.front.hands[20230] = [](MemoryDialog& dialog) {
            dialog.press(7);
            if (dialog.open) dialog.press(1);
        };
        if (c.failLoad) planFault(HostFunction::SX_LoadTGF, c.failLoad);
        openMainDialog([](MemoryDialog& dialog) {
            dialog.values[9] = 1;
            EXPECT_EQ(dialog.press(1), 1);
            EXPECT_TRUE(dialog.open);
        });
        EXPECT_EQ(engine.front.alerts, c.alerts);
        EXPECT_EQ(engine.front.redraws, c.redraws);
        EXPECT_EQ(textOf(engine.document), c.after);
        EXPECT_EQ(MassEditDepth, 0);
        engine.session.massEdits.undo();
    }
}

}  // namespace
