// Running the levels in turn, and printing of the report.
#include "validate/validate.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <map>
#include <ostream>

#include "engine/interface/plugin_bundle.h"
#include "validate/checks.h"
#include "validate/child_run.h"

namespace rovescio::validate {

namespace {

constexpr std::array<std::pair<Outcome, const char*>, 4> kOutcomes = {{{Outcome::passed, "passed"},
                                                                       {Outcome::failed, "failed"},
                                                                       {Outcome::crashed, "crashed"},
                                                                       {Outcome::skipped, "skipped"}}};

const char* outcomeName(Outcome outcome) {
    return std::ranges::find(kOutcomes, outcome, &std::pair<Outcome, const char*>::first)->second;
}

}  // namespace

Check checkApart(std::string name, Verdict (*body)(const std::string& bundle)) {
    return {std::move(name), [body](const Subject& subject) {
                return runApart([&] { return body(subject.bundle); }, subject.timeLimit);
            }};
}

bool LevelResult::allPassed() const {
    return std::ranges::all_of(
        checks, [](const CheckResult& result) { return result.verdict.outcome == Outcome::passed; });
}

bool Report::allPassed() const {
    return std::ranges::all_of(levels, &LevelResult::allPassed);
}

void Report::print(std::ostream& out) const {
    constexpr int kColumn = 8;
    std::map<Outcome, int> counts;
    for (const LevelResult& level : levels) {
        out << level.level << '\n';
        for (const auto& [check, verdict] : level.checks) {
            ++counts[verdict.outcome];
            out << "  " << std::left << std::setw(kColumn) << outcomeName(verdict.outcome) << check;
            if (!verdict.detail.empty()) out << ": " << verdict.detail;
            out << '\n';
        }
    }
    const char* comma = "";
    for (const auto& [outcome, name] : kOutcomes) {
        out << std::exchange(comma, ", ") << counts[outcome] << ' ' << name;
    }
    out << '\n';
}

engine::Result<Report> validateBundle(const std::string& bundle, const std::string& engineBundle,
                                      std::chrono::milliseconds timeLimit) {
    if (!std::filesystem::is_directory(bundle)) {
        return engine::Problem{.message = "there is no plug-in bundle here",
                               .file = bundle,
                               .measure = {},
                               .remedy = "Name the folder of a bundle"};
    }
    const auto engineReady = engine::registerEngineBundle(engineBundle);
    if (!engineReady) return engineReady.problem();
    const Subject subject{bundle, engineBundle + "/Contents/Helpers/load-code", timeLimit};
    if (access(subject.loader.c_str(), X_OK) != 0) {
        return engine::Problem{.message = "the helper program is missing",
                               .file = subject.loader,
                               .measure = {},
                               .remedy = "Install Rovescio again"};
    }
    const std::pair<const char*, std::vector<Check>> levels[] = {{"bundle", bundleChecks()},
                                                                 {"resources", resourceChecks()},
                                                                 {"start", startChecks()},
                                                                 {"session", sessionChecks()},
                                                                 {"stop", stopChecks()}};
    Report report;
    for (const auto& [name, checks] : levels) {
        const bool skipped = !report.allPassed();
        LevelResult level{name, {}};
        for (const Check& check : checks) {
            level.checks.push_back(
                {check.name, skipped ? Verdict{Outcome::skipped, {}} : check.run(subject)});
        }
        report.levels.push_back(std::move(level));
    }
    return report;
}

}  // namespace rovescio::validate
