// The host's part in a transformation: bundles, session, scripted dialogs, and what came of it.
#include "cli/transformation_run.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <utility>

#include "cli/cancel.h"
#include "cli/key_limits.h"
#include "cli/messages.h"
#include "cli/progress_bar.h"
#include "cli/retrograde_check.h"
#include "dialogs/scripted_user_interface.h"
#include "engine/interface/plugin_bundle.h"
#include "engine/interface/session.h"

namespace rovescio::cli {

namespace {

using engine::Document;
using engine::FrameAddress;
using engine::Problem;

// What a reader of the score sees of a note's pitch and signs.
struct Appearance {
    std::int16_t displacement;
    std::int16_t alteration;
    std::uint32_t signs;  // accidental shown, ties

    explicit Appearance(const ENOTE& note)
        : displacement(note.displacement),
          alteration(note.alteration),
          signs(note.noteFlags & (NOTE_FLAG24 | NOTE_TIES)) {}
    [[nodiscard]] bool hasPitchOf(const Appearance& other) const {
        return displacement == other.displacement && alteration == other.alteration;
    }
    [[nodiscard]] bool is(const Appearance& other) const { return hasPitchOf(other) && signs == other.signs; }
};

// The notes of all entries in the order of the document, as they are stored.
class NotesBefore {
  public:
    explicit NotesBefore(const Document& document) {
        forEachEntry(document, [&](const FrameAddress&, const engine::StoredEntry& entry) {
            for (const ENOTE& note : entry.notes()) notes_.emplace_back(note.noteId, Appearance(note));
            ends_.push_back(notes_.size());
        });
    }

    // Counts notes inside the selection and those of them that changed, and notes outside it whose pitch
    // changed; their signs may follow from what happened inside.
    struct Counts {
        std::size_t selected = 0;
        std::size_t changed = 0;
        std::size_t changedOutside = 0;
        bool sameNotes = true;  // the same entries with the same notes
    };
    [[nodiscard]] Counts compare(const Document& document, const Selection& selection, bool pitchOnly) const {
        Counts counts;
        std::size_t index = 0;
        forEachEntry(document, [&](const FrameAddress& address, const engine::StoredEntry& entry) {
            if (index >= ends_.size()) {
                counts.sameNotes = false;
                return;
            }
            const bool selected = isSelected(selection, address, entry.elapsed);
            std::size_t known = 0;
            for (const ENOTE& note : entry.notes()) {
                const Appearance now(note);
                const Appearance* before = find(index, note.noteId);
                known += before != nullptr ? 1 : 0;
                const bool moved = before == nullptr || !now.hasPitchOf(*before);
                const bool changed = moved || (!pitchOnly && !now.is(*before));
                counts.selected += selected ? 1 : 0;
                counts.changed += selected && changed ? 1 : 0;
                counts.changedOutside += !selected && moved ? 1 : 0;
            }
            counts.sameNotes = counts.sameNotes && known == ends_[index] - begin(index);
            ++index;
        });
        counts.sameNotes = counts.sameNotes && index == ends_.size();
        return counts;
    }

  private:
    [[nodiscard]] std::size_t begin(std::size_t entry) const { return entry == 0 ? 0 : ends_[entry - 1]; }

    // The notes of a chord change places when it is inverted; their numbers stay.
    [[nodiscard]] const Appearance* find(std::size_t entry, std::uint16_t noteId) const {
        for (std::size_t i = begin(entry); i < ends_[entry]; ++i) {
            if (notes_[i].first == noteId) return &notes_[i].second;
        }
        return nullptr;
    }

    static bool isSelected(const Selection& selection, const FrameAddress& address, std::int32_t elapsed) {
        if (!selection.layers[static_cast<std::size_t>(address.layer)]) return false;
        return std::ranges::any_of(selection.regions,
                                   [&](const EREGION& region) { return contains(region, address, elapsed); });
    }

    template <class Visit>
    static void forEachEntry(const Document& document, const Visit& visit) {
        for (const short staff : document.staffNumbers()) {
            for (const short measure : document.measureNumbers()) {
                for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                    const FrameAddress address{staff, measure, layer};
                    for (const engine::StoredEntry& entry : document.entries(address)) {
                        if ((entry.entryFlags & ENTRY_NOTE) != 0) visit(address, entry);
                    }
                }
            }
        }
    }

