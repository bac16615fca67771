// The checks of each level, in the order in which they run.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "validate/verdict.h"

namespace rovescio::validate {

// What is checked, with what, and how long one run of the plug-in may take.
struct Subject {
    std::string bundle;
    std::string loader;  // the helper that loads code apart from the host
    std::chrono::milliseconds timeLimit{};
};

struct Check {
    std::string name;
    std::function<Verdict(const Subject&)> run;
};

// A check of one run, in a process of its own.
Check checkApart(std::string name, Verdict (*body)(const std::string& bundle));

// The bundle as a folder with code: what it exports and what it must not.
std::vector<Check> bundleChecks();
// Dialog descriptions, and texts in every language.
std::vector<Check> resourceChecks();
// The entry points up to the first use of the command.
std::vector<Check> startChecks();
// The command at work in its dialogs, over a small score.
std::vector<Check> sessionChecks();
std::vector<Check> stopChecks();

}  // namespace rovescio::validate
