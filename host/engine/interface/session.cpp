// The current session and its final checks.
#include "engine/interface/session.h"

#include <cassert>

#include "contract/data_records.h"
#include "engine/edit/rebar.h"
#include "engine/interface/strictness.h"

namespace rovescio::engine {

namespace {

Session* currentSession = nullptr;

}  // namespace

Session::Session(Document& documentToEdit, UserInterface& front)
    : document(documentToEdit),
      userInterface(front),
      massEdits(documentToEdit),
      consequences(documentToEdit, massEdits),
      frames(documentToEdit, consequences),
      dataRecords(documentToEdit, massEdits, records) {
    assert(!currentSession);
    currentSession = this;
}

Session::~Session() {
    currentSession = nullptr;
}

Session& Session::current() {
    assert(currentSession);
    return *currentSession;
}

bool Session::rebar(const EREGION& region) {
    const Result<Done> done = engine::rebar(document, consequences, layerShown, region);
    if (done) {
        ++rebars;
    } else {
        refusal = done.problem();
    }
    return done.ok();
}

void Session::checkBalanced() {
    frames.checkBalanced();
    if (const auto open = massEdits.cancelAll(); open > 0)
        ruleBroken(Rule::massEditNotEnded, std::to_string(open) + " mass edits were left open");
    if (const auto left = records.count(kPlaybackStaffTag); left > 0) {
        ruleBroken(Rule::recordsLeft,
                   std::to_string(left) + " records of the playback staff list were left behind");
    }
}

}  // namespace rovescio::engine
