// The validator against our own bundle, damaged copies of it, and small plug-ins with one fault each.
#include "validate/validate.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using namespace rovescio::validate;

const fs::path kOurs = PROGRAM_FOLDER "/Rovescio.bundle";
// Of a run that ends by itself, however slow the machine.
constexpr std::chrono::minutes kPatience{10};
const std::string kEngine = PROGRAM_FOLDER "/NotationEngine.bundle";

// What is not passed, one line for each check: "check|outcome|detail".
std::string complaints(const fs::path& bundle, std::chrono::milliseconds limit = kPatience) {
    const auto report = validateBundle(bundle, kEngine, limit);
    if (!report) return report.problem().text();
    std::string lines;
    for (const LevelResult& level : report.value().levels) {
        for (const auto& [check, verdict] : level.checks) {
            if (verdict.outcome == Outcome::failed) lines += check + "|failed|" + verdict.detail + "\n";
            if (verdict.outcome == Outcome::crashed) lines += check + "|crashed|" + verdict.detail + "\n";
        }
    }
    EXPECT_EQ(lines.empty(), report.value().allPassed());
    return lines;
}

std::string nameOf(const std::string& fault) {
    std::string name = "wrong_" + fault + ".bundle";
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

TEST(Validator, PassesPluginsThatKeepTheRules) {
    EXPECT_EQ(complaints(kOurs), "");
    EXPECT_EQ(complaints(fs::path(BUNDLES_FOLDER) / nameOf("none")), "");
}

struct Case {
    const char* fault;
    const char* complaint;  // how one of the lines begins
};

// Names the case in lists of tests.
void PrintTo(const Case& wrong, std::ostream* out) {
    *out << wrong.fault;
}

class WrongPlugin : public testing::TestWithParam<Case> {};

TEST_P(WrongPlugin, IsCaughtByTheCheckForItsFault) {
    const std::string fault = GetParam().fault;
    const auto limit = fault == "endless loop" ? std::chrono::seconds(3) : kPatience;
    const std::string lines = "\n" + complaints(fs::path(BUNDLES_FOLDER) / nameOf(fault), limit);
    EXPECT_NE(lines.find("\n" + std::string(GetParam().complaint)), std::string::npos) << lines;
}

INSTANTIATE_TEST_SUITE_P(
    Each, WrongPlugin,
    testing::Values(
        Case{"host function exported", "no host function exported|failed|exported: SX_ScrollTo"},
        Case{"host not found", "main finds the host|failed|"},
        Case{"kit version", "version|failed|it answers version word"},
        Case{"host version lost", "version|failed|QorVersion"}, Case{"output kept", "init|failed|its output"},
        Case{"no terminator", "command 0 is described|failed|the menu text has no terminator"},
        Case{"second command", "command 1 is refused|failed|"}, Case{"menu disabled", "menu status|failed|"},
        Case{"no dialog", "main dialog opens and closes|failed|the main dialog was not opened"},
        Case{"no procedure",
             "main dialog opens and closes|failed|broke the rule \"dialog without procedure\""},
        Case{"not closed", "main dialog opens and closes|failed|dialog 20130 was left open"},
        Case{"endless loop", "reports that nothing is chosen|failed|did not return"},
        Case{"exit", "reports that nothing is chosen|crashed|ended the host's process with status 0"},
        Case{"choice not told", "reports that nothing is chosen|failed|0 alerts"},
        Case{"selection not told", "reports that nothing is selected|failed|0 alerts"},
        Case{"string missing",
             "reports that nothing is selected|failed|broke the rule \"string resource missing\""},
        Case{"version word", "main dialog opens and closes|failed|broke the rule \"version word\""},
        Case{"wrong pitch", "diatonic transposition|failed|staff 1, measure 1: "},
        Case{"selection exceeded", "chromatic transposition|failed|staff 1, measure 1: "},
        Case{"frame not freed", "diatonic transposition|failed|broke the rule \"frame not freed\""},
        Case{"frame freed twice", "diatonic transposition|failed|broke the rule \"frame freed twice\""},
        Case{"frame written after free",
             "diatonic transposition|failed|broke the rule \"frame written after"},
        Case{"frame used after free", "diatonic transposition|failed|broke the rule \"unknown frame\""},
        Case{"notes beyond the count",
             "diatonic transposition|failed|broke the rule \"notes beyond the count\""},
        Case{"no mass edit", "diatonic transposition|failed|broke the rule \"save outside a mass edit\""},
        Case{"edit not ended", "diatonic transposition|failed|broke the rule \"mass edit not ended\""},
        Case{"edit ended twice", "diatonic transposition|failed|broke the rule \"mass edit ended twice\""},
        Case{"progress outside",
             "diatonic transposition|failed|broke the rule \"progress outside a mass edit\""},
        Case{"not redrawn", "diatonic transposition|failed|the music was not redrawn"},
        Case{"wrong value kind", "diatonic transposition|failed|broke the rule \"dialog misused\""},
        Case{"no progress", "cancel at every poll|failed|it never asked whether the user had cancelled"},
        Case{"cancel kept", "cancel at every poll|failed|cancel at poll 2: the score was changed"},
        Case{"null frame used", "failing host calls|crashed|failing SX_LoadTGF call 1: "},
        Case{"records left", "playback|failed|broke the rule \"temporary records left\""},
        Case{"plays all", "playback|failed|it did not play exactly the selection"},
        Case{"abort at the end", "stops and starts again|crashed|Aborted"}),
    [](const auto& test) { return fs::path(nameOf(test.param.fault)).stem().string(); });

TEST(Validator, FindsDamageInTheBundle) {
    const fs::path copy = fs::path(testing::TempDir()) / ("validate-" + std::to_string(getpid()));
    const auto replace = [&](const char* file, const std::string& what, const std::string& with) {
        std::ifstream in(copy / "Contents" / file, std::ios::binary);
        std::string text(std::istreambuf_iterator<char>(in), {});
        for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
            text.replace(at, what.size(), with);
        }
        std::ofstream(copy / "Contents" / file, std::ios::binary) << text;
    };
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"information dictionary|failed|there is no", [&] { fs::remove(copy / "Contents/Info.plist"); }},
        {"information dictionary|failed|it gives no CFBundleIdentifier",
         [&] { replace("Info.plist", "CFBundleIdentifier", "Nothing"); }},
        {"code loads|failed|", [&] { fs::resize_file(copy / "Contents/MacOS/Rovescio", 100); }},
        {"a copy's code loads by itself|failed|libRovescioPlatform.so.1: cannot open",
         [&] { fs::remove_all(copy / "Contents/Frameworks"); }},
        {"entry points under both names|failed|not exported: Ext_init",
         [&] { replace("MacOS/Rovescio", "Ext_init", "Ext_none"); }},
        {"exported globals|failed|not exported: QorVersion",
         [&] { replace("MacOS/Rovescio", "QorVersion", "QorNothing"); }},
        {"dialog descriptions|failed|", [&] { replace("Resources/Dialogs.json", "20130", "20131"); }},
        {"texts in every language|failed|20134,9 has no text in de",
         [&] { replace("Resources/de.lproj/Localizable.strings", "20134,9", "20134,8"); }},
        {"dialog texts in every language|failed|20150.4.2 has no text in ja",
         [&] { replace("Resources/ja.lproj/Dialogs.strings", "20150.4.2\"", "20150.4.99\""); }},
        {"dialog texts in every language|failed|it.lproj/Dialogs.strings is not a list of texts",
         [&] { replace("Resources/it.lproj/Dialogs.strings", ";", ""); }},
    };
    for (const auto& [complaint, damage] : cases) {
        fs::copy(kOurs, copy, fs::copy_options::recursive);
        damage();
        const std::string lines = "\n" + complaints(copy);
        EXPECT_NE(lines.find("\n" + std::string(complaint)), std::string::npos) << complaint << lines;
        fs::remove_all(copy);
    }
}

TEST(Validator, TellsTheOutcomeByTheExitCodeOfTheProgram) {
    const std::pair<std::string, int> cases[] = {
        {kOurs.string(), 0}, {BUNDLES_FOLDER, 1}, {"", 2}, {kOurs.string() + " more", 2}, {"nowhere", 5}};
    for (const auto& [arguments, code] : cases) {
        const std::string line = PROGRAM_FOLDER "/rovescio validate " + arguments + " > /dev/null 2>&1";
        EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), code) << arguments;
    }
}

}  // namespace
