// A child process of our own program for one score of a batch.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "engine/model/problem.h"

namespace rovescio::cli {

class ChildProcess {
  public:
    // Starts a program; its standard input is empty and its standard error is kept here.
    static engine::Result<ChildProcess> start(const std::string& program,
                                              const std::vector<std::string>& arguments);

    // To be polled for reading; what it says is then taken with readMessages().
    [[nodiscard]] int messagePipe() const { return pipe_; }
    // Takes what is there; false when the process has closed its end.
    bool readMessages();
    // Waits for the end and returns the exit status; 128 and the signal's number when one ended it.
    int finish();
    // Asks the process to end.
    void cancel() const;

    [[nodiscard]] const std::string& messages() const { return messages_; }

  private:
    ChildProcess(pid_t process, int pipe) : process_(process), pipe_(pipe) {}

    pid_t process_;
    int pipe_;
    std::string messages_;
};

}  // namespace rovescio::cli
