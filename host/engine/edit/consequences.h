// What the host adds to a plug-in's changes, as part of the same mass edit.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <vector>

#include "contract/records.h"
#include "engine/edit/mass_edit.h"
#include "engine/edit/quarter_tones.h"
#include "engine/edit/walks.h"
#include "engine/model/document.h"

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

// A plug-in goes through the selected frames once for each of its steps. What follows from a step (ties that
// join other pitches now, accidentals, quarter tones) is added before the next begins, so that steps of one
// edit do what they would do one by one.
class Consequences final : public MassEdits::Follower {
  public:
    Consequences(Document& document, MassEdits& edits) : document_(document), edits_(edits) {
        edits.follow(this);
    }
    ~Consequences() override { edits_.follow(nullptr); }
    Consequences(const Consequences&) = delete;
    Consequences& operator=(const Consequences&) = delete;

    [[nodiscard]] MassEdits& edits() const { return edits_; }

    // What the transformations chosen do to quarter tones of the selection, from the next edit on.
    void expect(const QuarterTones& quarterTones) { quarterTones_ = quarterTones; }

    // A frame is loaded; one that was saved before begins the next step.
    void noteLoad(const FrameAddress& address);
    // A frame is saved: whether it marks entries as changed, and whether pitches moved.
    void noteSave(const FrameAddress& address, bool marks, bool moves);
    // The entries of these measures were laid out again. Half ties there are dropped.
    void noteRebar(const StaffSpan& span);
    void noteDecided(const FrameAddress& address);

    [[nodiscard]] bool isRebarred(short staff, short measure) const;
    // Whether the plug-in marked entries of the frame in the open edit.
    [[nodiscard]] bool wasMarked(const FrameAddress& address) const;
    // Whether the accidentals of the frame are to be decided afresh, reminders included.
    [[nodiscard]] bool decidesAnew(const FrameAddress& address) const;
    // Whether accidentals of the frame have been decided in this edit.
    [[nodiscard]] bool wasDecided(const FrameAddress& address) const;

    void started() override;
    void ending() override;
    void ended() override;

  private:
    // Of one open edit.
    struct State {
        std::map<short, std::vector<StaffSpan>> rebarred;  // by staff
        Walks walks;
        bool quarterTonesSettled = false;
    };
    void settleQuarterTonesOnce();
    void add(const std::vector<FrameAddress>& frames);

    Document& document_;
    MassEdits& edits_;
    QuarterTones quarterTones_;
    std::vector<State> open_;
};

}  // namespace rovescio::engine
