// Runs of the program that must fail: one clear message, the right exit code, and no file made or changed.
#include "cli/workplace.h"

namespace rovescio::test {
namespace {

namespace fs = std::filesystem;

class Refusals : public Workplace {};

TEST_F(Refusals, OfCommandLinesThatAreWrong) {
    expectRefusals(R"(
        2 | rovescio | SCORE is required
        2 | rovescio greensleeves.musicxml | nothing to do
        2 | -t M2 | Give it with -o
        2 | -t 'up minr third' -o new.xml | did you mean "up minor third"
        2 | -t M2 --steps 1 -o new.xml | excludes
        2 | --semitones 3000 -o new.xml | --semitones
        2 | --invert sideways --axis E4 -o new.xml | sideways
        2 | --invert diatonic -o new.xml | --invert requires --axis
        2 | --axis E4 -t M2 -o new.xml | --axis requires --invert
        2 | --simplify -t M2 -o new.xml | --simplify requires --invert
        2 | --invert diatonic --axis E4 --simplify -o new.xml | --simplify is for --invert chromatic
        2 | --invert diatonic --axis F#4 -o new.xml | the axis of a diatonic inversion has no sharp or flat. Write F4
        2 | --invert chromatic --axis C10 -o new.xml | octaves 0 to 9
        2 | --invert chromatic --axis E4 --invert-chords up -o new.xml | excludes
        2 | --invert-chords over -o new.xml | over
        2 | --notes sometimes -o new.xml | sometimes
        2 | --info --remove-ties | --info
        2 | -t M2 --spelling flats -o new.xml | --semitones
        2 | -t M2 -m x: -o new.xml | --measures "x:"
        2 | -t M2 -l 5 -o new.xml | layers 1 to 4
        2 | frere-jacques.musicxml -t M2 -o new.xml | --out-dir
        2 | -t M2 -o new.xml --fail SX_Nothing:1 | --fail
        2 | --info -o new.xml | --info
        2 | --unknown | --unknown
        2 | rovescio - -t M2 --out-dir . | standard input
        2 | -t M2 -o new.MID | Use --midi new.MID
        2 | -t M2 -o new.pdf | open it in a notation program
        2 | -t M2 -o new.mscz | ends in .musicxml, .xml or .mxl
    )");
}

TEST_F(Refusals, OfSelectionsThatTheScoreDoesNotHave) {
    expectRefusals(R"(
        1 | -t M2 -m 7-12 -o new.xml | greensleeves.musicxml: there is no measure 12. The score has measures 0 to 8
        1 | -t M2 -m 0 -s 2 -o new.xml | there is no note in the selection
        1 | rovescio frere-jacques.musicxml -t M2 -m 1-2 -s 2 -o - | ; --info shows what the score has
    )");
}

TEST_F(Refusals, OfFilesThatAreNoScores) {
    write("cut.musicxml", read("greensleeves.musicxml").substr(0, 3000));
    write("large.musicxml", "<score-partwise>");
    fs::resize_file(path("large.musicxml"), std::uintmax_t{300} << 20);
    write("torn.mxl", "PK\x03\x04 torn");
    expectRefusals(R"(
        3 | rovescio cut.musicxml -t M2 -o new.xml | cut.musicxml:
        3 | rovescio - -t M2 -o - < cut.musicxml | standard input:
        3 | rovescio --info torn.mxl | torn.mxl
        3 | rovescio large.musicxml -t M2 -o new.xml | large.musicxml: is larger than the limit of 256 MiB
        3 | rovescio - -t M2 -o new.xml --max-size 1 < large.musicxml | standard input: is larger than the limit
        3 | rovescio missing.musicxml -t M2 -o new.xml | missing.musicxml: cannot be read: No such file
        3 | rovescio . -t M2 -o new.xml | Name a score file, not a folder
    )");
}

TEST_F(Refusals, OfFilesOfOtherKindsNamesTheKindAndTheWay) {
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"a.pdf", "%PDF-1.4\n", "this is a PDF file, not MusicXML"},
        {"mis.musicxml", std::string("MThd\0\0\0\6", 8), "this is a MIDI file, not MusicXML"},
        {"a.txt", "\nX: 1\nT: Tune\nK: C\nCDEF|\n", "this is an ABC tune"},
        {"a.abc", "% comes first\nX:1\n", "this is an ABC tune, not MusicXML. Convert it with abc2xml"},
        {"a.LY", "% Bach\n\\version \"2.24\"\n{ c }\n", "this is a LilyPond source"},
        {"a.mscx", "<?xml version=\"1.0\"?><museScore/>", "Open it in MuseScore and choose File > Export"},
        {"b.mxl", "PK\x03\x04..........................score.mscx", "this is a MuseScore file"},
        {"a.sib", "junk", "Open it in the program that wrote it"},
        {"a.musx", "PK\x03\x04", "Open it in the program that wrote it"},
        {"a.musicxml", "junk", "this is not an XML file"},
    };
    for (const auto& [name, content, message] : cases) {
        write(name, content);
        expectRefused("rovescio " + std::string(name) + " -t M2 -o new.musicxml", 3, message);
    }
}

