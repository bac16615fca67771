// How results reach their places: whole or not at all, with what the user made there respected.
#include <sys/stat.h>
#include <unistd.h>

#include "cli/workplace.h"

namespace rovescio::test {
namespace {

namespace fs = std::filesystem;

class Writing : public Workplace {
  protected:
    [[nodiscard]] struct stat statusOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat(path(name).c_str(), &status), 0) << name;
        return status;
    }
};

TEST_F(Writing, OntoTheInputKeepsWhoseItIsAndWhoMayReadIt) {
    constexpr uid_t kOther = 12345;
    const bool isRoot = geteuid() == 0;
    for (const auto& [before, after] : {std::pair(0640U, 0640U), {06755U, 0755U}, {0600U, 0600U}}) {
        const std::string old = read("greensleeves.musicxml");
        if (isRoot) {
            ASSERT_EQ(chown(path("greensleeves.musicxml").c_str(), kOther, kOther + 1), 0);
        }
        ASSERT_EQ(chmod(path("greensleeves.musicxml").c_str(), before), 0);
        fs::remove(path("link.musicxml"));
        fs::create_symlink("greensleeves.musicxml", path("link.musicxml"));
        const auto namesBefore = names();
        EXPECT_EQ(run("rovescio greensleeves.musicxml -t M2 -o link.musicxml").code, 0);
        EXPECT_NE(read("greensleeves.musicxml"), old);
        EXPECT_TRUE(fs::is_symlink(path("link.musicxml")));
        EXPECT_EQ(names(), namesBefore);
        const struct stat status = statusOf("greensleeves.musicxml");
        EXPECT_EQ(status.st_mode & 07777, after);
        EXPECT_EQ(status.st_uid, isRoot ? kOther : geteuid());
        EXPECT_EQ(status.st_gid, isRoot ? kOther + 1 : getegid());
    }
    fs::create_symlink("not-yet.musicxml", path("dangling.musicxml"));
    EXPECT_EQ(run("rovescio greensleeves.musicxml -t M2 -o dangling.musicxml").code, 0);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path("not-yet.musicxml"))));
    fs::permissions(path("greensleeves.musicxml"), fs::perms::owner_read);
    expectRefused("rovescio greensleeves.musicxml -t M2 -o greensleeves.musicxml", 4,
                  "the file is read-only");
}

TEST_F(Writing, ToAStreamLeavesTheFileBehindItInItsPlace) {
    const std::string expected = run("rovescio greensleeves.musicxml -t M2 -q -o -").out;
    fs::create_symlink("/dev/stdout", path("link.xml"));
    for (const char* target : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "link.xml", "/dev/fd/7"}) {
        const ProgramRun run = this->run("{ echo first; rovescio greensleeves.musicxml -t M2 -q -o " +
                                         std::string(target) + "; echo last; } > log 7>&1");
        EXPECT_EQ(run.err, "") << target;
        EXPECT_EQ(read("log"), "first\n" + expected + "last\n") << target;
    }
    expectRefused("rovescio greensleeves.musicxml -t M2 -o /dev/fd/7", 4, "/dev/fd/7: cannot be written");
    expectRefused("rovescio greensleeves.musicxml -t M2 -o /dev/fd/7 7< frere-jacques.musicxml", 4,
                  "/dev/fd/7: cannot be written");
}

TEST_F(Writing, TwoResultsToOnePlaceIsRefused) {
    write("a.musicxml", "old");
    fs::create_hard_link(path("a.musicxml"), path("hard.mid"));
    fs::create_symlink("a.musicxml", path("soft.mid"));
    fs::create_symlink("new.musicxml", path("dangling.mid"));
    for (const char* pair :
         {"-o new --midi new", "-o new --midi ./new", "-o a.musicxml --midi hard.mid",
          "-o a.musicxml --midi soft.mid", "-o new.musicxml --midi dangling.mid", "-o - --midi -",
          "-o - --midi /dev/stdout", "-o /dev/fd/5 --midi a.mid 5>> a.mid; code=$?; rm a.mid; exit $code"}) {
        expectRefused("rovescio greensleeves.musicxml -t M2 " + std::string(pair), 2,
                      "lead to the same place");
    }
    fs::create_directory(path("new"));
    fs::create_symlink("../frere-jacques.musicxml", path("new/greensleeves.musicxml"));
    expectRefused("rovescio greensleeves.musicxml frere-jacques.musicxml -t M2 --out-dir new", 2,
                  "frere-jacques.musicxml would be replaced by the result of greensleeves.musicxml");
    fs::create_symlink("greensleeves.musicxml", path("new/frere-jacques.musicxml"));
    fs::remove(path("new/greensleeves.musicxml"));
    write("new/greensleeves.musicxml", "old");
    expectRefused("rovescio greensleeves.musicxml frere-jacques.musicxml -t M2 --out-dir new", 2,
                  "would both become");
}

TEST_F(Writing, ScoreAndMidiAppearTogetherOrNotAtAll) {
    write("old.mid", "old");
    const std::pair<const char*, const char*> cases[] = {
        {"-o new.musicxml --midi /dev/full", "/dev/full: cannot be written"},
        {"-o /dev/full --midi old.mid", "/dev/full: cannot be written"},
        {"-o frere-jacques.musicxml --midi none/new.mid", "none/new.mid: cannot be written"},
    };
    for (const auto& [outputs, message] : cases) {
        expectRefused("rovescio greensleeves.musicxml -t M2 " + std::string(outputs), 4, message);
    }
}

TEST_F(Writing, RemovesWhatKilledRunsLeft) {
    write("long.musicxml", longScore(2000));
    // The program waits with a complete file beside its place until somebody reads the other result.
    const ProgramRun killed =
        run("mkfifo pipe; rovescio long.musicxml -t M2 -o new.musicxml --midi pipe & program=$!\n"
            "until ls .rovescio-* 2> /dev/null; do sleep 0.01; done; kill -KILL $program; wait $program; rm "
            "pipe");
    ASSERT_EQ(killed.out.find(".rovescio-"), 0U);
    write(".rovescio-notes", "the user's own");
    write(".rovescio-1-abcdef", "of a process that lives");
    EXPECT_EQ(run("rovescio long.musicxml -t M2 -o new.musicxml").code, 0);
    EXPECT_EQ(names(),
              (std::vector<std::string>{".rovescio-1-abcdef", ".rovescio-notes", "frere-jacques.musicxml",
                                        "greensleeves.musicxml", "long.musicxml", "new.musicxml"}));
}

}  // namespace
}  // namespace rovescio::test
