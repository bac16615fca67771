// Starting and ending of child processes.
#include "cli/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "cli/messages.h"

extern char** environ;

namespace rovescio::cli {

engine::Result<ChildProcess> ChildProcess::start(const std::string& program,
                                                 const std::vector<std::string>& arguments) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return problemWith(std::string("no pipe can be made for another process: ") + std::strerror(errno),
                           "Use fewer --jobs");
    }
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error != 0) {
        close(ends[0]);
        return problemWith(std::string("no other process can be started: ") + std::strerror(error),
                           "Use fewer --jobs");
    }
    return ChildProcess(process, ends[0]);
}

bool ChildProcess::readMessages() {
    std::array<char, 4096> piece{};
    const ssize_t count = read(pipe_, piece.data(), piece.size());
    if (count < 0) return errno == EINTR;
    messages_.append(piece.data(), static_cast<std::size_t>(count));
    return count > 0;
}

int ChildProcess::finish() {
    close(pipe_);
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void ChildProcess::cancel() const {
    kill(process_, SIGTERM);
}

}  // namespace rovescio::cli