    std::vector<std::pair<std::uint16_t, Appearance>> notes_;  // with their numbers inside the entry
    std::vector<std::size_t> ends_;                            // of each entry's notes
};

TransformationOutcome failed(ExitCode code, Problem problem) {
    return {.code = code, .problem = std::move(problem)};
}

// How many of the selection's regions hold a note that the transformation works on. The plug-in has each of
// these redrawn; it may or may not redraw the others.
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

// What the plug-in's check found in any of the selections; each finding once, nothing where it found nothing.
std::string findings(const dialogs::ScriptedUserInterface& userInterface, const std::string& nothing) {
    std::string all;
    for (const dialogs::CheckReport& report : dialogs::checkReports(userInterface.readings())) {
        if (report.findings.empty() || report.findings == nothing ||
            all.find(report.findings) != std::string::npos) {
            continue;
        }
        all += (all.empty() ? "" : "; ") + report.findings;
    }
    return all;
}

// What the user interface and the document say about a run that has ended.
TransformationOutcome judge(const dialogs::ScriptedUserInterface& userInterface,
                            const NotesBefore::Counts& counts, int expectedRedraws,
                            const std::optional<Problem>& refusal, bool reversed) {
    if (userInterface.cancelled()) {
        return failed(ExitCode::cancelled, problemWith("cancelled, nothing was written", ""));
    }
    if (refusal) {
        Problem problem = *refusal;
        problem.message += "; nothing was written";
        return failed(ExitCode::refused, std::move(problem));
    }
    if (!userInterface.alerts().empty()) return failed(ExitCode::refused, {});
    if (!reversed) {
        const std::string obstacles = findings(userInterface, {});
        return failed(ExitCode::refused,
                      problemWith("the music cannot be reversed" +
                                      (obstacles.empty() ? "" : ": " + obstacles) + "; nothing was written",
                                  "See where with --check; --repair deletes what can be deleted"));
    }
    if (userInterface.problem()) {
        return failed(ExitCode::refused, problemWith("the plug-in's dialogs do not offer this: " +
                                                         userInterface.problem()->message,
                                                     "Use a plug-in that fits this version"));
    }
    if (userInterface.redraws() < expectedRedraws) {
        return failed(ExitCode::refused,
                      problemWith("the plug-in gave up before its work was complete, nothing was written",
                                  "--trace shows its last calls"));
    }
    if (!counts.sameNotes || counts.changedOutside > 0) {
        return failed(ExitCode::refused,
                      problemWith("the plug-in changed music outside the selection, nothing was written",
                                  "Use a plug-in that fits this version"));
    }
    return {.problem = {}, .notesSelected = counts.selected, .notesChanged = counts.changed};
}

// Everything to be played, as one request: the plug-in makes one for each selection. None when it is not
// music of the document.
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

}  // namespace

TransformationOutcome transform(Document& document, const Selection& selection,
                                const dialogs::Transformation& transformation, const RunOptions& options) {
    const auto engineBundle = engine::registerEngineBundle(options.engineBundle);
    if (!engineBundle) return failed(ExitCode::installation, engineBundle.problem());
    engine::Result<engine::PluginBundle> plugin = engine::PluginBundle::load(options.pluginBundle);
    if (!plugin) return failed(ExitCode::installation, plugin.problem());
    const auto resources = dialogs::DialogResources::load(options.pluginBundle);
    if (!resources) return failed(ExitCode::installation, resources.problem());

    engine::Session* openSession = nullptr;
    std::vector<std::function<void()>> furtherSelections;
    for (std::size_t i = 1; i < selection.regions.size(); ++i) {
        furtherSelections.emplace_back(
            [&openSession, &selection, i] { openSession->selection = selection.regions[i]; });
    }
    const bool transforms = transformation.stepCount() > 0 && !options.check;
    dialogs::Scripts scripts;
    if (transforms) scripts = dialogs::transformationScripts(transformation, furtherSelections);
    if (options.check) scripts = dialogs::checkScripts(false, furtherSelections);
    if (options.playback) {
        furtherSelections.insert(furtherSelections.begin(), [&openSession, &selection] {
            openSession->selection = selection.regions.front();
        });
        scripts = dialogs::withPlayback(std::move(scripts), furtherSelections);
    }
    ProgressBar bar("frames", options.quiet);
    dialogs::ScriptedUserInterface userInterface(resources.value(), std::move(scripts),
                                                 [&bar](const engine::Progress& progress) {
                                                     bar.update(progress.position, progress.total);
                                                     return !DeferredCancel::requested();
                                                 });
    userInterface.listenTo(options.midiInput);
    engine::Session session(document, userInterface);
    openSession = &session;
    session.selection = selection.regions.front();
    session.layerShown = selection.layers;
    session.fractions = transformation.fractions();
    forEachFrame(selection, [&](const EREGION&, const FrameAddress&) {
        session.expectedLoads += transformation.stepCount();
    });
    session.pluginString = [&plugin](std::uint32_t stringId) { return plugin->string(stringId); };

    const NotesBefore before(document);
    // Where notes change places, all of them count as changed.
    NotesBefore::Counts reversed = before.compare(document, selection, false);
    reversed.changed = reversed.selected;
    const int expectedRedraws = transforms ? regionsReached(document, selection, transformation) : 0;
    if (transforms && expectedRedraws == 0) return failed(ExitCode::refused, nothingReached(transformation));
    const std::vector<std::string> left = notesLeft(document, selection, transformation);
    if (options.trace) engine::traceCalls(&std::cerr);
    for (const auto& [function, call] : options.faults) engine::planFault(function, call);
    const DeferredCancel deferred(DeferredCancel::End::rollBack);
    const engine::Result<engine::Done> started = plugin->start();
    if (!started) return failed(ExitCode::installation, started.problem());
    plugin->invoke(0, nullptr);
    std::vector<std::string> obstacles;
    if (options.check) obstacles = retrogradeObstacles(session, selection);
    session.checkBalanced();
    plugin->stop();
    engine::traceCalls(nullptr);
    bar.clear();
    for (const std::string& alert : userInterface.alerts()) say(alert);
    TransformationOutcome outcome = judge(
        userInterface,
        transformation.retrograde ? reversed
                                  : before.compare(document, selection, transformation.isTransposition()),
        expectedRedraws, session.refusal,
        !transforms || !transformation.retrograde ||
            session.rebars == static_cast<int>(selection.regions.size()));
    if (outcome.code == ExitCode::ok && transforms) outcome.notices = left;
    if (outcome.code == ExitCode::ok && options.check) {
        outcome.findings = findings(userInterface, plugin->string(dialogs::kNoProblemsString));
        outcome.obstacles = std::move(obstacles);
    }
    if (outcome.code == ExitCode::ok && options.playback) {
        outcome.playback = joined(userInterface.playbacks(), document);
        if (!outcome.playback) {
            return failed(ExitCode::refused, problemWith("the plug-in did not say what music it wants played",
                                                         "Use a plug-in that fits this version"));
        }
    }
    return outcome;
}

}  // namespace rovescio::cli
