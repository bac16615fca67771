// Mass edits: everything that changes the document happens inside one, and each is one undo step.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <vector>

#include "contract/records.h"
#include "engine/document.h"
#include "engine/walks.h"

namespace rovescio::engine {

// Measures of one staff, both ends included.
struct StaffSpan {
    short staff = 0;
    short first = 0;
    short last = 0;

    [[nodiscard]] bool contains(short otherStaff, short measure) const {
        return otherStaff == staff && measure >= first && measure <= last;
    }
};

// Mass edits nest: what an inner one changed belongs to the outer one once it is ended. The first change of a
// frame keeps its old content; ended as cancelled, everything is put back.
class MassEdits {
  public:
    explicit MassEdits(Document& document) : document_(document) {}

    SXMassEdit start();
    // Ends the innermost edit. Another handle, or none open, breaks a rule.
    void end(SXMassEdit handle, bool cancelled);
    [[nodiscard]] bool isOpen() const { return !open_.empty(); }
    [[nodiscard]] std::size_t depth() const { return open_.size(); }
    // Whether the handle is that of an open edit.
    [[nodiscard]] bool isOpen(SXMassEdit handle) const;

    // Gives a frame new entries as part of the open edit.
    void replace(const FrameAddress& address, PackedEntries entries);
    // A frame that was saved before is loaded again: with that the plug-in begins its next step. What follows
    // from the changes so far is added now, so that steps of one edit do what they would do one by one.
    void noteLoad(const FrameAddress& address);
    // Remembers what a plug-in's saving of a frame shows: whether it marked entries as changed, and
    // whether pitches moved.
    void noteSave(const FrameAddress& address, bool marks, bool moves);
    // Whether the accidentals of the frame are to be decided afresh, reminders included.
    [[nodiscard]] bool decidesAnew(const FrameAddress& address) const;
    void noteDecided(const FrameAddress& address) {
        open_.back()->walks.decided(index(address), frameCount());
    }
    [[nodiscard]] bool wasDecided(const FrameAddress& address) const {
        return open_.back()->walks.wasDecided(index(address));
    }
    // Whether the plug-in marked entries of the frame in the open edit.
    [[nodiscard]] bool wasMarked(const FrameAddress& address) const {
        return open_.back()->walks.moved(index(address)).has_value();
    }
    // A frame's entries for changes in place, as part of the open edit.
    PackedEntries& editable(const FrameAddress& address);
    // Gives a list of data records, or a measure, new contents as part of the open edit.
    void changeRecords(const RecordStore::Place& place, RecordStore::Incidents incidents);
    // Has the open edit know what a list is before one of its records changes in place.
    void keepRecords(const RecordStore::Place& place);
    void changeMeasure(short measure, MeasureState state);
    // What a frame held before the innermost open edit.
    [[nodiscard]] const PackedEntries& before(const FrameAddress& address) const;
    // The key of a measure before the innermost open edit.
    [[nodiscard]] const KeySignature& keyBefore(short staff, short measure) const;

    // The entries of these measures were laid out again. Half ties there are dropped when the edit ends.
    void markRebarred(const StaffSpan& span);
    [[nodiscard]] bool isRebarred(short staff, short measure) const;

    // Exact undo and redo of whole outermost edits; false when there is nothing to undo or redo.
    bool undo();
    bool redo();

    // Reports edits still open and puts back what they changed.
    void checkBalanced();

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
        std::map<short, std::vector<StaffSpan>> rebarred;  // by staff
        Walks walks;
        std::vector<FrameAddress> recent;  // frames replaced since the last step began
    };
    void addConsequences(const std::vector<FrameAddress>& frames);
    [[nodiscard]] std::size_t index(const FrameAddress& address) const;
    [[nodiscard]] std::size_t frameCount() const;
    static std::vector<FrameAddress> changedFrames(const Edit& edit);
    // True when the edit has not changed the frame yet.
    bool isFirstChange(Edit& edit, const FrameAddress& address) const;
    void remember(Edit& edit, const FrameAddress& address, PackedEntries old) const;
    void exchange(Step& step);

    Document& document_;
    std::vector<std::unique_ptr<Edit>> open_;
    std::deque<Step> undo_;
    std::deque<Step> redo_;
};

}  // namespace rovescio::engine
