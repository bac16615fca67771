// Whole runs of the program that invert, set accidentals and remove ties, on scores small enough to know the
// answers.
#include <sstream>

#include "cli/workplace.h"
#include "musicxml/score_builder.h"

namespace {

namespace fs = std::filesystem;
using rovescio::test::chordNote;
using rovescio::test::note;
using rovescio::test::ProgramRun;
using rovescio::test::scoreOf;

std::string attributes(int fifths, const std::string& mode) {
    return "<attributes><divisions>4</divisions><key><fifths>" + std::to_string(fifths) + "</fifths><mode>" +
           mode + "</mode></key><time><beats>4</beats><beat-type>4</beat-type></time></attributes>";
}
const std::string kNoScale =
    "<attributes><divisions>4</divisions><key><key-step>F</key-step><key-alter>1</key-alter>"
    "<key-step>B</key-step><key-alter>-1</key-alter></key></attributes>";

// Quarter notes such as "c4 f#4"; those after a "+" join the chord before.
std::string quarters(const std::string& pitches) {
    std::istringstream stream(pitches);
    std::string xml;
    for (std::string pitch; stream >> pitch;) {
        xml += pitch[0] == '+' ? chordNote(pitch.substr(1) + ":q") : note(pitch + ":q");
    }
    return xml;
}

class Inverting : public rovescio::test::Workplace {
  protected:
    // The pitches of a score's only measure after a run with the options.
    [[nodiscard]] std::string after(const std::string& score, const std::string& options) const {
        write("score.musicxml", score);
        const ProgramRun run = this->run("rovescio score.musicxml -o new.musicxml " + options);
        EXPECT_EQ(run.code, 0) << options << "\n" << run.err;
        return run.code == 0 ? pitches(read("new.musicxml")).substr(2) : "";
    }
    // The accidentals that the last run's result shows.
    [[nodiscard]] std::string accidentals() const {
        static const std::regex sign("<accidental[^>]*>([a-z-]+)<");
        const std::string xml = read("new.musicxml");
        std::string text;
        for (std::sregex_iterator found(xml.begin(), xml.end(), sign); found != std::sregex_iterator();
             ++found) {
            text += (text.empty() ? "" : " ") + (*found)[1].str();
        }
        return text;
    }
};

TEST_F(Inverting, AroundAnAxis) {
    const struct {
        int fifths;
        const char* mode;
        const char* notes;
        const char* options;
        const char* mirrored;
    } cases[] = {
        // By semitones the axis note stays, and what lay above lies as far below.
        {0, "major", "e4 f4 c4 a4 bb4", "chromatic --axis E4", "E4 D#4 G#4 B3 A#3"},
        {0, "major", "eb4 d4", "chromatic --axis D4", "C#4 D4"},
        {0, "major", "c4 e4 g4", "chromatic --axis 'B-flat 3'", "Ab3 Fb3 Db3"},
        {2, "major", "d4 f#4 a4 c#5", "chromatic --axis F#4", "A#4 F#4 D#4 B3"},
        {-3, "major", "eb4 g4 bb4", "chromatic --axis Eb4", "Eb4 Cb4 Ab3"},
        // Simplifying takes double accidentals and the other names of scale notes away, in one pass.
        {0, "major", "e#4 fb4 ebb4 f##4", "chromatic --axis D4", "Cb4 B#3 C##4 Bbb3"},
        {0, "major", "e#4 fb4 ebb4 f##4", "chromatic --axis D4 --simplify", "B3 C4 D4 A3"},
        {0, "major", "f###4", "chromatic --axis D4 --simplify", "Ab3"},
        // Within the key a raised degree becomes a lowered one.
        {1, "major", "g4 a4 b4 f#5 c#5", "diatonic --axis G4", "G4 F#4 E4 A3 Db4"},
        {1, "major", "f#4 g4 a4", "diatonic --axis F4", "F#4 E4 D4"},
        {0, "minor", "a4 g#4 e5", "diatonic --axis A4", "A4 Bb4 D4"},
        // In minor the axis is one of the major scale on the tonic, so that not all are where they seem to
        // be.
        {0, "minor", "c4 e4 a4", "chromatic --axis E4", "G#4 E4 B3"},
        {0, "minor", "c4 e4 a4", "chromatic --axis C4", "Cbb4 Abbb3 Ebbb3"},
        {-3, "minor", "c4 d4 eb4", "chromatic --axis C4", "C##4 B#3 A##3"},
    };
    for (const auto& [fifths, mode, notes, options, mirrored] : cases) {
        const std::string score = scoreOf({quarters(notes)}, attributes(fifths, mode));
        EXPECT_EQ(after(score, std::string("--invert ") + options), mirrored) << fifths << options;
    }
}

TEST_F(Inverting, TwiceGivesTheFirstFileBack) {
    for (const char* inversion : {"diatonic --axis B3", "chromatic --axis 'C sharp 5'"}) {
        const auto invert = [&](const char* from, const char* to) {
            return this->run(std::string("rovescio ") + from + " -o " + to + " --invert " + inversion);
        };
        EXPECT_EQ(invert("frere-jacques.musicxml", "once.musicxml").code, 0);
        EXPECT_EQ(invert("once.musicxml", "twice.musicxml").code, 0);
        EXPECT_NE(pitches(read("once.musicxml")), pitches(read("frere-jacques.musicxml")));
        EXPECT_EQ(read("twice.musicxml"), read("frere-jacques.musicxml")) << inversion;
    }
}

TEST_F(Inverting, AfterTranspositionAndBeforeTheAccidentals) {
    const std::string score = scoreOf({quarters("c4 +e4 d4")});
    const struct {
        const char* options;
        const char* notes;
        const char* accidentals;
        const char* summary;
    } cases[] = {
        {"-t M2 --invert chromatic --axis E4", "F#4 D4 E4", "sharp", "changed 3 notes"},
        {"-t M2 --invert chromatic --axis E4 --notes never", "F#4 D4 E4", "", "changed 3 notes"},
        {"-t M2 --invert chromatic --axis E4 --notes in-key", "F4 D4 E4", "", "changed 3 notes"},
        {"--octaves 1 --invert-chords down --notes always", "C5 E4 D5", "natural natural natural",
         "changed 3 notes"},
        {"--invert diatonic --axis E4", "G4 E4 F4", "", "changed 2 of 3 notes"},
    };
    for (const auto& [options, notes, accidentals, summary] : cases) {
        EXPECT_EQ(after(score, options), notes) << options;
        EXPECT_EQ(this->accidentals(), accidentals) << options;
        EXPECT_EQ(run(std::string("rovescio score.musicxml -o new.musicxml ") + options).err,
                  "rovescio: " + std::string(summary) + " in all measures -> new.musicxml\n");
    }
}

TEST_F(Inverting, NotesShowTheAccidentalsThatAreAskedFor) {
    // F sharp twice, the second under the first one's sign; a natural that somebody wanted, and one that is
    // too much.
    const std::string score = scoreOf({note("f#4:q", "<accidental>sharp</accidental>") + note("f#4:q") +
                                       note("g4:q", "<accidental cautionary=\"yes\">natural</accidental>") +
                                       note("a4:q", "<accidental>natural</accidental>")});
    const struct {
        const char* option;
        const char* notes;
        const char* accidentals;
        const char* summary;
    } cases[] = {
        {"as-needed", "F#4 F#4 G4 A4", "sharp natural", "changed 1 of 4 notes"},
        {"always", "F#4 F#4 G4 A4", "sharp sharp natural natural", "changed 1 of 4 notes"},
        {"never", "F#4 F#4 G4 A4", "", "changed 3 of 4 notes"},
        {"automatic", "F#4 F#4 G4 A4", "sharp", "changed 2 of 4 notes"},
        {"in-key", "F4 F4 G4 A4", "", "changed 4 notes"},
    };
    for (const auto& [option, notes, accidentals, summary] : cases) {
        EXPECT_EQ(after(score, std::string("--notes ") + option), notes) << option;
        EXPECT_EQ(this->accidentals(), accidentals) << option;
        const ProgramRun run = this->run(std::string("rovescio score.musicxml -o - --notes ") + option);
        EXPECT_EQ(run.err.find("rovescio: " + std::string(summary) + " in"), 0U) << run.err;
    }
}

TEST_F(Inverting, TiesGoWhenTheyAreNotWanted) {
    const std::string tied = note("c4:q", "<notations><tied type=\"start\"/></notations>") +
                             note("c4:q", "<notations><tied type=\"stop\"/><fermata/></notations>") +
                             note("d4:h");
    EXPECT_EQ(after(scoreOf({tied}), "--remove-ties"), "C4 C4 D4");
    const std::string xml = read("new.musicxml");
    EXPECT_EQ(xml.find("<tied"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<fermata/>"), std::string::npos) << xml;
    EXPECT_EQ(run("rovescio score.musicxml -o - --remove-ties").err,
              "rovescio: changed 2 of 3 notes in all measures -> standard output\n");
    EXPECT_EQ(after(scoreOf({tied}), "--invert chromatic --axis D4"), "E4 E4 D4");
    EXPECT_NE(read("new.musicxml").find("<tied type=\"start\"/>"), std::string::npos);
}

}  // namespace
