// Whole runs of the program that invert, set accidentals and remove ties, on scores small enough to know the
// answers.
#include "cli/workplace.h"

namespace rovescio::test {
namespace {

class Inverting : public Workplace {
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

TEST_F(Inverting, AfterTranspositionAndBeforeTheAccidentals) {
    const std::string score = scoreOf({note("c4:q") + chordNote("e4:q") + note("d4:q")});
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"-t M2 --invert chromatic --axis E4", "F#4 D4 E4", "sharp", "changed 3 notes"},
        {"-t M2 --invert chromatic --axis E4 --notes never", "F#4 D4 E4", "", "changed 3 notes"},
        {"-t M2 --invert chromatic --axis E4 --notes in-key", "F4 D4 E4", "", "changed 3 notes"},
        {"--octaves 1 --invert-chords down --notes always", "C5 E4 D5", "natural natural natural",
         "changed 3 notes"},
        {"--invert-chords up", "C5 E4 D4", "", "changed 1 of 3 notes"},
        {"--invert diatonic --axis E4", "G4 E4 F4", "", "changed 2 of 3 notes"},
        {"--invert chromatic --axis 'B-flat 3'", "Ab3 Fb3 Gb3", "flat flat flat", "changed 3 notes"},
        {"--invert chromatic --axis C#4 --simplify", "D4 A#3 C4", "sharp", "changed 3 notes"},
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
    const std::string score = scoreOf({note("f#4:q", accidental("sharp")) + note("f#4:q") +
                                       note("g4:q", accidental("natural", " cautionary=\"yes\"")) +
                                       note("a4:q", accidental("natural"))});
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
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
}

}  // namespace
}  // namespace rovescio::test
