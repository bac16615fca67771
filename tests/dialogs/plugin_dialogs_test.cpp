// The scripts for transformations against the plug-in's own dialog descriptions.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "dialogs/dialog_resources.h"
#include "dialogs/open_dialog.h"
#include "dialogs/transformation_script.h"

namespace rovescio::dialogs {
namespace {

DialogResources pluginResources() {
    std::ifstream file(DIALOG_DESCRIPTIONS);
    const std::string json{std::istreambuf_iterator<char>(file), {}};
    return DialogResources::parse(json, DIALOG_DESCRIPTIONS).value();
}

// What the script does in a dialog, in order: "9=1" sets, "press 7?" presses if it can, "read 3" reads.
std::string actions(const Scripts& scripts, short dialog) {
    std::string text;
    for (auto [script, end] = scripts.equal_range(dialog); script != end; ++script) {
        for (const Step& step : script->second) {
            text += text.empty() ? "" : ", ";
            if (const auto* set = std::get_if<Set>(&step)) {
                text += std::to_string(set->item) + "=" + std::to_string(set->value);
            } else if (const auto* press = std::get_if<Press>(&step)) {
                text += "press " + std::to_string(press->item) + (press->ifEnabled ? "?" : "");
            } else if (const auto* read = std::get_if<Read>(&step)) {
                text += "read " + std::to_string(read->item);
            } else if (const auto* answer = std::get_if<Answer>(&step)) {
                text += answer->yes ? "yes" : "no";
            } else {
                text += "select";
            }
        }
    }
    return text;
}

// Every item that the scripts use is there and takes what is set.
void expectPossible(const Scripts& scripts, const DialogResources& resources) {
    for (const auto& [dialog, script] : scripts) {
        const DialogDescription* description = resources.find(dialog);
        ASSERT_NE(description, nullptr) << dialog;
        OpenDialog open(*description, nullptr, nullptr);
        for (const Step& step : script) {
            if (const auto* press = std::get_if<Press>(&step)) {
                ASSERT_NE(open.control(press->item), nullptr);
                EXPECT_EQ(open.control(press->item)->item.kind, ItemKind::button);
            } else if (const auto* read = std::get_if<Read>(&step)) {
                ASSERT_NE(open.control(read->item), nullptr);
                EXPECT_EQ(open.control(read->item)->item.kind, ItemKind::text);
            } else if (const auto* set = std::get_if<Set>(&step)) {
                ASSERT_NE(open.control(set->item), nullptr);
                EXPECT_TRUE(canHold(open.control(set->item)->item, set->value)) << set->item;
            }
        }
    }
}

TEST(TransformationScripts, ChooseIntervalsFromThePopUpsAndElseInTheOtherDialog) {
    using Kind = Transposition::Kind;
    const std::tuple<Transposition, const char*, const char*> cases[] = {
        {{.kind = Kind::chromatic, .steps = 2, .alteration = -1}, "3=3, 6=8, 7=1, 9=0, press 1", ""},
        {{.kind = Kind::chromatic, .down = true, .steps = 7, .octaves = 1},
         "3=3, 6=26, 7=2, 9=1, press 1",
         ""},
        {{.kind = Kind::chromatic, .steps = 1, .alteration = 2},
         "3=3, 6=27, 7=1, 9=0, press 1",
         "4=1, 6=2, press 1"},
        {{.kind = Kind::diatonic, .steps = 7}, "3=2, 5=8, 7=1, 9=0, press 1", ""},
        {{.kind = Kind::diatonic, .down = true, .steps = 8}, "3=2, 5=9, 7=2, 9=0, press 1", "4=8, press 1"},
        {{.kind = Kind::semitones,
          .semitones = 11,
          .spelling = Transposition::Spelling::sharps,
          .octaves = -1},
         "3=4, 4=12, 8=1, 7=1, 9=-1, press 1",
         ""},
    };
    const DialogResources resources = pluginResources();
    for (const auto& [transposition, main, other] : cases) {
        const Scripts scripts = transformationScripts({.transposition = transposition}, {});
        EXPECT_EQ(actions(scripts, 20150), main);
        EXPECT_EQ(actions(scripts, 20180), other);
        expectPossible(scripts, resources);
    }
}

TEST(TransformationScripts, ChooseInversionsAndNoteOptionsAndLeaveTheRestAlone) {
    using Kind = Inversion::Kind;
    const std::tuple<Transformation, const char*, const char*> cases[] = {
        {{.inversion = Inversion{.kind = Kind::diatonic, .axis = {2, 0}}},
         "4=2, press 5",
         "3=8, 5=4, 6=0, press 1"},
        {{.inversion = Inversion{.kind = Kind::chromatic, .axis = {-7, -1}, .simplify = true}},
         "4=3, press 5",
         "3=1, 5=3, 6=1, press 1"},
        {{.inversion = Inversion{.kind = Kind::chromatic, .axis = {41, 1}}},
         "4=3, press 5",
         "3=21, 5=9, 6=0, press 1"},
        {{.inversion = Inversion{.kind = Kind::chordsUp}}, "4=4", ""},
        {{.inversion = Inversion{.kind = Kind::chordsDown}, .accidentals = Accidentals::asNeeded},
         "4=5, 8=2",
         ""},
        {{.accidentals = Accidentals::inKey, .removeTies = true}, "8=6, 11=1", ""},
        {{.removeTies = true}, "11=1", ""},
    };
    const DialogResources resources = pluginResources();
    for (const auto& [transformation, main, axis] : cases) {
        const Scripts scripts = transformationScripts(transformation, {});
        EXPECT_EQ(actions(scripts, 20130),
                  "9=0, 6=1, 4=1, 8=1, 11=0, " + std::string(main) + ", press 1, press 2");
        EXPECT_EQ(actions(scripts, 20140), axis);
        EXPECT_EQ(actions(scripts, 20150), "");
        expectPossible(scripts, resources);
    }
}

TEST(TransformationScripts, ReverseOrCheckAndReadTheReports) {
    const std::string nothing = "9=0, 6=1, 4=1, 8=1, 11=0, ";
    const std::string report = "read 2, read 3, press 1";
    const std::string repair = "read 2, read 3, yes, press 7?, press 1";
    const struct {
        Scripts scripts;
        std::string main, options, report;
    } cases[] = {
        {transformationScripts({.retrograde = Retrograde{}}, {}), nothing + "9=1, press 10, press 1, press 2",
         "3=0, 4=0, press 1", report},
        {transformationScripts(
             {.retrograde = Retrograde{.mirrorKeys = true, .repair = true}, .removeTies = true}, {[] {}}),
         nothing + "9=1, press 10, 11=1, press 1, select, press 1, press 2", "3=1, 4=0, press 1",
         repair + ", " + repair},
        {transformationScripts({.retrograde = Retrograde{.mirrorSpacing = true}}, {}),
         nothing + "9=1, press 10, press 1, press 2", "3=0, 4=1, press 1", report},
        {checkScripts(false, {}), "press 12, press 2", "", report},
        {checkScripts(true, {[] {}}), "press 12, select, press 12, press 2", "", repair + ", " + repair},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(actions(c.scripts, 20130), c.main);
        EXPECT_EQ(actions(c.scripts, 20190), c.options);
        EXPECT_EQ(actions(c.scripts, 20230), c.report);
        expectPossible(c.scripts, pluginResources());
    }
    const auto reports = checkReports(
        {{20230, 2, "1 to 4"}, {20230, 3, "a, b"}, {20180, 5, "C"}, {20230, 2, ""}, {20230, 3, "c"}});
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].measures + ": " + reports[0].findings, "1 to 4: a, b");
    EXPECT_EQ(reports[1].measures + ": " + reports[1].findings, ": c");
}

}  // namespace
}  // namespace rovescio::dialogs
