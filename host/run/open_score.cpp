// Runs of the plug-in over an open score: scripted dialogs, and what came of them.
#include "run/open_score.h"

#include <functional>
#include <utility>

#include "dialogs/scripted_user_interface.h"
#include "engine/interface/gate.h"
#include "run/engagement.h"
#include "run/judgement.h"
#include "run/key_limits.h"
#include "run/note_changes.h"
#include "run/retrograde_check.h"

namespace rovescio::run {

namespace {

using engine::Document;
using engine::Result;

// Prints calls while it lives.
class Trace {
  public:
    explicit Trace(std::ostream* stream) { engine::traceCalls(stream); }
    ~Trace() { engine::traceCalls(nullptr); }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;
};

// What a person would do for the task in the plug-in's dialogs.
dialogs::Scripts scriptsFor(const Task& task, const Selection& selection, engine::Session& session) {
    std::vector<std::function<void()>> selections;
    for (const EREGION& region : selection.regions) {
        selections.emplace_back([&session, &region] { session.selection = region; });
    }
    // The first one is selected from the start.
    const std::vector<std::function<void()>> further(selections.begin() + 1, selections.end());
    dialogs::Scripts scripts;
    if (task.transforms()) scripts = dialogs::transformationScripts(task.transformation, further);
    if (task.check) scripts = dialogs::checkScripts(false, further);
    if (task.playback) scripts = dialogs::withPlayback(std::move(scripts), selections);
    return scripts;
}

// What a task does to the notes.
class Changes {
  public:
    Changes(const Document& document, const Selection& selection, const Task& task)
        : document_(document), selection_(selection), before_(document) {
        if (task.transformation.isTransposition()) what_ = ChangeIn::pitch;
        if (!task.transformation.retrograde) return;
        // Where notes change places, all of them count as changed.
        reversed_ = before_.compare(document, selection, what_);
        reversed_->changed = reversed_->selected;
    }
    [[nodiscard]] NoteCounts counts() const {
        return reversed_ ? *reversed_ : before_.compare(document_, selection_, what_);
    }

  private:
    const Document& document_;
    const Selection& selection_;
    NotesBefore before_;
    ChangeIn what_ = ChangeIn::pitchAndSigns;
    std::optional<NoteCounts> reversed_;
};

Report noPlayback() {
    return {.outcome = Outcome::refused,
            .problem = engine::problemWith("the plug-in did not say what music it wants played",
                                           "Use a plug-in that fits this version")};
}

}  // namespace

Result<std::unique_ptr<OpenScore>> OpenScore::open(musicxml::Bytes bytes, std::string name,
                                                   const musicxml::ReadOptions& options) {
    Document document;
    Result<musicxml::ScoreFile> file =
        musicxml::ScoreFile::read(std::move(bytes), std::move(name), document, options);
    if (!file) return file.problem();
    return std::unique_ptr<OpenScore>(new OpenScore(std::move(*file), std::move(document)));
}

void OpenScore::instruct(const Selection& selection, const dialogs::Transformation& transformation) {
    session_.selection = selection.regions.front();
    session_.layerShown = selection.layers;
    session_.fractions = transformation.fractions();
    forEachFrame(selection, [&](const EREGION&, const engine::FrameAddress&) {
        session_.expectedLoads += transformation.stepCount();
    });
}

Report OpenScore::engage(const PlugIn& plugIn, const Selection& selection, const Task& task,
                         const Supervision& supervision, int expectedRedraws) {
    dialogs::ScriptedUserInterface user(plugIn.dialogs, scriptsFor(task, selection, session_),
                                        supervision.progress);
    user.listenTo(supervision.midiInput);
    Engagement engagement(session_, plugIn.bundle, user);
    instruct(selection, task.transformation);
    const Changes changes(document_, selection, task);
    {
        const Trace trace(supervision.trace);
        for (const auto& [function, call] : supervision.faults) engine::planFault(function, call);
        if (const Result<engine::Done> started = engagement.start(); !started) {
            return {.outcome = Outcome::notInstalled, .problem = started.problem()};
        }
        engagement.runCommand();
        plugIn.bundle.stop();
    }
    const bool wasToReverse = task.transforms() && task.transformation.retrograde;
    Report report = judge(
        {.user = user,
         .counts = changes.counts(),
         .expectedRedraws = expectedRedraws,
         .refusal = session_.refusal(),
         .isReversed = !wasToReverse || session_.rebars() == static_cast<int>(selection.regions.size())});
    report.alerts = user.alerts();
    if (report.isDone() && task.check) {
        report.findings = findings(user, plugIn.bundle.string(dialogs::kNoProblemsString));
        report.obstacles = retrogradeObstacles(session_, selection);
    }
    if (report.isDone() && task.playback) {
        report.playback = joined(user.playbacks(), document_);
        if (!report.playback) return noPlayback();
    }
    return report;
}

Report OpenScore::work(const PlugIn& plugIn, const Selection& selection, const Task& task,
                       const Supervision& supervision) {
    int expectedRedraws = 0;
    std::vector<std::string> left;
    if (task.transforms()) {
        expectedRedraws = regionsReached(document_, selection, task.transformation);
        if (expectedRedraws == 0) {
            return {.outcome = Outcome::nothingToDo, .problem = nothingReached(task.transformation)};
        }
        // Before keys change places.
        left = notesLeft(document_, selection, task.transformation);
    }
    session_.massEdits.openStep();
    Report report = engage(plugIn, selection, task, supervision, expectedRedraws);
    session_.massEdits.closeStep(!report.isDone());
    if (report.isDone()) report.notices = std::move(left);
    return report;
}

Result<playback::MidiFile> OpenScore::midiFile(const engine::PlaybackRequest& request,
                                               const Selection& selection) const {
    return playback::makeMidiFile(document_, file_.performance(), request, selection.layers);
}

}  // namespace rovescio::run
