// The user's cancel, in every phase of a run.
#include "cli/cancel.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <thread>

#include "cli/workplace.h"

namespace {

class Cancelling : public rovescio::test::Workplace {
  protected:
    // Starts the program in the folder with its standard error in a pipe; standard input is another pipe.
    void start(std::vector<std::string> arguments) {
        std::array<int, 2> in{};
        std::array<int, 2> err{};
        ASSERT_EQ(pipe(in.data()), 0);
        ASSERT_EQ(pipe(err.data()), 0);
        process_ = fork();
        if (process_ == 0) {
            dup2(in[0], STDIN_FILENO);
            dup2(err[1], STDERR_FILENO);
            for (const int end : {in[0], in[1], err[0], err[1]}) close(end);
            std::vector<char*> argv;
            argv.reserve(arguments.size() + 1);
            for (std::string& argument : arguments) argv.push_back(argument.data());
            argv.push_back(nullptr);
            if (chdir(path("").c_str()) == 0) execv(PROGRAM_FOLDER "/rovescio", argv.data());
            _exit(126);
        }
        close(in[0]);
        close(err[1]);
        input_ = in[1];
        messages_ = err[0];
    }

    // Waits until the program has written so much that it cannot go on before someone reads.
    void waitUntilBlocked() const {
        const int capacity = fcntl(messages_, F_GETPIPE_SZ);
        for (int waiting = 0; waiting < capacity - 4096;) {
            ASSERT_EQ(ioctl(messages_, FIONREAD, &waiting), 0);
            ASSERT_EQ(waitpid(process_, nullptr, WNOHANG), 0) << "the program ended too early";
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    // Reads all the program says and returns its exit status.
    int finish(std::string& said) {
        std::array<char, 4096> piece{};
        for (ssize_t count = 0; (count = read(messages_, piece.data(), piece.size())) > 0;) {
            said.append(piece.data(), static_cast<std::size_t>(count));
        }
        close(messages_);
        close(input_);
        int status = 0;
        waitpid(process_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    using Workplace::read;
    static ssize_t read(int file, void* buffer, std::size_t size) { return ::read(file, buffer, size); }

    pid_t process_ = 0;
    int input_ = -1;
    int messages_ = -1;
};

TEST_F(Cancelling, WhileTheScoreIsReadEndsAtOnce) {
    const auto namesBefore = names();
    start({"rovescio", "-", "-t", "M2", "-o", "new.xml"});
    // The program has set up its signals once it takes input.
    ASSERT_EQ(::write(input_, "<", 1), 1);
    for (int waiting = 1; waiting > 0;) {
        ASSERT_EQ(ioctl(input_, FIONREAD, &waiting), 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    kill(process_, SIGTERM);
    std::string said;
    EXPECT_EQ(finish(said), 130);
    EXPECT_NE(said.find("cancelled, nothing was written"), std::string::npos) << said;
    EXPECT_EQ(names(), namesBefore);
}

TEST_F(Cancelling, WhileThePlugInWorksRollsBack) {
    write("long.musicxml", rovescio::test::longScore(3000));
    const auto namesBefore = names();
    start({"rovescio", "long.musicxml", "-t", "M2", "-o", "new.xml", "--trace"});
    waitUntilBlocked();
    kill(process_, SIGINT);
    std::string said;
    EXPECT_EQ(finish(said), 130);
    EXPECT_NE(said.find("SX_EndMassEdit"), std::string::npos) << "the edit must be ended in order";
    EXPECT_NE(said.find("rovescio: cancelled, nothing was written"), std::string::npos);
    EXPECT_EQ(names(), namesBefore);
}

}  // namespace
