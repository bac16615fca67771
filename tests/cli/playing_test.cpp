// Whole runs of the program that play music or write it as a MIDI file.
#include "cli/workplace.h"
#include "musicxml/score_builder.h"
#include "playback/heard.h"

namespace rovescio::test {
namespace {

namespace fs = std::filesystem;

class Playing : public Workplace {
  protected:
    void SetUp() override {
        Workplace::SetUp();
        write("score.musicxml", scoreOf({note("c4:w"), note("d4:w"), note("e4:w")}));
    }
    // A synthesiser that keeps what it is given, and what it does then.
    void install(const std::string& afterwards) const {
        fs::create_directory(path("bin"));
        write("bin/fluidsynth",
              "#!/bin/bash\nprintf '%s ' \"${@:1:4}\" > played.txt\ncat \"$5\" > played.mid\n" + afterwards);
        fs::permissions(path("bin/fluidsynth"), fs::perms::owner_all);
        write("font.sf2", "");
    }
    const std::string kInstalled = "PATH=\"$PWD/bin:$PATH\" ROVESCIO_SOUND_FONT=font.sf2 ";
};

TEST_F(Playing, WritesTheSelectionAsMidi) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"", "0+4:60 4+4:62 8+4:64", "MIDI of 3 notes in all measures -> out.mid\n"},
        {"--measures 2-3", "0+4:62 4+4:64", "MIDI of 2 notes in measures 2-3 -> out.mid\n"},
        {"--measures 2 --transpose 'up P5' -o new.musicxml", "0+4:69",
         "transposed 1 note in measure 2 -> new.musicxml\nrovescio: MIDI of 1 note in measure 2 -> "
         "out.mid\n"},
        {"--invert diatonic --axis D4", "0+4:64 4+4:62 8+4:60",
         "MIDI of 3 notes in all measures -> out.mid\n"},
    };
    for (const auto& [options, heard, said] : cases) {
        const ProgramRun run = this->run(std::string("rovescio score.musicxml --midi out.mid ") + options);
        EXPECT_EQ(run.code, 0) << options;
        EXPECT_EQ(run.err, std::string("rovescio: ") + said) << options;
        EXPECT_EQ(hear(read("out.mid")).notes(), heard) << options;
    }
    EXPECT_EQ(pitches(read("new.musicxml")), "| C4 | A4 | E4");
    EXPECT_EQ(hear(this->run("rovescio -q score.musicxml --midi -").out).notes(), "0+4:60 4+4:62 8+4:64");
}

TEST_F(Playing, HandsTheMusicToTheSynthesiser) {
    install("");
    ProgramRun run = this->run(kInstalled + "rovescio score.musicxml --measures 2 --play");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "rovescio: playing 1 note in measure 2; Ctrl-C stops\n");
    EXPECT_EQ(read("played.txt"), "-q -n -i font.sf2 ");
    EXPECT_EQ(hear(read("played.mid")).notes(), "0+4:62");

    install("echo 'no sound card.' >&2; exit 3");
    run = this->run(kInstalled + "rovescio -q score.musicxml --play");
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.err,
              "rovescio: FluidSynth could not play (status 3): no sound card. Check that sound works on this "
              "system, "
              "or write a MIDI file with --midi\n");

    install("trap 'touch stopped; exit' TERM; touch started; while :; do sleep 0.01; done");
    run = this->run(kInstalled +
                    "rovescio -q score.musicxml --play & while [ ! -e started ]; do sleep 0.01; done; kill "
                    "-TERM $!; wait $!");
    EXPECT_EQ(run.code, 130);
    EXPECT_TRUE(fs::exists(path("stopped")));
}

TEST_F(Playing, RefusesWhatCannotBeDone) {
    write("taken.mid", "old");
    fs::create_hard_link(path("score.musicxml"), path("same.mid"));
    expectRefusals(R"(
        2 | rovescio score.musicxml --midi score.musicxml | would replace the score itself
        2 | rovescio score.musicxml --midi same.mid | would replace the score itself
        2 | rovescio score.musicxml --midi new.musicxml | Choose a name that ends in .mid
        2 | rovescio score.musicxml --midi a.mid -o new.musicxml | nothing to change for -o
        2 | rovescio score.musicxml greensleeves.musicxml --midi a.mid | for one score
        2 | rovescio score.musicxml --midi a.mid --info | --info shows scores
        4 | rovescio score.musicxml --midi nowhere/a.mid -o new.musicxml --steps 1 | nowhere/a.mid: cannot be written
        4 | rovescio score.musicxml --midi /dev/full -o new.musicxml --steps 1 | /dev/full: cannot be written
        1 | rovescio score.musicxml --measures 9 --midi taken.mid | there is no measure 9
        2 | rovescio score.musicxml --invert chromatic --axis C4 --midi-port X -o new.musicxml | for --axis midi
        3 | rovescio score.musicxml --invert chromatic --axis midi --midi-port 'No such port' -o new.musicxml | MIDI
    )");
    expectRefused("PATH=/nowhere \"$(command -v rovescio)\" score.musicxml --play", 4,
                  "apt install fluidsynth");
    install("");
    expectRefused(kInstalled + "ROVESCIO_SOUND_FONT=none.sf2 rovescio score.musicxml --play", 4,
                  "no sound font");
}

}  // namespace
}  // namespace rovescio::test
