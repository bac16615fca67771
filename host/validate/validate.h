// The validation of a plug-in bundle: all checks, level by level, and the report on them.
#pragma once

#include <array>
#include <chrono>
#include <iosfwd>
#include <string>
#include <vector>

#include "engine/model/problem.h"
#include "validate/verdict.h"

namespace rovescio::validate {

struct CheckResult {
    std::string check;
    Verdict verdict;
};

struct LevelResult {
    std::string level;
    std::vector<CheckResult> checks;

    [[nodiscard]] bool allPassed() const;
};

struct Report {
    std::vector<LevelResult> levels;

    [[nodiscard]] bool allPassed() const;
    // Prints one line for each check under its level, and a summary.
    void print(std::ostream& out) const;
};

inline constexpr std::chrono::milliseconds kDefaultTimeLimit{10'000};

// Runs all checks; a level is skipped when one before it was not passed. Fails when the engine bundle is
// damaged or there is no bundle to check. The time limit is that of one run of the plug-in.
engine::Result<Report> validateBundle(const std::string& bundle, const std::string& engineBundle,
                                      std::chrono::milliseconds timeLimit = kDefaultTimeLimit);

}  // namespace rovescio::validate
