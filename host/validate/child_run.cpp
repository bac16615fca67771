// Child processes: their two pipes, their end and what it means.
#include "validate/child_run.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <thread>

#include "engine/interface/strictness.h"

namespace rovescio::validate {

namespace {

using Clock = std::chrono::steady_clock;

// Small enough to be written at once.
constexpr std::size_t kLongestVerdict = 2000;

// Neither end ever waits: what no longer fits is lost, so that a plug-in cannot block itself by printing.
class Pipe {
  public:
    Pipe() { usable_ = pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK) == 0; }
    ~Pipe() {
        for (const int end : ends_) {
            if (usable_) close(end);
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    [[nodiscard]] bool usable() const { return usable_; }
    [[nodiscard]] int writeEnd() const { return ends_[1]; }
    [[nodiscard]] std::string content() const {
        std::string text;
        std::array<char, 4096> piece{};
        for (ssize_t count = 0; (count = read(ends_[0], piece.data(), piece.size())) > 0;) {
            text.append(piece.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

  private:
    std::array<int, 2> ends_{};
    bool usable_ = false;
};

// A verdict travels as one letter for passed or failed, and the detail.
void send(const Pipe& pipe, const Verdict& verdict) {
    const std::string text =
        (verdict.outcome == Outcome::passed ? "p" : "f") + verdict.detail.substr(0, kLongestVerdict);
    if (write(pipe.writeEnd(), text.data(), text.size()) < 0) std::abort();
}

// An exception of the plug-in that gets as far as here ends the child as an uncaught one.
[[noreturn]] void beChild(const std::function<Verdict()>& body, const Pipe& verdicts, const Pipe& prints,
                          std::chrono::milliseconds timeLimit) noexcept {
    for (const int output : {STDOUT_FILENO, STDERR_FILENO}) dup2(prints.writeEnd(), output);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) signal(number, SIG_DFL);
    // Not to go on for ever when the validator itself is killed.
    alarm(static_cast<unsigned>(2 + 2 * std::chrono::ceil<std::chrono::seconds>(timeLimit).count()));
    engine::setBrokenRuleHandler([&](engine::Rule rule, const std::string& detail) {
        send(verdicts, failed("broke the rule \"" + std::string(ruleName(rule)) + "\": " + detail));
        _exit(engine::kRuleBrokenExit);
    });
    send(verdicts, body());
    // Without the destructors of the plug-in: how it is unloaded is no part of the check.
    _exit(0);
}

// How the child ended; empty when it had to be killed.
std::optional<int> statusWithin(pid_t child, std::chrono::milliseconds timeLimit) {
    const auto deadline = Clock::now() + timeLimit;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() >= deadline) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return status;
}

std::string lastLine(std::string text) {
    while (text.ends_with('\n')) text.pop_back();
    return text.substr(text.rfind('\n') + 1);
}

std::string endText(int status) {
    if (WIFSIGNALED(status)) return strsignal(WTERMSIG(status));
    return "ended the host's process with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

Verdict runApart(const std::function<Verdict()>& body, std::chrono::milliseconds timeLimit) {
    const Pipe verdicts;
    const Pipe prints;
    const pid_t child = verdicts.usable() && prints.usable() ? fork() : -1;
    if (child < 0)
        return failed(std::string("not run, no other process can be started: ") + std::strerror(errno));
    if (child == 0) beChild(body, verdicts, prints, timeLimit);
    const std::optional<int> status = statusWithin(child, timeLimit);
    if (!status) return failed("did not return within " + std::to_string(timeLimit.count()) + " ms");
    const std::string sent = verdicts.content();
    const bool ended = WIFEXITED(*status) && !sent.empty();
    if (ended) return sent[0] == 'p' ? passed(sent.substr(1)) : failed(sent.substr(1));
    const std::string said = lastLine(prints.content());
    return {Outcome::crashed, endText(*status) + (said.empty() ? "" : ": " + said)};
}

}  // namespace rovescio::validate
