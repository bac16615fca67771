// Running part of a check in a process of its own, so that nothing a plug-in does harms the validator.
#pragma once

#include <chrono>
#include <functional>

#include "validate/verdict.h"

namespace rovescio::validate {

// Runs the body in a child process and returns its verdict. A broken rule, a crash and a process that has not
// ended by the time limit each give a verdict of their own. What the child prints is kept off the terminal;
// of a crash its last line is told.
Verdict runApart(const std::function<Verdict()>& body, std::chrono::milliseconds timeLimit);

}  // namespace rovescio::validate
