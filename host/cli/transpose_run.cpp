// The host's part in a transposition: bundles, session, scripted dialogs, and what came of it.
#include "cli/transpose_run.h"

#include <functional>
#include <iostream>
#include <utility>

#include "cli/cancel.h"
#include "cli/messages.h"
#include "cli/progress_bar.h"
#include "dialogs/scripted_user_interface.h"
#include "engine/plugin_bundle.h"
#include "engine/session.h"

namespace rovescio::cli {

namespace {

using engine::Document;
using engine::FrameAddress;
using engine::Problem;

// The pitches of all notes in the order of the document, as they are stored.
class PitchSnapshot {
  public:
    explicit PitchSnapshot(const Document& document) {
        forEachNote(document, [&](const FrameAddress&, std::int32_t, const ENOTE& note) {
            pitches_.emplace_back(note.displacement, note.alteration);
        });
    }

    // Counts notes inside the selection, and notes of another pitch than at the time of the snapshot, inside
    // and outside.
    struct Counts {
        std::size_t selected = 0;
        std::size_t changed = 0;
        std::size_t changedOutside = 0;
        bool sameNotes = true;  // as many notes as before
    };
    [[nodiscard]] Counts compare(const Document& document, const Selection& selection) const {
        Counts counts;
        std::size_t index = 0;
        forEachNote(document, [&](const FrameAddress& address, std::int32_t elapsed, const ENOTE& note) {
            const bool selected = isSelected(selection, address, elapsed);
            const bool changed =
                index >= pitches_.size() || pitches_[index] != std::pair(note.displacement, note.alteration);
            ++index;
            counts.selected += selected ? 1 : 0;
            counts.changed += selected && changed ? 1 : 0;
            counts.changedOutside += !selected && changed ? 1 : 0;
        });
        counts.sameNotes = index == pitches_.size();
        return counts;
    }

  private:
    static bool isSelected(const Selection& selection, const FrameAddress& address, std::int32_t elapsed) {
        if (!selection.layers[static_cast<std::size_t>(address.layer)]) return false;
        for (const EREGION& region : selection.regions) {
            if (contains(region, address, elapsed)) return true;
        }
        return false;
    }

    template <class Visit>
    static void forEachNote(const Document& document, const Visit& visit) {
        for (short staff = 1; staff <= document.staffCount(); ++staff) {
            for (short measure = 1; measure <= document.measureCount(); ++measure) {
                for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                    const FrameAddress address{staff, measure, layer};
                    for (const engine::StoredEntry& entry : document.entries(address)) {
                        if ((entry.entryFlags & ENTRY_NOTE) == 0) continue;
                        for (const ENOTE& note : entry.notes()) visit(address, entry.elapsed, note);
                    }
                }
            }
        }
    }

    std::vector<std::pair<std::int16_t, std::int16_t>> pitches_;
};

TransposeOutcome failed(ExitCode code, Problem problem) {
    return {.code = code, .problem = std::move(problem)};
}

// How many of the selection's regions hold an entry; the plug-in changes and redraws each of these.
int regionsWithMusic(const Document& document, const Selection& selection) {
    const EREGION* last = nullptr;
    int count = 0;
    forEachFrame(selection, [&](const EREGION& region, const FrameAddress& address) {
        for (const engine::StoredEntry& entry : document.entries(address)) {
            if (&region == last || !contains(region, address, entry.elapsed)) continue;
            last = &region;
            ++count;
        }
    });
    return count;
}

// What the user interface and the document say about a run that has ended.
TransposeOutcome judge(const dialogs::ScriptedUserInterface& userInterface,
                       const PitchSnapshot::Counts& counts, int expectedRedraws) {
    if (userInterface.cancelled()) {
        return failed(ExitCode::cancelled, problemWith("cancelled, nothing was written", ""));
    }
    if (!userInterface.alerts().empty()) return failed(ExitCode::refused, {});
    if (userInterface.problem()) {
        return failed(ExitCode::refused, problemWith("the plug-in's dialogs do not offer this: " +
                                                         userInterface.problem()->message,
                                                     "Use a plug-in that fits this version"));
    }
    if (userInterface.redraws() != expectedRedraws) {
        return failed(
            ExitCode::refused,
            problemWith("the plug-in gave up before the transposition was complete, nothing was written",
                        "--trace shows its last calls"));
    }
    if (!counts.sameNotes || counts.changedOutside > 0) {
        return failed(ExitCode::refused,
                      problemWith("the plug-in changed music outside the selection, nothing was written",
                                  "Use a plug-in that fits this version"));
    }
    return {.problem = {}, .notesSelected = counts.selected, .notesChanged = counts.changed};
}

}  // namespace

TransposeOutcome transpose(Document& document, const Selection& selection,
                           const dialogs::Transposition& transposition, const TransposeOptions& options) {
    const auto engineBundle = engine::registerEngineBundle(options.engineBundle);
    if (!engineBundle) return failed(ExitCode::installation, engineBundle.problem());
    engine::Result<engine::PluginBundle> plugin = engine::PluginBundle::load(options.pluginBundle);
    if (!plugin) return failed(ExitCode::installation, plugin.problem());
    const engine::Result<std::string> descriptions = plugin->dialogDescriptions();
    if (!descriptions) return failed(ExitCode::installation, descriptions.problem());
    const auto resources = dialogs::DialogResources::parse(descriptions.value(), options.pluginBundle);
    if (!resources) return failed(ExitCode::installation, resources.problem());

    engine::Session* openSession = nullptr;
    std::vector<std::function<void()>> furtherSelections;
    for (std::size_t i = 1; i < selection.regions.size(); ++i) {
        furtherSelections.emplace_back(
            [&openSession, &selection, i] { openSession->selection = selection.regions[i]; });
    }
    ProgressBar bar("frames", options.quiet);
    dialogs::ScriptedUserInterface userInterface(
        resources.value(), dialogs::transpositionScripts(transposition, furtherSelections),
        [&bar](const engine::Progress& progress) {
            bar.update(progress.position, progress.total);
            return !DeferredCancel::requested();
        });
    engine::Session session(document, userInterface);
    openSession = &session;
    session.selection = selection.regions.front();
    session.layerShown = selection.layers;
    forEachFrame(selection, [&](const EREGION&, const FrameAddress&) { ++session.expectedLoads; });
    session.pluginString = [&plugin](std::uint32_t stringId) { return plugin->string(stringId); };

    const PitchSnapshot before(document);
    const int expectedRedraws = regionsWithMusic(document, selection);
    if (options.trace) engine::traceCalls(&std::cerr);
    for (const auto& [function, call] : options.faults) engine::planFault(function, call);
    const DeferredCancel deferred;
    const engine::Result<engine::Done> started = plugin->start();
    if (!started) return failed(ExitCode::installation, started.problem());
    plugin->invoke(0, nullptr);
    session.checkBalanced();
    plugin->stop();
    engine::traceCalls(nullptr);
    bar.clear();
    return judge(userInterface, before.compare(document, selection), expectedRedraws);
}

}  // namespace rovescio::cli
