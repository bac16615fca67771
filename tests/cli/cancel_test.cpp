// The user's cancel, in every phase of a run.
#include "cli/workplace.h"

namespace rovescio::test {
namespace {

class Cancelling : public Workplace {
  protected:
    // Runs lines of bash that cancel the program and end with its exit code; returns what it said.
    std::string saidWhenCancelled(const std::string& lines) const {
        const auto namesBefore = names();
        const ProgramRun cancelled = run(lines);
        EXPECT_EQ(cancelled.code, 130) << lines;
        EXPECT_NE(cancelled.err.find("rovescio: cancelled, nothing was written"), std::string::npos);
        EXPECT_EQ(names(), namesBefore);
        return cancelled.err;
    }
};

TEST_F(Cancelling, WhileTheScoreIsReadEndsAtOnce) {
    // More than a pipe holds: once all of it is written, the program takes input and has set up its signals.
    saidWhenCancelled(
        "mkfifo score; rovescio - -t M2 -o new.xml < score & program=$!\n"
        "exec 3> score; rm score; head -c 200000 /dev/zero | tr '\\0' ' ' >&3\n"
        "kill -TERM $program; wait $program");
}

TEST_F(Cancelling, WhileThePlugInWorksRollsBack) {
    write("long.musicxml", longScore(3000));
    // The trace is more than a pipe holds, so that the program cannot end before it is read.
    const std::string said = saidWhenCancelled(
        "set -m; mkfifo trace; rovescio long.musicxml -t M2 -o new.xml --trace 2> trace & program=$!\n"
        "{ while read -r line && [[ $line != SX_SaveTGF* ]]; do :; done; kill -INT $program; cat >&2; } < "
        "trace\n"
        "rm trace; wait $program");
    EXPECT_NE(said.find("SX_EndMassEdit"), std::string::npos) << "the edit must be ended in order";
}

TEST_F(Cancelling, WhileNobodyReadsWhatItSaysEndsAllTheSame) {
    // The pipe is full, so that the first line of the trace holds the program up.
    const ProgramRun stuck =
        run("set -m; mkfifo trace; exec 3<> trace; head -c 65536 /dev/zero >&3\n"
            "rovescio greensleeves.musicxml -t M2 -o new.xml --trace 2>&3 & program=$!\n"
            "until [[ $(ps -o comm=,stat= $program) == rovescio*S* ]]; do sleep 0.01; done\n"
            "kill -INT $program; wait $program");
    EXPECT_EQ(stuck.code, 130);
}

}  // namespace
}  // namespace rovescio::test
