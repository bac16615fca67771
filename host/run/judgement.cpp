// From alerts, redrawings and counts of notes to one report.
#include "run/judgement.h"

#include <algorithm>
#include <utility>

#include "run/key_limits.h"

namespace rovescio::run {

using engine::Document;
using engine::FrameAddress;
using engine::Problem;
using engine::problemWith;

int regionsReached(const Document& document, const Selection& selection,
                   const dialogs::Transformation& transformation) {
    const EREGION* last = nullptr;
    int count = 0;
    forEachFrame(selection, [&](const EREGION& region, const FrameAddress& address) {
        if (&region == last) return;
        if (!reaches(transformation, document.staffMeasure(address.staff, address.measure).key)) return;
        const auto isReached = [&](const engine::StoredEntry& entry) {
            return (entry.entryFlags & ENTRY_NOTE) != 0 && contains(region, address, entry.elapsed);
        };
        if (!std::ranges::any_of(document.entries(address), isReached)) return;
        last = &region;
        ++count;
    });
    return count;
}

std::string findings(const dialogs::ScriptedUserInterface& user, const std::string& nothing) {
    std::string all;
    for (const dialogs::CheckReport& report : dialogs::checkReports(user.readings())) {
        if (report.findings.empty() || report.findings == nothing ||
            all.find(report.findings) != std::string::npos) {
            continue;
        }
        all += (all.empty() ? "" : "; ") + report.findings;
    }
    return all;
}

Report judge(const Evidence& evidence) {
    const auto refused = [](Problem problem) {
        return Report{.outcome = Outcome::refused, .problem = std::move(problem)};
    };
    const dialogs::ScriptedUserInterface& user = evidence.user;
    if (user.cancelled()) {
        return {.outcome = Outcome::cancelled, .problem = problemWith("cancelled, nothing was written", "")};
    }
    if (evidence.refusal) {
        Problem problem = *evidence.refusal;
        problem.message += "; nothing was written";
        return refused(std::move(problem));
    }
    if (!user.alerts().empty()) return refused({});
    if (!evidence.isReversed) {
        const std::string obstacles = findings(user, {});
        return refused(problemWith("the music cannot be reversed" +
                                       (obstacles.empty() ? "" : ": " + obstacles) + "; nothing was written",
                                   "See where with {check}; {repair} deletes what can be deleted"));
    }
    if (user.problem()) {
        return refused(problemWith("the plug-in's dialogs do not offer this: " + user.problem()->message,
                                   "Use a plug-in that fits this version"));
    }
    if (user.redraws() < evidence.expectedRedraws) {
        return refused(problemWith("the plug-in gave up before its work was complete, nothing was written",
                                   "{trace} shows its last calls"));
    }
    if (!evidence.counts.sameNotes || evidence.counts.changedOutside > 0) {
        return refused(problemWith("the plug-in changed music outside the selection, nothing was written",
                                   "Use a plug-in that fits this version"));
    }
    return {
        .problem = {}, .notesSelected = evidence.counts.selected, .notesChanged = evidence.counts.changed};
}

std::optional<engine::PlaybackRequest> joined(const std::vector<engine::PlaybackRequest>& requests,
                                              const Document& document) {
    if (requests.empty()) return std::nullopt;
    engine::PlaybackRequest all{requests.front().startMeasure, requests.front().endMeasure, {}};
    for (const engine::PlaybackRequest& request : requests) {
        const bool sameMeasures =
            request.startMeasure == all.startMeasure && request.endMeasure == all.endMeasure;
        if (!sameMeasures || all.startMeasure > all.endMeasure) return std::nullopt;
        for (const short staff : request.staves) {
            if (!document.has(staff, all.startMeasure) || !document.has(staff, all.endMeasure))
                return std::nullopt;
            all.staves.push_back(staff);
        }
    }
    if (all.staves.empty()) return std::nullopt;
    return all;
}

}  // namespace rovescio::run
