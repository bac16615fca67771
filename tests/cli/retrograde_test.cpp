// The retrograde on the command line: known answers, the check, the repair, and what is refused.
#include <string>

#include "cli/workplace.h"

namespace rovescio::test {
namespace {

class RetrogradeRun : public Workplace {
  protected:
    void SetUp() override {
        Workplace::SetUp();
        std::filesystem::copy_file(std::filesystem::path(EXAMPLES_FOLDER) / "crab-canon.musicxml",
                                   path("crab-canon.musicxml"));
    }

    // The measures of one part, as they are written.
    [[nodiscard]] static std::string part(const std::string& score, const std::string& id) {
        const std::string start = "<part id=\"" + id + "\">";
        const std::size_t begin = score.find(start) + start.size();
        return score.substr(begin, score.find("</part>", begin) - begin);
    }
};

TEST_F(RetrogradeRun, OneVoiceOfTheCrabCanonIsTheOtherBackwards) {
    const ProgramRun run_ = run("rovescio crab-canon.musicxml --retrograde --staves 1 -o out.musicxml");
    ASSERT_EQ(run_.code, 0) << run_.err;
    EXPECT_EQ(part(read("out.musicxml"), "P1"), part(read("crab-canon.musicxml"), "P2"));
}

TEST_F(RetrogradeRun, ReversesEachOfSeveralRangesByItself) {
    write("score.musicxml", scoreOf({note("c4:w"), note("d4:w"), note("e4:w"), note("f4:w"), note("g4:w")}));
    const ProgramRun run_ = run("rovescio score.musicxml -r -m 4-5,1-2 -o out.musicxml");
    EXPECT_EQ(run_.code, 0);
    EXPECT_EQ(run_.err, "rovescio: changed 4 notes in measures 1-2,4-5 -> out.musicxml\n");
    EXPECT_EQ(pitches(read("out.musicxml")), "| D4 | C4 | E4 | G4 | F4");
    expectRefused("rovescio score.musicxml -r -m 1-2,4-5 --midi out.mid", 2, "one range of measures");
}

TEST_F(RetrogradeRun, TwiceGivesTheFileBack) {
    for (const char* score : {"crab-canon", "frere-jacques"}) {
        const std::string name(score);
        ASSERT_EQ(run("rovescio " + name +
                      ".musicxml -r -q -o once.musicxml && rovescio once.musicxml -r -q -o twice.musicxml")
                      .code,
                  0);
        EXPECT_NE(read("once.musicxml"), read(name + ".musicxml"));
        EXPECT_EQ(read("twice.musicxml"), read(name + ".musicxml"));
    }
}

TEST_F(RetrogradeRun, MirrorsKeysOrSpacingWhereThatIsAskedFor) {
    std::string score = scoreOf({note("c4:w"), attributes("2#") + note("d4:w")});
    score.insert(score.find(" number=\"1\"") + 11, " width=\"90\"");
    write("score.musicxml", score);
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"", "<fifths>0", "\"1\" width"},
        {"--mirror-keys", "<fifths>2", "\"1\" width"},
        {"--mirror-spacing", "<fifths>0", "\"2\" width"}};
    for (const auto& [options, firstKey, wide] : cases) {
        const std::string out = run(std::string("rovescio score.musicxml -r -q -o - ") + options).out;
        EXPECT_EQ(out.find("<fifths>"), out.find(firstKey)) << options << out;
        EXPECT_NE(out.find(wide), std::string::npos) << options << out;
    }
}

TEST_F(RetrogradeRun, ChecksRefusesAndRepairs) {
    write("overlapping.musicxml", scoreOf({note("c4:h") + backup(1) + note("d4:h."), note("e4:w")}));
    write("slurred.musicxml",
          scoreOf({note("c4:h") + note("d4:h", slur("start")), note("e4:w", slur("stop"))}));
    const struct {
        const char* line;
        int code;
        const char* says;  // somewhere in its output
        bool writes;
    } cases[] = {
        {"rovescio crab-canon.musicxml --check", 0, "nothing stands in the way", false},
        {"rovescio slurred.musicxml --check", 1, "staff 1, measures 1-2: slurs", false},
        {"rovescio overlapping.musicxml --check", 1,
         "some durations are wrong\nstaff 1, measure 1: the notes overlap or do not fill the measure\n",
         false},
        {"rovescio overlapping.musicxml --retrograde -o out.musicxml", 1, "Correct the durations", false},
        {"rovescio slurred.musicxml --retrograde -o out.musicxml", 1,
         "slurs or other lines; nothing was written. See where with --check; --repair deletes", false},
        {"rovescio slurred.musicxml --check --transpose m3", 2, "--check looks at one score", false},
        {"rovescio slurred.musicxml --mirror-keys -o out.musicxml", 2, "--retrograde", false},
        {"rovescio slurred.musicxml --retrograde --repair -o out.musicxml", 0, "changed", true},
    };
    for (const auto& c : cases) {
        const ProgramRun result = run(c.line);
        EXPECT_EQ(result.code, c.code) << c.line << result.err;
        EXPECT_NE((result.out + result.err).find(c.says), std::string::npos) << result.out << result.err;
        EXPECT_EQ(std::filesystem::exists(path("out.musicxml")), c.writes) << c.line;
    }
    EXPECT_EQ(read("out.musicxml").find("<slur"), std::string::npos);
}

}  // namespace
}  // namespace rovescio::test
