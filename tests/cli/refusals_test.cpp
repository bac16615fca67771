// Runs of the program that must fail: one clear message, the right exit code, and no file made or changed.
#include "cli/workplace.h"

namespace rovescio::test {
namespace {

namespace fs = std::filesystem;

class Refusals : public Workplace {
  protected:
    // A command line, its exit code and a part of the message.
    using Case = std::tuple<const char*, int, const char*>;
};

TEST_F(Refusals, OfCommandLinesThatAreWrong) {
    const Case cases[] = {
        {"rovescio", 2, "SCORE is required"},
        {"rovescio greensleeves.musicxml", 2, "nothing to do"},
        {"rovescio greensleeves.musicxml -t M2", 2, "Give it with -o"},
        {"rovescio greensleeves.musicxml -t 'up minr third' -o new.xml", 2,
         "the nearest is \"up minor third\""},
        {"rovescio greensleeves.musicxml -t M2 --steps 1 -o new.xml", 2, "excludes"},
        {"rovescio greensleeves.musicxml --semitones 3000 -o new.xml", 2, "--semitones"},
        {"rovescio greensleeves.musicxml --invert sideways --axis E4 -o new.xml", 2, "sideways"},
        {"rovescio greensleeves.musicxml --invert diatonic -o new.xml", 2, "--invert requires --axis"},
        {"rovescio greensleeves.musicxml --axis E4 -t M2 -o new.xml", 2, "--axis requires --invert"},
        {"rovescio greensleeves.musicxml --simplify -t M2 -o new.xml", 2, "--simplify requires --invert"},
        {"rovescio greensleeves.musicxml --invert diatonic --axis E4 --simplify -o new.xml", 2,
         "--simplify is for --invert chromatic"},
        {"rovescio greensleeves.musicxml --invert diatonic --axis F#4 -o new.xml", 2,
         "the axis of a diatonic inversion has no sharp or flat. Write F4"},
        {"rovescio greensleeves.musicxml --invert chromatic --axis C10 -o new.xml", 2, "octaves 0 to 9"},
        {"rovescio greensleeves.musicxml --invert chromatic --axis E4 --invert-chords up -o new.xml", 2,
         "excludes"},
        {"rovescio greensleeves.musicxml --invert-chords over -o new.xml", 2, "over"},
        {"rovescio greensleeves.musicxml --notes sometimes -o new.xml", 2, "sometimes"},
        {"rovescio greensleeves.musicxml --info --remove-ties", 2, "--info"},
        {"rovescio greensleeves.musicxml -t M2 --spelling flats -o new.xml", 2, "--semitones"},
        {"rovescio greensleeves.musicxml -t M2 -m x: -o new.xml", 2, "--measures \"x:\""},
        {"rovescio greensleeves.musicxml -t M2 -l 5 -o new.xml", 2, "layers 1 to 4"},
        {"rovescio greensleeves.musicxml frere-jacques.musicxml -t M2 -o new.xml", 2, "--out-dir"},
        {"rovescio greensleeves.musicxml -t M2 -o new.xml --fail SX_Nothing:1", 2, "--fail"},
        {"rovescio greensleeves.musicxml --info -o new.xml", 2, "--info"},
        {"rovescio greensleeves.musicxml --unknown", 2, "--unknown"},
        {"rovescio - -t M2 --out-dir .", 2, "standard input"},
    };
    for (const auto& [line, code, message] : cases) expectRefused(line, code, message);
}

TEST_F(Refusals, OfSelectionsThatTheScoreDoesNotHave) {
    const Case cases[] = {
        {"rovescio greensleeves.musicxml -t M2 -m 7-12 -o new.xml", 1,
         "greensleeves.musicxml: there is no measure 12. The score has measures 0 to 8 (#1 to #9)"},
        {"rovescio greensleeves.musicxml -t M2 -m 0 -s 2 -o new.xml", 1, "there is no note in the selection"},
        {"rovescio frere-jacques.musicxml -t M2 -m 1-2 -s 2 -o -", 1, "there is no note in the selection"},
    };
    for (const auto& [line, code, message] : cases) expectRefused(line, code, message);
}

TEST_F(Refusals, OfFilesThatAreNoScores) {
    write("cut.musicxml", read("greensleeves.musicxml").substr(0, 3000));
    write("large.musicxml", "<score-partwise>");
    fs::resize_file(path("large.musicxml"), std::uintmax_t{300} << 20);
    write("torn.mxl", "PK\x03\x04 torn");
    const Case cases[] = {
        {"rovescio cut.musicxml -t M2 -o new.xml", 3, "cut.musicxml:"},
        {"rovescio - -t M2 -o - < cut.musicxml", 3, "standard input:"},
        {"rovescio --info torn.mxl", 3, "torn.mxl"},
        {"rovescio large.musicxml -t M2 -o new.xml", 3,
         "large.musicxml: is larger than the limit of 256 MiB"},
        {"rovescio - -t M2 -o new.xml --max-size 1 < large.musicxml", 3,
         "standard input: is larger than the limit"},
        {"rovescio missing.musicxml -t M2 -o new.xml", 3, "missing.musicxml: cannot be read: No such file"},
        {"rovescio . -t M2 -o new.xml", 3, "Name a score file, not a folder"},
    };
    for (const auto& [line, code, message] : cases) expectRefused(line, code, message);
}

TEST_F(Refusals, OfPlacesThatCannotBeWritten) {
    fs::create_directory(path("folder"));
    write("long.musicxml", longScore(500));
    const Case cases[] = {
        {"rovescio greensleeves.musicxml -t M2 -o none/new.xml", 4,
         "none/new.xml: cannot be written: No such file"},
        {"rovescio greensleeves.musicxml -t M2 -o folder", 4, "use --out-dir for a folder"},
        {"rovescio greensleeves.musicxml -t M2 -o greensleeves.musicxml/x", 4,
         "cannot be written: Not a directory"},
        {"rovescio greensleeves.musicxml -t M2 --out-dir none", 4, "none: there is no such folder"},
        {"rovescio greensleeves.musicxml -t M2 -o /dev/full", 4, "No space left on device. Make room there"},
        {"rovescio greensleeves.musicxml -t M2 -o - > /dev/full", 4,
         "standard output: cannot be written: No space"},
        {"ulimit -f 4; rovescio long.musicxml -t M2 -o new.xml", 4,
         "new.xml: cannot be written: File too large"},
        {"ulimit -f 4; rovescio long.musicxml -t M2 -o greensleeves.musicxml", 4, "File too large"},
        {"set -o pipefail; rovescio long.musicxml -t M2 -o - | true", 4,
         "standard output: cannot be written: Broken pipe"},
    };
    for (const auto& [line, code, message] : cases) expectRefused(line, code, message);
}

TEST_F(Refusals, OfDamagedInstallations) {
    fs::create_directory(path("home"));
    for (const char* part : {"rovescio", "NotationEngine.bundle", "Rovescio.bundle"}) {
        fs::copy(fs::path(PROGRAM_FOLDER) / part, path("home") / part, fs::copy_options::recursive);
    }
    const std::string plugin = "home/Rovescio.bundle/Contents/MacOS/Rovescio";
    const std::string engine = "home/NotationEngine.bundle/Contents/MacOS/NotationEngine";
    const std::string pluginBytes = read(plugin);
    const std::string engineBytes = read(engine);
    // The first place of a name in a program is the table by which the loader finds it.
    const auto without = [](std::string bytes, const std::string& name) {
        bytes[bytes.find(name)] = '_';
        return bytes;
    };
    const char* line = "home/rovescio greensleeves.musicxml -t M2 -o new.xml";

    ASSERT_EQ(run("home/rovescio greensleeves.musicxml -t M2 -q -o - > /dev/null").code, 0)
        << "the copy works";
    write(plugin, without(pluginBytes, "ScorixExtensionInvoke"));
    expectRefused(line, 5, "lacks the entry point ScorixExtensionInvoke");
    write(plugin, "no program");
    expectRefused(line, 5, "Rovescio.bundle");
    write(plugin, pluginBytes);
    write(engine, without(engineBytes, "SX_LoadTGF"));
    expectRefused(line, 5, "lacks the host function SX_LoadTGF");
    write(engine, engineBytes);
    write("home/Rovescio.bundle/Contents/Resources/Dialogs.json", "{}");
    expectRefused(line, 5, "dialog descriptions");
    fs::remove_all(path("home/Rovescio.bundle/Contents/MacOS"));
    expectRefused(line, 5, "no executable that can be loaded");
    expectRefused("rovescio greensleeves.musicxml -t M2 -o new.xml --plugin none", 5,
                  "none: there is no plug-in bundle here");
    expectRefused("rovescio greensleeves.musicxml -t M2 -o new.xml --plugin home", 5, "home");
}

TEST_F(Refusals, OfRunsInWhichHostFunctionsFail) {
    const Case cases[] = {
        {"rovescio greensleeves.musicxml -t M2 -o new.xml --fail SX_MassEditProgress:3", 1, "gave up"},
        {"rovescio greensleeves.musicxml --invert diatonic --axis E4 -o new.xml --fail SX_MassEditProgress:3",
         1, "gave up"},
        {"rovescio greensleeves.musicxml -t M2 --notes always -o new.xml --fail SX_MassEditProgress:30", 1,
         "gave up"},
        {"rovescio greensleeves.musicxml -t M2 -o new.xml --fail SX_GetCurERegions:1", 1, "rovescio: "},
    };
    for (const auto& [line, code, message] : cases) expectRefused(line, code, message);
}

}  // namespace
}  // namespace rovescio::test
