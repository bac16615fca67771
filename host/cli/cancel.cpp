// Signal handling. The handler uses only what is safe inside one: flags, unlink, write and _exit.
#include "cli/cancel.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <csignal>
#include <cstring>
#include <string_view>

#include "cli/exit_code.h"

namespace rovescio::cli {

namespace {

volatile std::sig_atomic_t deferred = 0;
volatile std::sig_atomic_t wasRequested = 0;
volatile std::sig_atomic_t hasDoomedFile = 0;
std::array<char, PATH_MAX> doomedFile{};

void onSignal(int) {
    if (deferred != 0 && wasRequested == 0) {
        wasRequested = 1;
        return;
    }
    if (hasDoomedFile != 0) unlink(doomedFile.data());
    constexpr std::string_view kText = "\nrovescio: cancelled, nothing was written\n";
    // Nothing can be done about a standard error that takes no text.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kText.data(), kText.size());
    _exit(static_cast<int>(ExitCode::cancelled));
}

}  // namespace

void watchSignals() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    // Output that a signal interrupts goes on afterwards.
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before {};
        // What the parent process had ignored, as nohup does, stays ignored.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

DeferredCancel::DeferredCancel() {
    deferred = 1;
}

DeferredCancel::~DeferredCancel() {
    deferred = 0;
}

bool DeferredCancel::requested() {
    return wasRequested != 0;
}

RemovedOnCancel::RemovedOnCancel(const std::string& path) {
    // A path that long cannot have been opened.
    if (path.size() >= doomedFile.size()) return;
    std::memcpy(doomedFile.data(), path.c_str(), path.size() + 1);
    hasDoomedFile = 1;
}

RemovedOnCancel::~RemovedOnCancel() {
    hasDoomedFile = 0;
}

}  // namespace rovescio::cli
