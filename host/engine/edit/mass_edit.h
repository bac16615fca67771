// Mass edits: everything that changes the document happens inside one, and each is one undo step.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <vector>

#include "contract/records.h"
#include "engine/model/document.h"

namespace rovescio::engine {

// Mass edits nest: what an inner one changed belongs to the outer one once it is ended. The first change of a
// frame keeps its old content; ended as cancelled, everything is put back.
class MassEdits {
  public:
    class Follower {
      public:
        virtual ~Follower() = default;
        virtual void started() = 0;
        // The innermost edit is about to end, not as cancelled: the last chance to add to it.
        virtual void ending() = 0;
        virtual void ended() = 0;
    };

    explicit MassEdits(Document& document) : document_(document) {}

    SXMassEdit start();
    // Ends the innermost edit; false, with nothing done, when the handle is another.
    bool end(SXMassEdit handle, bool cancelled);
    // Who is to add to each edit what follows from its changes; none when null.
    void follow(Follower* follower) { follower_ = follower; }
    [[nodiscard]] bool isOpen() const { return !open_.empty(); }
    // Whether the handle is that of an open edit.
    [[nodiscard]] bool isOpen(SXMassEdit handle) const;

    // Gives a frame new entries as part of the open edit.
    void replace(const FrameAddress& address, PackedEntries entries);
    // Frames that were replaced since this was last asked for, in order.
    std::vector<FrameAddress> takeReplaced();
    // A frame's entries for changes in place, as part of the open edit.
    PackedEntries& editable(const FrameAddress& address);
    // Gives a list of data records, or a measure, new contents as part of the open edit.
    void changeRecords(const RecordStore::Place& place, RecordStore::Incidents incidents);
    // Has the open edit know what a list is before one of its records changes in place.
    void keepRecords(const RecordStore::Place& place);
    void changeMeasure(short measure, MeasureState state);
    // The frames that the innermost open edit changed, in the order of their first change; all but the first
    // few.
    [[nodiscard]] std::vector<FrameAddress> changedFrames(std::size_t first = 0) const;
    [[nodiscard]] std::size_t changedFrameCount() const { return open_.back()->changes.frames.size(); }
    // What a frame held before the innermost open edit.
    [[nodiscard]] const PackedEntries& before(const FrameAddress& address) const;
    // The key of a measure before the innermost open edit.
    [[nodiscard]] const KeySignature& keyBefore(short staff, short measure) const;

    // Several outermost edits as one step: those from here on until closeStep(), which takes all of them back
    // if the step is cancelled. A step that is cancelled or changes nothing leaves what can be redone.
    void openStep();
    void closeStep(bool cancelled);

    // Exact undo and redo of whole outermost edits, or steps of several; false when there is nothing to undo
    // or redo.
    bool undo();
    bool redo();
    [[nodiscard]] bool canUndo() const { return !undo_.empty() && !isOpen(); }
    [[nodiscard]] bool canRedo() const { return !redo_.empty() && !isOpen(); }
    // Keeps the document as it is now and gives back the memory of what it was.
    void forgetSteps();

    // Puts back what the edits still open changed; how many they were.
    std::size_t cancelAll();

  private:
    struct Change {
        FrameAddress address;
        PackedEntries entries;  // what the document does not hold now
    };
    // All that the document does not hold now.
    struct Step {
        std::deque<Change> frames;
        std::map<RecordStore::Place, RecordStore::Incidents> records;
        std::map<short, MeasureState> measures;

        [[nodiscard]] bool empty() const { return frames.empty() && records.empty() && measures.empty(); }
    };
    struct Edit {
        Step changes;
        // For each frame of the document its place among those changed, counted from 1; 0 while it is
        // unchanged.
        std::vector<std::uint32_t> placeOf;
        std::vector<FrameAddress> replaced;
    };
    // True when the edit has not changed the frame yet.
    bool isFirstChange(Edit& edit, const FrameAddress& address) const;
    void remember(Edit& edit, const FrameAddress& address, PackedEntries old) const;
    void exchange(Step& step);
    [[nodiscard]] Step joined(std::deque<Step> steps) const;

    Document& document_;
    Follower* follower_ = nullptr;
    std::vector<std::unique_ptr<Edit>> open_;
    std::deque<Step> undo_;
    std::deque<Step> redo_;
    // Of the step that is open: how many there were before it, and what could be redone then.
    std::size_t stepsBefore_ = 0;
    std::deque<Step> redoBefore_;
};

}  // namespace rovescio::engine
