// Names of the rules and the handling of broken ones.
#include "engine/interface/strictness.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace rovescio::engine {

namespace {

void endProcess(Rule rule, const std::string& detail) {
    std::fflush(nullptr);
    std::fprintf(stderr, "rovescio: the plug-in broke the rule \"%s\": %s\n",
                 std::string(ruleName(rule)).c_str(), detail.c_str());
    // Destructors of the plug-in must not run on top of a broken state.
    std::_Exit(kRuleBrokenExit);
}

BrokenRuleHandler& handler() {
    static BrokenRuleHandler current = endProcess;
    return current;
}

}  // namespace

std::string_view ruleName(Rule rule) {
    switch (rule) {
        case Rule::versionWord:
            return "version word";
        case Rule::frameNotFreed:
            return "frame not freed";
        case Rule::frameFreedTwice:
            return "frame freed twice";
        case Rule::frameUnknown:
            return "unknown frame";
        case Rule::frameWrittenAfterFree:
            return "frame written after free";
        case Rule::frameHeaderChanged:
            return "frame header changed";
        case Rule::notesBeyondCount:
            return "notes beyond the count";
        case Rule::saveOutsideMassEdit:
            return "save outside a mass edit";
        case Rule::massEditNotEnded:
            return "mass edit not ended";
        case Rule::massEditEndedTwice:
            return "mass edit ended twice";
        case Rule::progressOutsideMassEdit:
            return "progress outside a mass edit";
        case Rule::dialogWithoutProcedure:
            return "dialog without procedure";
        case Rule::dialogUnknown:
            return "unknown dialog";
        case Rule::dialogMisused:
            return "dialog misused";
        case Rule::stringMissing:
            return "string resource missing";
        case Rule::recordsLeft:
            return "temporary records left";
    }
    return "unknown rule";
}

void setBrokenRuleHandler(BrokenRuleHandler newHandler) {
    handler() = newHandler ? std::move(newHandler) : BrokenRuleHandler(endProcess);
}

void ruleBroken(Rule rule, const std::string& detail) {
    handler()(rule, detail);
}

}  // namespace rovescio::engine
