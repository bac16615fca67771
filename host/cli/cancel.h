// The user's cancel: Ctrl-C and the termination signals.
#pragma once

#include <string>

namespace rovescio::cli {

// From now on a signal ends the program with ExitCode::cancelled, and a reader that goes away or a file that
// grows beyond its limit makes writing fail instead of ending the program.
void watchSignals();

// While an object of this class lives, a first signal is only remembered, so that the work at hand can be
// rolled back; a second one ends the program at once.
class DeferredCancel {
  public:
    DeferredCancel();
    ~DeferredCancel();
    DeferredCancel(const DeferredCancel&) = delete;
    DeferredCancel& operator=(const DeferredCancel&) = delete;

    [[nodiscard]] static bool requested();
};

// While an object of this class lives, a signal removes the file before it ends the program.
class RemovedOnCancel {
  public:
    explicit RemovedOnCancel(const std::string& path);
    ~RemovedOnCancel();
    RemovedOnCancel(const RemovedOnCancel&) = delete;
    RemovedOnCancel& operator=(const RemovedOnCancel&) = delete;
};

}  // namespace rovescio::cli
