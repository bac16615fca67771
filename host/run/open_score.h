// A score open for work: a file, the document made of it, and the session in which plug-ins change it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/transformation_script.h"
#include "engine/interface/session.h"
#include "engine/model/document.h"
#include "engine/model/problem.h"
#include "musicxml/score_file.h"
#include "playback/midi_file.h"
#include "run/plug_in.h"
#include "run/report.h"
#include "run/selection.h"
#include "run/selection_request.h"
#include "run/supervision.h"

namespace rovescio::run {

// What a plug-in is to do in one run: nothing but a check, or a transformation (without steps, nothing) and
// after it playback.
struct Task {
    dialogs::Transformation transformation = {};
    bool check = false;
    bool playback = false;

    [[nodiscard]] bool transforms() const { return transformation.stepCount() > 0 && !check; }
};

// There is one at a time in a process, as there is one session. A run of the plug-in that is not done leaves
// the document as it was; one that is done is one step to undo, however many regions it went through.
class OpenScore {
  public:
    // Reads the bytes of a file; the name is for messages.
    static engine::Result<std::unique_ptr<OpenScore>> open(musicxml::Bytes bytes, std::string name,
                                                           const musicxml::ReadOptions& options = {});
    OpenScore(const OpenScore&) = delete;
    OpenScore& operator=(const OpenScore&) = delete;

    [[nodiscard]] engine::Result<Selection> select(const SelectionRequest& request) const {
        return run::select(document_, request);
    }

    // Has the plug-in transform the selection.
    Report transform(const PlugIn& plugIn, const Selection& selection,
                     const dialogs::Transformation& transformation, const Supervision& supervision = {}) {
        return work(plugIn, selection, {.transformation = transformation}, supervision);
    }
    // Has it look for what stands in the way of a retrograde.
    Report check(const PlugIn& plugIn, const Selection& selection, const Supervision& supervision = {}) {
        return work(plugIn, selection, {.check = true}, supervision);
    }
    // Has it say what is to be heard of the selection.
    Report play(const PlugIn& plugIn, const Selection& selection, const Supervision& supervision = {}) {
        return work(plugIn, selection, {.playback = true}, supervision);
    }
    // Any of these, in one run.
    Report work(const PlugIn& plugIn, const Selection& selection, const Task& task,
                const Supervision& supervision = {});

    // Exact, as often as there are steps; false when there is none left.
    bool undo() { return session_.massEdits.undo(); }
    bool redo() { return session_.massEdits.redo(); }
    [[nodiscard]] bool canUndo() const { return session_.massEdits.canUndo(); }
    [[nodiscard]] bool canRedo() const { return session_.massEdits.canRedo(); }
    // For a program that does not go back: gives the memory of all steps back.
    void forgetSteps() { session_.massEdits.forgetSteps(); }

    // The MIDI file of what a run was asked to play.
    [[nodiscard]] engine::Result<playback::MidiFile> midiFile(const engine::PlaybackRequest& request,
                                                              const Selection& selection) const;

    // The file for the score as it is now, and what is wrong with it when it is read again: it must not take
    // the place of any file then.
    [[nodiscard]] engine::Result<musicxml::WrittenFile> write(musicxml::Container container) const {
        return file_.write(document_, container);
    }
    [[nodiscard]] std::optional<engine::Problem> proofread(const musicxml::WrittenFile& written) const {
        return file_.proofread(document_, written);
    }

    [[nodiscard]] const engine::Document& document() const { return document_; }
    [[nodiscard]] const musicxml::ScoreFile& file() const { return file_; }
    // What the user should know about the reading, each once.
    [[nodiscard]] const std::vector<std::string>& notices() const { return file_.notices(); }

  private:
    OpenScore(musicxml::ScoreFile file, engine::Document document)
        : file_(std::move(file)), document_(std::move(document)) {}

    // Lets the plug-in work; the report is what the traces of that mean.
    Report engage(const PlugIn& plugIn, const Selection& selection, const Task& task,
                  const Supervision& supervision, int expectedRedraws);
    // What the session is to know of the task.
    void instruct(const Selection& selection, const dialogs::Transformation& transformation);

    musicxml::ScoreFile file_;
    engine::Document document_;
    engine::Session session_{document_};
};

}  // namespace rovescio::run
