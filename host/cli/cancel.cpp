// Signal handling. The handler uses only what is safe inside one: flags, unlink, write and _exit.
#include "cli/cancel.h"

#include <poll.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <csignal>
#include <cstring>
#include <string_view>

namespace rovescio::cli {

namespace {

constexpr std::array kCancelSignals = {SIGINT, SIGTERM, SIGHUP};

constexpr std::string_view kCutShort =
    "rovescio: another program cut the score short while it was being read; nothing was written. "
    "Run the command again\n";

// What has been written so far.
enum Written : std::sig_atomic_t { kNothing, kPartOfStream, kAll };

// Those among them that end the program.
sigset_t watched{};

volatile std::sig_atomic_t deferred = 0;
volatile std::sig_atomic_t wasRequested = 0;
volatile std::sig_atomic_t written = kNothing;

// A file that a cancel removes.
struct DoomedFile {
    volatile std::sig_atomic_t isSet = 0;
    std::array<char, PATH_MAX> path{};
};
std::array<DoomedFile, 2> doomedFiles;

std::string_view lastWords() {
    switch (written) {
        case kNothing:
            return "\nrovescio: cancelled, nothing was written\n";
        case kPartOfStream:
            return "\nrovescio: cancelled while the output was being written; it may be incomplete\n";
        default:
            return "\nrovescio: cancelled after the results were written\n";
    }
}

[[noreturn]] void end() {
    // All is done but the telling of it.
    if (written == kAll && deferred == 0) endProgram({}, ExitCode::ok);
    endProgram(lastWords(), ExitCode::cancelled);
}

void onSignal(int) {
    const bool canWait = deferred != 0 || written == kAll;
    if (!canWait || wasRequested != 0) end();
    wasRequested = 1;
}

// How often work that is to be rolled back is looked after, and how often a cancel may be found unanswered.
constexpr suseconds_t kLookMicroseconds = 40'000;
constexpr std::sig_atomic_t kPatience = 1;
volatile std::sig_atomic_t looks = 0;

void onLook(int) {
    if (wasRequested == 0) return;
    looks = looks + 1;
    if (looks > kPatience) end();
}

void lookRegularly(bool on) {
    const timeval pause{.tv_sec = 0, .tv_usec = on ? kLookMicroseconds : 0};
    const itimerval timer{.it_interval = pause, .it_value = pause};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

void endProgram(std::string_view text, ExitCode code) {
    for (const DoomedFile& file : doomedFiles) {
        if (file.isSet != 0) unlink(file.path.data());
    }
    // A pipe that is full and that nobody reads would keep the program from its end.
    pollfd standardError{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
    if (!text.empty() && poll(&standardError, 1, 0) > 0) {
        [[maybe_unused]] const ssize_t count = write(STDERR_FILENO, text.data(), text.size());
    }
    _exit(static_cast<int>(code));
}

void watchSignals() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&watched);
    // Output that a signal interrupts goes on afterwards.
    action.sa_flags = SA_RESTART;
    for (const int signal : kCancelSignals) {
        struct sigaction before {};
        // What the parent process had ignored, as nohup does, stays ignored.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaddset(&watched, signal);
        }
    }
    // One at a time, so that the words come once.
    action.sa_mask = watched;
    for (const int signal : kCancelSignals) {
        if (sigismember(&watched, signal) == 1) sigaction(signal, &action, nullptr);
    }
    action.sa_handler = onLook;
    sigaction(SIGALRM, &action, nullptr);
    // A file that is read in place is not all there any more.
    std::signal(SIGBUS, [](int) { endProgram(kCutShort, ExitCode::badInput); });
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

DeferredCancel::DeferredCancel(End end) : end_(end) {
    deferred = 1;
    if (end_ == End::rollBack) lookRegularly(true);
}

DeferredCancel::~DeferredCancel() {
    deferred = 0;
    if (end_ != End::rollBack) return;
    lookRegularly(false);
    if (wasRequested != 0) end();
}

bool DeferredCancel::requested() {
    return wasRequested != 0;
}

HeldSignals::HeldSignals() {
    pthread_sigmask(SIG_BLOCK, &watched, &before_);
}

HeldSignals::~HeldSignals() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

RemovedOnCancel::RemovedOnCancel(const std::string& path) : slot_(doomedFiles[0].isSet == 0 ? 0 : 1) {
    DoomedFile& file = doomedFiles[slot_];
    // A path that long cannot have been opened.
    if (path.size() >= file.path.size()) return;
    std::memcpy(file.path.data(), path.c_str(), path.size() + 1);
    file.isSet = 1;
}

RemovedOnCancel::~RemovedOnCancel() {
    doomedFiles[slot_].isSet = 0;
}

void streamBegins() {
    written = kPartOfStream;
}

CommitPoint::CommitPoint() {
    // One that was only remembered, or came in the moment before.
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    bool cancelled = DeferredCancel::requested();
    for (const int signal : kCancelSignals) {
        cancelled = cancelled || (sigismember(&watched, signal) == 1 && sigismember(&pending, signal) == 1);
    }
    if (cancelled) end();
}

void CommitPoint::allWritten() {
    written = kAll;
}

}  // namespace rovescio::cli
