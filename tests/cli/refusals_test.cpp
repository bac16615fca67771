// Runs of the program that must fail: one clear message, the right exit code, and no file made or changed.
#include <zip.h>

#include "cli/workplace.h"

namespace {

namespace fs = std::filesystem;
using rovescio::test::ProgramRun;

class Refusals : public rovescio::test::Workplace {
  protected:
    struct Case {
        const char* line;
        int code;
        const char* message;  // a part of it
    };

    void expectRefused(const Case& refusal) const {
        const auto namesBefore = names();
        const std::string scoreBefore = read("greensleeves.musicxml");
        const ProgramRun run = this->run(refusal.line);
        EXPECT_EQ(run.code, refusal.code) << refusal.line << "\n" << run.err;
        EXPECT_NE(run.err.find(refusal.message), std::string::npos) << refusal.line << "\n" << run.err;
        EXPECT_EQ(run.err.find("rovescio: "), 0U) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "") << refusal.line;
        EXPECT_EQ(names(), namesBefore) << refusal.line;
        EXPECT_EQ(read("greensleeves.musicxml"), scoreBefore);
    }

    void writeZip(const std::string& name, const std::string& member, const std::string& content) const {
        zip_t* archive = zip_open(path(name).c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
        ASSERT_NE(archive, nullptr);
        zip_source_t* source = zip_source_buffer(archive, content.data(), content.size(), 0);
        ASSERT_GE(zip_file_add(archive, member.c_str(), source, ZIP_FL_ENC_UTF_8), 0);
        ASSERT_EQ(zip_close(archive), 0);
    }
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
        {"rovescio greensleeves.musicxml --invert chromatic --axis H4 -o new.xml", 2,
         "--axis \"H4\" is no pitch known here. Write a letter A to G"},
        {"rovescio greensleeves.musicxml --invert chromatic --axis C10 -o new.xml", 2, "octaves 0 to 9"},
        {"rovescio greensleeves.musicxml --invert chromatic --axis E4 --invert-chords up -o new.xml", 2,
         "excludes"},
        {"rovescio greensleeves.musicxml --invert-chords over -o new.xml", 2, "over"},
        {"rovescio greensleeves.musicxml --notes sometimes -o new.xml", 2, "sometimes"},
        {"rovescio greensleeves.musicxml --info --remove-ties", 2, "--info"},
        {"rovescio greensleeves.musicxml -t M2 --spelling flats -o new.xml", 2, "--semitones"},
        {"rovescio greensleeves.musicxml -t M2 -m x: -o new.xml", 2, "--measures \"x:\""},
        {"rovescio greensleeves.musicxml -t M2 -s 2-1 -o new.xml", 2, "--staves \"2-1\""},
        {"rovescio greensleeves.musicxml -t M2 -l 5 -o new.xml", 2, "layers 1 to 4"},
        {"rovescio greensleeves.musicxml frere-jacques.musicxml -t M2 -o new.xml", 2, "--out-dir"},
        {"rovescio greensleeves.musicxml -t M2 -o new.xml --fail SX_Nothing:1", 2, "--fail"},
        {"rovescio greensleeves.musicxml --info -o new.xml", 2, "--info"},
        {"rovescio greensleeves.musicxml --unknown", 2, "--unknown"},
        {"rovescio - -t M2 --out-dir .", 2, "standard input"},
    };
    for (const Case& refusal : cases) expectRefused(refusal);
}

TEST_F(Refusals, OfSelectionsThatTheScoreDoesNotHave) {
    const Case cases[] = {
        {"rovescio greensleeves.musicxml -t M2 -m 7-12 -o new.xml", 1,
         "greensleeves.musicxml: there is no measure 12. The score has measures 0 to 8 (#1 to #9)"},
        {"rovescio greensleeves.musicxml -t M2 -s 3 -o new.xml", 1, "there is no staff 3"},
        {"rovescio greensleeves.musicxml -t M2 -m 5-3 -o new.xml", 1, "backwards"},
        {"rovescio greensleeves.musicxml -t M2 -m 0 -s 2 -o new.xml", 1, "there is no note in the selection"},
        {"rovescio frere-jacques.musicxml -t M2 -m 1-2 -s 2 -o -", 1, "there is no note in the selection"},
        {"rovescio greensleeves.musicxml -t M2 -m 3:7-4 -o new.xml", 1, "measure 3 has only 6 beats"},
    };
    for (const Case& refusal : cases) expectRefused(refusal);
}

