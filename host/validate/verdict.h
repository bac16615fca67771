// How a check of a plug-in came out.
#pragma once

#include <string>
#include <utility>

namespace rovescio::validate {

enum class Outcome {
    passed,
    failed,   // the plug-in answered wrongly, broke a rule or did not return
    crashed,  // a signal ended the process, or the plug-in ended it itself
    skipped,  // an earlier level was not passed
};

struct Verdict {
    Outcome outcome = Outcome::passed;
    std::string detail;  // one line: what is wrong, or a note on what was done; may be empty
};

inline Verdict passed(std::string note = {}) {
    return {Outcome::passed, std::move(note)};
}
inline Verdict failed(std::string what) {
    return {Outcome::failed, std::move(what)};
}

}  // namespace rovescio::validate