TEST_F(Refusals, OfPlacesThatCannotBeWritten) {
    fs::create_directory(path("folder"));
    write("long.musicxml", longScore(8000));
    expectRefusals(R"(
        4 | -t M2 -o none/new.xml | none/new.xml: cannot be written: No such file
        4 | -t M2 -o folder | use --out-dir for a folder
        4 | -t M2 -o greensleeves.musicxml/x | cannot be written: Not a directory
        4 | -t M2 --out-dir none | none: there is no such folder
        4 | -t M2 -o /dev/full | No space left on device. Make room there
        4 | -t M2 -o - > /dev/full | standard output: cannot be written: No space
        4 | ulimit -f 4; rovescio long.musicxml -t M2 -o new.xml | new.xml: cannot be written: File too large
        4 | ulimit -f 4; rovescio long.musicxml -t M2 -o greensleeves.musicxml | File too large
        4 | ulimit -f 3000; rovescio long.musicxml -t M2 -o new.xml | new.xml: cannot be written: File too large
        4 | set -o pipefail; rovescio long.musicxml -t M2 -o - | true | standard output: cannot be written: Broken pipe
    )");
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
    // However little of it is there, a cut file is refused and does not end the program.
    for (const std::size_t part : {8U, 4U, 2U}) {
        write(plugin, pluginBytes.substr(0, pluginBytes.size() / part));
        expectRefused(line, 5, "the plug-in's executable is missing, incomplete");
        EXPECT_NE(run("home/rovescio validate home/Rovescio.bundle").out.find("failed  code loads"),
                  std::string::npos);
    }
    write(plugin, pluginBytes);
    write(engine, without(engineBytes, "SX_LoadTGF"));
    expectRefused(line, 5, "lacks the host function SX_LoadTGF");
    write(engine, engineBytes);
    const std::string descriptions = "home/Rovescio.bundle/Contents/Resources/Dialogs.json";
    write(descriptions, "{}");
    expectRefused(line, 5, "dialog descriptions");
    for (const char* make : {"mkfifo", "ln -s /dev/zero", "mkdir"}) {
        ASSERT_EQ(run(std::string("d=") + descriptions + "; rm $d; " + make + " $d").code, 0);
        expectRefused(line, 5, descriptions + ": dialog descriptions: not a regular file");
    }
    fs::remove_all(path("home/Rovescio.bundle/Contents/MacOS"));
    expectRefused(line, 5, "the plug-in's executable is missing");
    expectRefused("rovescio greensleeves.musicxml -t M2 -o new.xml --plugin none", 5,
                  "none: there is no plug-in bundle here");
    expectRefused("rovescio greensleeves.musicxml -t M2 -o new.xml --plugin home", 5, "home");
}

TEST_F(Refusals, OfRunsInWhichHostFunctionsFail) {
    expectRefusals(R"(
        1 | -t M2 -o new.xml --fail SX_MassEditProgress:3 | gave up
        1 | --invert diatonic --axis E4 -o new.xml --fail SX_MassEditProgress:3 | gave up
        1 | -t M2 --notes always -o new.xml --fail SX_MassEditProgress:30 | gave up
        1 | -t M2 -o new.xml --fail SX_GetCurERegions:1 | rovescio: 
    )");
}

// The trace is longer than a pipe holds, so that the run waits until the score has been changed.
TEST_F(Refusals, OfScoresThatChangeWhileTheyAreWorkedOn) {
    const std::pair<const char*, const char*> cases[] = {
        {"printf ' ' >> long.musicxml", "another program changed the score while it was being worked on"},
        {"truncate -s 5000 long.musicxml", "another program cut the score short while it was being read"},
    };
    for (const auto& [change, message] : cases) {
        write("long.musicxml", longScore(2000));
        ASSERT_EQ(
            run("(rovescio long.musicxml -t M2 --trace -o new.xml 2>&1; echo $? > code) | (read -r line; " +
                std::string(change) + "; cat > trace)")
                .code,
            0);
        EXPECT_EQ(read("code"), "3\n") << change;
        EXPECT_NE(read("trace").find(message), std::string::npos) << change;
        EXPECT_FALSE(std::filesystem::exists(path("new.xml")));
    }
}

#ifndef __SANITIZE_ADDRESS__  // which takes more address space than any limit leaves
TEST_F(Refusals, OfScoresForWhichMemoryLacks) {
    write("long.musicxml", longScore(8000));
    ASSERT_EQ(run("rovescio long.musicxml -t M2 -q -o long.mxl").code, 0);
    write("old.musicxml", "old");
    int refused = 0;
    for (const char* score : {"long.musicxml", "long.mxl"}) {
        write("old.musicxml", "old");
        // From where the program itself can be loaded to where the score fits.
        for (int kibibytes = 60000; kibibytes < 140000; kibibytes += 4000) {
            const ProgramRun run = this->run("ulimit -v " + std::to_string(kibibytes) + "; rovescio " +
                                             score + " -t M2 -q -o old.musicxml");
            if (run.code == 0) break;
            ++refused;
            EXPECT_EQ(run.code, 1) << kibibytes << run.err;
            EXPECT_EQ(run.err.find("rovescio: not enough memory for this score."), 0U) << run.err;
            EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
            EXPECT_EQ(read("old.musicxml"), "old");
        }
    }
    EXPECT_GT(refused, 2);
}
#endif

}  // namespace
}  // namespace rovescio::test
