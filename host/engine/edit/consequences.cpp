// The order in which consequences are added.
#include "engine/edit/consequences.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/edit/accidentals.h"
#include "engine/edit/shape_ends.h"
#include "engine/edit/ties.h"

namespace rovescio::engine {

void Consequences::started() {
    open_.emplace_back();
}

void Consequences::ending() {
    if (open_.size() == 1) settleQuarterTonesOnce();
    add(edits_.changedFrames());
    dropMarksOfDeleted(document_, edits_, edits_.changedFrames());
}

void Consequences::ended() {
    const State state = std::move(open_.back());
    open_.pop_back();
    if (open_.empty()) return;
    for (const auto& [staff, spans] : state.rebarred) {
        std::ranges::copy(spans, std::back_inserter(open_.back().rebarred[staff]));
    }
}

void Consequences::noteLoad(const FrameAddress& address) {
    if (open_.empty() || !open_.back().walks.wasSaved(document_.frameIndex(address))) return;
    const int walk = open_.back().walks.count();
    if (walk > 0 && walk == quarterTones_.change.walk) settleQuarterTonesOnce();
    add(edits_.takeReplaced());
    edits_.takeReplaced();
    open_.back().walks.endWalk();
}

void Consequences::noteSave(const FrameAddress& address, bool marks, bool moves) {
    open_.back().walks.saved(document_.frameIndex(address), document_.frameCount(), marks, moves);
}

void Consequences::noteRebar(const StaffSpan& span) {
    open_.back().rebarred[span.staff].push_back(span);
    open_.back().walks.restartCount();
}

void Consequences::noteDecided(const FrameAddress& address) {
    open_.back().walks.decided(document_.frameIndex(address), document_.frameCount());
}

bool Consequences::isRebarred(short staff, short measure) const {
    const auto spans = open_.back().rebarred.find(staff);
    return spans != open_.back().rebarred.end() &&
           std::ranges::any_of(spans->second,
                               [&](const StaffSpan& span) { return span.contains(staff, measure); });
}

bool Consequences::wasMarked(const FrameAddress& address) const {
    return open_.back().walks.moved(document_.frameIndex(address)).has_value();
}

bool Consequences::decidesAnew(const FrameAddress& address) const {
    const std::optional<bool> moved = open_.back().walks.moved(document_.frameIndex(address));
    // Entries that were laid out again are marked by the host.
    return moved ? !*moved : !isRebarred(address.staff, address.measure);
}

bool Consequences::wasDecided(const FrameAddress& address) const {
    return open_.back().walks.wasDecided(document_.frameIndex(address));
}

void Consequences::settleQuarterTonesOnce() {
    if (std::exchange(open_.back().quarterTonesSettled, true)) return;
    settleQuarterTones(document_, *this, quarterTones_);
}

void Consequences::add(const std::vector<FrameAddress>& frames) {
    const std::size_t known = edits_.changedFrameCount();
    breakWrongTies(document_, *this, frames);
    for (const auto& [staff, spans] : open_.back().rebarred) {
        for (const StaffSpan& span : spans) dropLooseTies(document_, *this, span);
    }
    decideAccidentals(document_, *this, frames);
    // Where ties went, further frames have changed.
    decideAccidentals(document_, *this, edits_.changedFrames(known));
}

}  // namespace rovescio::engine
