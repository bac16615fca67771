// Whole runs of the program that succeed: what is transposed, and where the result goes.
#include <cstring>
#include <sstream>

#include "cli/workplace.h"

namespace rovescio::test {
namespace {

namespace fs = std::filesystem;

class Transposing : public Workplace {};

TEST_F(Transposing, EveryWayToNameAnInterval) {
    const std::pair<const char*, const char*> cases[] = {
        {"--transpose 'up minor third'", "| Ab4 Bb4 C5 Ab4 | Ab4 Bb4 C5 Ab4 | C5 Db5 Eb5"},
        {"--transpose m-3", "| D4 E4 F#4 D4 | D4 E4 F#4 D4 | F#4 G4 A4"},
        {"--transpose 'down octave and a major second'", "| Eb3 F3 G3 Eb3 | Eb3 F3 G3 Eb3 | G3 Ab3 Bb3"},
        {"--semitones 3", "| Ab4 Bb4 C5 Ab4 | Ab4 Bb4 C5 Ab4 | C5 Db5 Eb5"},
        {"--semitones 1 --spelling sharps", "| F#4 G#4 A#4 F#4 | F#4 G#4 A#4 F#4 | A#4 B4 C#5"},
        {"--semitones 6 --spelling sharps --octaves 1", "| B5 C#6 D#6 B5 | B5 C#6 D#6 B5 | D#6 E6 F#6"},
        {"--transpose AA2", "| G##4 A##4 B##4 G##4 | G##4 A##4 B##4 G##4 | B##4 C##5 D##5"},
        {"--semitones -14", "| Eb3 F3 G3 Eb3 | Eb3 F3 G3 Eb3 | G3 Ab3 Bb3"},
        {"--steps 2", "| A4 Bb4 C5 A4 | A4 Bb4 C5 A4 | C5 D5 E5"},
        {"--steps -9", "| D3 E3 F3 D3 | D3 E3 F3 D3 | F3 G3 A3"},
        {"--steps -1 --octaves 1", "| E3 F3 G3 E3 | E3 F3 G3 E3 | G3 A3 Bb3"},
        {"--octaves -1", "| F3 G3 A3 F3 | F3 G3 A3 F3 | A3 Bb3 C4"},
    };
    for (const auto& [options, notes] : cases) {
        const ProgramRun run =
            this->run(std::string("rovescio frere-jacques.musicxml ") + options + " -o new.xml");
        EXPECT_EQ(run.code, 0) << options << "\n" << run.err;
        // Measures 1 to 3 of the round, at first F G A F, F G A F, A Bb C.
        EXPECT_EQ(pitches(read("new.xml")).substr(0, std::strlen(notes)), notes) << options;
    }
}

TEST_F(Transposing, OnlyWhatIsSelected) {
    const struct {
        const char* options;
        const char* summary;
        int changed;  // pitches other than before
    } cases[] = {
        {"--measures 1-2 --staves 1", "transposed 10 notes in measures 1-2, staff 1", 10},
        {"--measures 1:3-2:1 --staves 1", "transposed 5 notes in measures 1:3-2:1, staff 1", 5},
        {"--measures 0", "transposed 1 note in measure 0", 1},
        {"--measures '#9-'", "transposed 6 notes in measures #9-8", 6},
        {"--staves 2 --measures 8", "transposed 4 notes in measure 8, staff 2", 4},
    };
    const std::string before = pitches(read("greensleeves.musicxml"));
    for (const auto& [options, summary, changed] : cases) {
        const ProgramRun run =
            this->run(std::string("rovescio greensleeves.musicxml --transpose M2 -o new.xml ") + options);
        EXPECT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(run.err, "rovescio: " + std::string(summary) + " -> new.xml\n");
        std::istringstream oldNotes(before);
        std::istringstream newNotes(pitches(read("new.xml")));
        int different = 0;
        for (std::string oldNote, newNote; oldNotes >> oldNote && newNotes >> newNote;)
            different += oldNote != newNote;
        EXPECT_EQ(different, changed) << options;
    }
}

TEST_F(Transposing, StavesThatAreNotNeighboursInOneRun) {
    const std::vector<std::string> measure = {note("c5:w")};
    write("three.musicxml", scoreOfParts({measure, measure, measure}));
    const ProgramRun run = this->run("rovescio three.musicxml --transpose P-8 --staves 1,3 -o - --quiet");
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(pitches(run.out), "| C4 | C5 | C4");
    // A staff without music in a selection does no harm.
    write("three.musicxml", scoreOfParts({measure, measure, {""}}));
    EXPECT_EQ(this->run("rovescio three.musicxml --transpose P-8 --staves 1,3 -o new.musicxml").err,
              "rovescio: transposed 1 note in all measures, staves 1,3 -> new.musicxml\n");
}

TEST_F(Transposing, TellsWhatStaysInKeysThatAreNoScales) {
    const std::string key =
        "<key><key-step>F</key-step><key-alter>1</key-alter><key-step>B</key-step><key-alter>-1"
        "</key-alter></key>";
    write("score.musicxml", scoreOf({note("c5:w"), attributes("", key) + note("c5:w"), note("c5:w"),
                                     attributes("0#") + note("c5:w")}));
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"-t M2", "transposed", "| D5 | C5 | C5 | D5"},
        {"--semitones 2", "transposed", "| D5 | C5 | C5 | D5"},
        {"--octaves -1 --notes always", "transposed", "| C4 | C5 | C5 | C4"},
        {"--invert diatonic --axis B4", "inverted", "| A4 | C5 | C5 | A4"},
        {"--steps 1", nullptr, "| D5 | D5 | D5 | D5"},
    };
    for (const auto& [options, what, notes] : cases) {
        const ProgramRun run = this->run(std::string("rovescio score.musicxml -o new.musicxml ") + options);
        EXPECT_EQ(run.code, 0) << options;
        EXPECT_EQ(pitches(read("new.musicxml")), notes) << options;
        const std::string told = "staff 1, measures 2-3: the notes were not " + std::string(what ? what : "");
        EXPECT_EQ(run.err.find(told) != std::string::npos, what != nullptr) << run.err;
    }
    fs::remove(path("new.musicxml"));
    expectRefused("rovescio score.musicxml -m 2-3 -t M2 -o new.musicxml", 1,
                  "nothing in the selection can be transposed, nothing was written");
    expectRefused("rovescio score.musicxml -m 2-3 -t M2 --invert diatonic --axis C5 -o new.musicxml", 1,
                  "nothing in the selection can be transposed or inverted");
}

TEST_F(Transposing, IntoTheContainerThatTheNameTells) {
    EXPECT_EQ(
        run("rovescio greensleeves.musicxml -t M2 -o new.mxl && rovescio new.mxl -t M-2 -o back.musicxml")
            .code,
        0);
    EXPECT_EQ(read("new.mxl").substr(0, 2), "PK");
    EXPECT_EQ(pitches(read("back.musicxml")), pitches(read("greensleeves.musicxml")));
}

TEST_F(Transposing, HelpAndVersionGoToStandardOutput) {
    const ProgramRun help = run("rovescio --help");
    EXPECT_EQ(help.code, 0);
    for (const char* text : {"--transpose INTERVAL", "--measures RANGE", "Exit codes:", "Examples:"}) {
        EXPECT_NE(help.out.find(text), std::string::npos) << text;
    }
    EXPECT_NE(run("rovescio validate --help").out.find("BUNDLE"), std::string::npos);
    EXPECT_EQ(run("rovescio --version").out.find("rovescio 0."), 0U);
}

}  // namespace
}  // namespace rovescio::test
