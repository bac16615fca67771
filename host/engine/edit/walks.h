// Infers from the way a plug-in saves frames what it means by marking entries as changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace rovescio::engine {

// A plug-in that marks entries as changed has moved their pitches, or it wants their accidentals to be
// decided afresh. One note that was mirrored onto itself looks like the second; but a plug-in goes through
// the selected frames once for each thing that it does, so that the other frames of the same walk decide.
class Walks {
  public:
    // A frame was saved; `frame` is its place among `count`.
    void saved(std::size_t frame, std::size_t count, bool marks, bool moves) {
        if (frames_.empty()) frames_.resize(count);
        Frame& known = frames_[frame];
        // What is saved again is saved in the next walk.
        if (moves_.empty() || ended_ || known.last == moves_.size()) moves_.push_back(false);
        ended_ = false;
        known.last = static_cast<std::uint32_t>(moves_.size());
        if (marks) known.marked = known.last;
        if (moves) moves_.back() = true;
    }
    void endWalk() { ended_ = true; }
    // Walks since the count was last restarted, the present one included.
    [[nodiscard]] int count() const { return static_cast<int>(moves_.size() - uncounted_); }
    void restartCount() { uncounted_ = moves_.size(); }
    // Accidentals of the frame have been decided, so that what they were before the edit is of the past.
    void decided(std::size_t frame, std::size_t count) {
        if (frames_.empty()) frames_.resize(count);
        frames_[frame].decided = true;
    }
    [[nodiscard]] bool wasDecided(std::size_t frame) const {
        return frame < frames_.size() && frames_[frame].decided;
    }
    // Whether the frame was saved in this walk, so that loading it again begins the next one.
    [[nodiscard]] bool wasSaved(std::size_t frame) const {
        return frame < frames_.size() && !ended_ && !moves_.empty() && frames_[frame].last == moves_.size();
    }
    // Whether the last walk that marked entries of the frame moved pitches anywhere; none when no walk did.
    [[nodiscard]] std::optional<bool> moved(std::size_t frame) const {
        if (frame >= frames_.size() || frames_[frame].marked == 0) return std::nullopt;
        return moves_[frames_[frame].marked - 1];
    }

  private:
    // Numbers of walks, from 1.
    struct Frame {
        std::uint32_t last = 0;
        std::uint32_t marked = 0;
        bool decided = false;
    };
    std::vector<Frame> frames_;
    std::vector<bool> moves_;  // by walk
    std::size_t uncounted_ = 0;
    bool ended_ = false;
};

}  // namespace rovescio::engine
