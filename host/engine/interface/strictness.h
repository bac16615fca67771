// The rules that a plug-in must keep, and what happens when it breaks one.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace rovescio::engine {

enum class Rule {
    versionWord,              // the last argument of every call is the kit version
    frameNotFreed,            // every loaded frame is freed
    frameFreedTwice,          // and only once
    frameUnknown,             // frame calls take frames that are loaded
    frameWrittenAfterFree,    // a freed frame is not written to
    frameHeaderChanged,       // entries and entryCount change through the host alone
    notesBeyondCount,         // note slots beyond noteCount are zero in a saved entry
    saveOutsideMassEdit,      // frames are saved inside a mass edit
    massEditNotEnded,         // every mass edit is ended
    massEditEndedTwice,       // once, the innermost first
    progressOutsideMassEdit,  // progress belongs to an open mass edit
    dialogWithoutProcedure,   // a dialog has a procedure
    dialogUnknown,            // and a description among the plug-in's resources
    dialogMisused,            // items exist, and values have their item's kind
    stringMissing,            // every string shown is in the plug-in's resources
    recordsLeft,              // temporary records are deleted
};

// The rule's short name, as shown to the user.
std::string_view ruleName(Rule rule);

// Called with each broken rule. The default prints "rule broken" with name and detail to standard error and
// ends the process with kRuleBrokenExit before any output is written.
using BrokenRuleHandler = std::function<void(Rule rule, const std::string& detail)>;
inline constexpr int kRuleBrokenExit = 70;

void setBrokenRuleHandler(BrokenRuleHandler handler);
void ruleBroken(Rule rule, const std::string& detail);

}  // namespace rovescio::engine
