// The current session and its final checks.
#include "engine/session.h"

#include <cassert>

#include "contract/data_records.h"
#include "engine/strictness.h"

namespace rovescio::engine {

namespace {

Session* currentSession = nullptr;

}  // namespace

Session::Session(Document& documentToEdit, UserInterface& front)
    : document(documentToEdit),
      userInterface(front),
      massEdits(documentToEdit),
      frames(documentToEdit, massEdits),
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

void Session::checkBalanced() {
    frames.checkBalanced();
    massEdits.checkBalanced();
    if (const auto left = records.count(kPlaybackStaffTag); left > 0) {
        ruleBroken(Rule::recordsLeft,
                   std::to_string(left) + " records of the playback staff list were left behind");
    }
}

}  // namespace rovescio::engine