TEST_F(Refusals, OfFilesThatAreNoScores) {
    write("text.musicxml", "This is no XML.\n");
    write("page.xml", "<?xml version=\"1.0\"?>\n<html><body/></html>\n");
    write("empty.musicxml", "");
    const std::string whole = read("greensleeves.musicxml");
    write("cut.musicxml", whole.substr(0, whole.size() / 2));
    write("bomb.xml",
          "<?xml version=\"1.0\"?>\n<!DOCTYPE score-partwise [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b "
          "\"&a;&a;&a;&a;&a;&a;&a;&a;\">]>\n<score-partwise><part-list><score-part id=\"P1\"><part-name>&b;"
          "</part-name></score-part></part-list><part id=\"P1\"><measure "
          "number=\"1\"/></part></score-partwise>\n");
    std::string deep = "<score-partwise>";
    for (int i = 0; i < 200000; ++i) deep += "<a>";
    write("deep.musicxml", deep);
    write("large.musicxml", "<score-partwise>");
    fs::resize_file(path("large.musicxml"), std::uintmax_t{300} << 20);
    writeZip("wrong.mxl", "readme.txt", "nothing here");
    writeZip("bomb.mxl", "score.musicxml", std::string(std::size_t{40} << 20, ' '));
    write("torn.mxl", "PK\x03\x04 torn");
    const Case cases[] = {
        {"rovescio text.musicxml -t M2 -o new.xml", 3, "text.musicxml"},
        {"rovescio page.xml -t M2 -o new.xml", 3, "page.xml"},
        {"rovescio empty.musicxml -t M2 -o new.xml", 3, "empty.musicxml"},
        {"rovescio cut.musicxml -t M2 -o new.xml", 3, "cut.musicxml"},
        {"rovescio bomb.xml -t M2 -o new.xml", 3, "bomb.xml"},
        {"rovescio deep.musicxml -t M2 -o new.xml", 3, "deep.musicxml"},
        {"rovescio large.musicxml -t M2 -o new.xml", 3,
         "large.musicxml: is larger than the limit of 256 MiB"},
        {"rovescio - -t M2 -o new.xml --max-size 1 < large.musicxml", 3,
         "standard input: is larger than the limit"},
        {"rovescio wrong.mxl -t M2 -o new.xml", 3, "wrong.mxl"},
        {"rovescio bomb.mxl -t M2 -o new.xml --max-size 8", 3, "bomb.mxl"},
        {"rovescio torn.mxl -t M2 -o new.xml", 3, "torn.mxl"},
        {"rovescio missing.musicxml -t M2 -o new.xml", 3, "missing.musicxml: cannot be read: No such file"},
        {"rovescio . -t M2 -o new.xml", 3, "Name a score file, not a folder"},
        {"rovescio --info missing.musicxml", 3, "missing.musicxml"},
        {"head -c 3000 greensleeves.musicxml | rovescio - -t M2 -o -", 3, "standard input"},
    };
    for (const Case& refusal : cases) expectRefused(refusal);
}

TEST_F(Refusals, OfPlacesThatCannotBeWritten) {
    fs::create_directory(path("folder"));
    write("long.musicxml", rovescio::test::longScore(500));
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
    for (const Case& refusal : cases) expectRefused(refusal);
}

TEST_F(Refusals, OfDamagedInstallations) {
    fs::create_directory(path("home"));
    for (const char* part :
         {"rovescio", "libRovescioPlatform.so", "NotationEngine.bundle", "Rovescio.bundle"}) {
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
    expectRefused({line, 5, "lacks the entry point ScorixExtensionInvoke"});
    write(plugin, "no program");
    expectRefused({line, 5, "Rovescio.bundle"});
    write(plugin, pluginBytes);
    write(engine, without(engineBytes, "SX_LoadTGF"));
    expectRefused({line, 5, "lacks the host function SX_LoadTGF"});
    write(engine, engineBytes);
    write("home/Rovescio.bundle/Contents/Resources/Dialogs.json", "{}");
    expectRefused({line, 5, "dialog descriptions"});
    fs::remove_all(path("home/Rovescio.bundle"));
    expectRefused({line, 5, "there is no plug-in bundle here"});
    expectRefused({"rovescio greensleeves.musicxml -t M2 -o new.xml --plugin home", 5, "home"});
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
    for (const Case& refusal : cases) expectRefused(refusal);
}

}  // namespace
