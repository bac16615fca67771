// Many scores in one run.
#include "cli/workplace.h"

namespace rovescio::test {
namespace {

namespace fs = std::filesystem;
class Batches : public Workplace {};

TEST_F(Batches, GoOnPastBadScoresAndSayWhichWereBad) {
    fs::create_directory(path("new"));
    write("broken.musicxml", "<score-partwise>");
    write("-dash.musicxml", longScore(2));
    const ProgramRun run =
        this->run("rovescio -t 'up major second' --out-dir new --jobs 3 -- *.musicxml missing.mxl");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(pitches(read("new/-dash.musicxml")), "| D5 D5 D5 D5 | D5 D5 D5 D5");
    EXPECT_EQ(names(),
              (std::vector<std::string>{"-dash.musicxml", "broken.musicxml", "frere-jacques.musicxml",
                                        "greensleeves.musicxml", "new", "new/-dash.musicxml",
                                        "new/frere-jacques.musicxml", "new/greensleeves.musicxml"}));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 3) << run.err;
    EXPECT_NE(run.err.find("rovescio: broken.musicxml"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("rovescio: missing.mxl: cannot be read"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("rovescio: transposed 3 of 5 scores -> new; 2 failed\n"), std::string::npos)
        << run.err;
}

TEST_F(Batches, GiveTheCodeThatAllFailuresShare) {
    fs::create_directory(path("new"));
    EXPECT_EQ(run("rovescio a.mxl b.mxl -t M2 --out-dir new").code, 3);
    EXPECT_EQ(run("rovescio greensleeves.musicxml frere-jacques.musicxml -t M2 -m 99 --out-dir new").code, 1);
    EXPECT_EQ(run("rovescio greensleeves.musicxml -t M2 --out-dir new --quiet").code, 0);
}

TEST_F(Batches, RefusePlansInWhichResultsCollide) {
    fs::create_directory(path("new"));
    fs::create_directory(path("other"));
    fs::copy_file(path("greensleeves.musicxml"), path("other/greensleeves.musicxml"));
    const ProgramRun twice =
        run("rovescio greensleeves.musicxml other/greensleeves.musicxml -t M2 --out-dir new");
    EXPECT_EQ(twice.code, 2);
    EXPECT_NE(twice.err.find("would both become new/greensleeves.musicxml"), std::string::npos) << twice.err;
    const ProgramRun onto = run("rovescio greensleeves.musicxml frere-jacques.musicxml -t M2 --out-dir .");
    EXPECT_EQ(onto.code, 2);
    EXPECT_NE(onto.err.find("replaced by its own result"), std::string::npos) << onto.err;
    EXPECT_TRUE(fs::is_empty(path("new")));
}

TEST_F(Batches, StopTogetherWhenCancelled) {
    fs::create_directory(path("new"));
    // The children wait for a score in a pipe that nobody fills.
    const ProgramRun run = this->run(
        "mkfifo a.musicxml b.musicxml\n"
        "rovescio a.musicxml b.musicxml -t M2 --out-dir new --jobs 2 & batch=$!\n"
        "until children=$(ps -o pid= --ppid $batch) && [[ $(wc -w <<< $children) -eq 2 ]]; do sleep 0.01; "
        "done\n"
        "kill $batch; wait $batch; code=$?\n"
        "for child in $children; do kill -0 $child 2> /dev/null && echo left; done\n"
        "exit $code");
    EXPECT_EQ(run.code, 130) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("rovescio: cancelled; 0 of 2 scores done"), std::string::npos) << run.err;
    EXPECT_TRUE(fs::is_empty(path("new")));
}

}  // namespace
}  // namespace rovescio::test
