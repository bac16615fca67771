// One run of the host: the document, the selection, the open mass edits and frames, and the user interface.
//
// The host functions act on the current session. There is one at a time, and everything runs on one thread.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "contract/records.h"
#include "engine/edit/consequences.h"
#include "engine/edit/mass_edit.h"
#include "engine/interface/data_records.h"
#include "engine/interface/gate.h"
#include "engine/interface/loaded_frames.h"
#include "engine/interface/user_interface.h"
#include "engine/model/document.h"
#include "engine/model/problem.h"
#include "engine/model/record_store.h"

namespace rovescio::engine {

class Session {
  public:
    explicit Session(Document& document);
    // The same for one invocation only, which begins with it.
    Session(Document& document, UserInterface& userInterface);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    static Session& current();

    Document& document;
    MassEdits massEdits;
    Consequences consequences;
    LoadedFrames frames;
    RecordStore records;  // temporary ones
    DataRecords dataRecords;

    // What is selected in the score; none until set.
    std::optional<EREGION> selection;
    std::array<bool, kMaxLayers> layerShown = {true, true, true, true};
    // What the transformation that was chosen does to quarter tones of the selection.
    FractionChange fractions = {};
    // How many frames the transformations chosen will load, for the progress display.
    std::int64_t expectedLoads = 0;
    // Text of a string resource of the plug-in, UTF-8; empty when it has none.
    std::function<std::string(std::uint32_t stringId)> pluginString;

    // A plug-in is about to be invoked: who works its dialogs. What was chosen for the invocation before, and
    // what that one came to, is forgotten; its undo steps stay.
    void begin(UserInterface& userInterface);
    // It has come back; until the next one nobody works dialogs.
    void end();
    [[nodiscard]] UserInterface& userInterface() const;
    // How far the invocation has come.
    [[nodiscard]] Progress progress() const { return {frames.loads() - loadsBefore_, expectedLoads}; }

    // Distributes the music of a region over its measures again; false, with the reason in refusal(), when it
    // does not fill them.
    bool rebar(const EREGION& region);
    // Why what the invocation asked for could not be done; the document must not be written then.
    [[nodiscard]] const std::optional<Problem>& refusal() const { return refusal_; }
    // Regions whose music it had laid out again.
    [[nodiscard]] int rebars() const { return rebars_; }
    // Reports what the plug-in left open; call after each invocation.
    void checkBalanced();

  private:
    UserInterface* userInterface_ = nullptr;
    std::int64_t loadsBefore_ = 0;
    std::optional<Problem> refusal_;
    int rebars_ = 0;
};

}  // namespace rovescio::engine
