// The user's cancel: Ctrl-C and the termination signals.
#pragma once

#include <signal.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/exit_code.h"

namespace rovescio::cli {

// From now on a signal ends the program with ExitCode::cancelled, and a reader that goes away or a file that
// grows beyond its limit makes writing fail instead of ending the program.
void watchSignals();

// Ends the program from wherever it is, with a message; unfinished files are removed. Safe in a signal's
// handler and where no memory is left.
[[noreturn]] void endProgram(std::string_view text, ExitCode code);

// While an object of this class lives, a first signal is only remembered, so that the work at hand can be
// finished in an orderly way; a second one ends the program at once.
class DeferredCancel {
  public:
    // What an orderly end is for the work at hand.
    enum class End {
        rollBack,  // at once, otherwise the program ends all the same; at the latest with this object
        handOver,  // once others have ended, which the work makes sure of
    };
    explicit DeferredCancel(End end);
    ~DeferredCancel();
    DeferredCancel(const DeferredCancel&) = delete;
    DeferredCancel& operator=(const DeferredCancel&) = delete;

    [[nodiscard]] static bool requested();

  private:
    End end_;
};

// While an object of this class lives, signals wait.
class HeldSignals {
  public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

  private:
    sigset_t before_{};
};

// While an object of this class lives, a signal removes the file before it ends the program. For at most two
// files at a time.
class RemovedOnCancel {
  public:
    explicit RemovedOnCancel(const std::string& path);
    ~RemovedOnCancel();
    RemovedOnCancel(const RemovedOnCancel&) = delete;
    RemovedOnCancel& operator=(const RemovedOnCancel&) = delete;

  private:
    std::size_t slot_;
};

// Something is about to be written that cannot be taken back; the message of a cancel then says so.
void streamBegins();

// The time in which the results are put into place: a cancel that came before ends the program as this object
// is made, and one that comes later waits. Whether it is too late then depends on what was decided meanwhile.
class CommitPoint {
  public:
    CommitPoint();

    // Everything is in place, and a cancel can only end what follows, such as playing.
    static void allWritten();

  private:
    HeldSignals held_;
};

}  // namespace rovescio::cli
