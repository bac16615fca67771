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

Session::Session(Document& documentToEdit)
    : document(documentToEdit),
      massEdits(documentToEdit),
      consequences(documentToEdit, massEdits),
      frames(documentToEdit, consequences),
      dataRecords(documentToEdit, massEdits, records) {
    assert(!currentSession);
    currentSession = this;
}

Session::Session(Document& documentToEdit, UserInterface& front) : Session(documentToEdit) {
    begin(front);
}

Session::~Session() {
    currentSession = nullptr;
}

Session& Session::current() {
    assert(currentSession);
    return *currentSession;
}

void Session::begin(UserInterface& front) {
    userInterface_ = &front;
    loadsBefore_ = frames.loads();
    selection.reset();
    layerShown.fill(true);
    fractions = {};
    expectedLoads = 0;
    refusal_.reset();
    rebars_ = 0;
    pluginString = nullptr;
}

void Session::end() {
    userInterface_ = nullptr;
    pluginString = nullptr;
}

UserInterface& Session::userInterface() const {
    assert(userInterface_);
    return *userInterface_;
}

bool Session::rebar(const EREGION& region) {
    const Result<Done> done = engine::rebar(document, consequences, layerShown, region);
    if (done) {
        ++rebars_;
    } else {
        refusal_ = done.problem();
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
