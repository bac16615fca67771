// Mass edits, undo, redo and rollback.
#include "engine/edit/mass_edit.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <utility>

namespace rovescio::engine {

SXMassEdit MassEdits::start() {
    open_.push_back(std::make_unique<Edit>());
    if (follower_) follower_->started();
    return open_.back().get();
}

bool MassEdits::isOpen(SXMassEdit handle) const {
    return std::ranges::any_of(open_, [&](const auto& edit) { return edit.get() == handle; });
}

bool MassEdits::end(SXMassEdit handle, bool cancelled) {
    if (open_.empty() || open_.back().get() != handle) return false;
    // The edit stays open while the follower adds to it, so that undo takes that back too.
    if (follower_ && !cancelled) follower_->ending();
    const std::unique_ptr<Edit> edit = std::move(open_.back());
    open_.pop_back();
    if (follower_) follower_->ended();
    if (cancelled) {
        exchange(edit->changes);
    } else if (!open_.empty()) {
        for (Change& change : edit->changes.frames)
            remember(*open_.back(), change.address, std::move(change.entries));
        // What the outer edit changed before is older, and stays.
        open_.back()->changes.records.merge(edit->changes.records);
        open_.back()->changes.measures.merge(edit->changes.measures);
    } else if (!edit->changes.empty()) {
        undo_.push_back(std::move(edit->changes));
        redo_.clear();
    }
    return true;
}

std::vector<FrameAddress> MassEdits::takeReplaced() {
    return std::exchange(open_.back()->replaced, {});
}

std::vector<FrameAddress> MassEdits::changedFrames(std::size_t first) const {
    const std::deque<Change>& changes = open_.back()->changes.frames;
    std::vector<FrameAddress> frames;
    frames.reserve(changes.size() - first);
    for (std::size_t i = first; i < changes.size(); ++i) frames.push_back(changes[i].address);
    return frames;
}

bool MassEdits::isFirstChange(Edit& edit, const FrameAddress& address) const {
    if (edit.placeOf.empty()) {
        edit.placeOf.resize(document_.frameCount());
    }
    return edit.placeOf[document_.frameIndex(address)] == 0;
}

void MassEdits::remember(Edit& edit, const FrameAddress& address, PackedEntries old) const {
    if (!isFirstChange(edit, address)) return;
    edit.changes.frames.push_back({address, std::move(old)});
    edit.placeOf[document_.frameIndex(address)] = static_cast<std::uint32_t>(edit.changes.frames.size());
}

void MassEdits::replace(const FrameAddress& address, PackedEntries entries) {
    document_.exchangeEntries(address, entries);
    open_.back()->replaced.push_back(address);
    remember(*open_.back(), address, std::move(entries));
}

void MassEdits::changeRecords(const RecordStore::Place& place, RecordStore::Incidents incidents) {
    document_.exchangeRecords(place, incidents);
    open_.back()->changes.records.try_emplace(place, std::move(incidents));
}

void MassEdits::keepRecords(const RecordStore::Place& place) {
    const auto [kept, isFirst] = open_.back()->changes.records.try_emplace(place);
    const RecordStore::Incidents* const list = document_.records().list(place);
    if (isFirst && list) kept->second = *list;
}

void MassEdits::changeMeasure(short measure, MeasureState state) {
    document_.exchangeMeasure(measure, state);
    open_.back()->changes.measures.try_emplace(measure, std::move(state));
}

PackedEntries& MassEdits::editable(const FrameAddress& address) {
    if (isFirstChange(*open_.back(), address)) {
        replace(address, document_.entries(address).copy());
    }
    return document_.changedEntries(address);
}

const PackedEntries& MassEdits::before(const FrameAddress& address) const {
    const Edit& edit = *open_.back();
    const std::uint32_t place = edit.placeOf.empty() ? 0 : edit.placeOf[document_.frameIndex(address)];
    if (place == 0) return document_.entries(address);
    return edit.changes.frames[place - 1].entries;
}

const KeySignature& MassEdits::keyBefore(short staff, short measure) const {
    const std::map<short, MeasureState>& changed = open_.back()->changes.measures;
    const auto old = changed.find(measure);
    return old == changed.end() ? document_.staffMeasure(staff, measure).key
                                : old->second.keys[static_cast<std::size_t>(staff - 1)];
}

void MassEdits::exchange(Step& step) {
    // A frame, list or measure occurs in a step only once, so the order does not matter.
    for (Change& change : step.frames) document_.exchangeEntries(change.address, change.entries);
    for (auto& [place, incidents] : step.records) document_.exchangeRecords(place, incidents);
    for (auto& [measure, state] : step.measures) document_.exchangeMeasure(measure, state);
}

void MassEdits::openStep() {
    assert(!isOpen());
    stepsBefore_ = undo_.size();
    redoBefore_ = std::exchange(redo_, {});
}

void MassEdits::closeStep(bool cancelled) {
    assert(!isOpen());
    const auto first = undo_.begin() + static_cast<std::ptrdiff_t>(stepsBefore_);
    std::deque<Step> made(std::make_move_iterator(first), std::make_move_iterator(undo_.end()));
    undo_.erase(first, undo_.end());
    if (cancelled) {
        for (auto step = made.rbegin(); step != made.rend(); ++step) exchange(*step);
    } else if (!made.empty()) {
        undo_.push_back(joined(std::move(made)));
        redoBefore_.clear();
    }
    redo_ = std::exchange(redoBefore_, {});
}

MassEdits::Step MassEdits::joined(std::deque<Step> steps) const {
    Step all = std::move(steps.front());
    steps.pop_front();
    if (steps.empty()) return all;
    // What an earlier step changed is older, and stays.
    std::vector<bool> known(document_.frameCount());
    for (const Change& change : all.frames) known[document_.frameIndex(change.address)] = true;
    for (Step& step : steps) {
        for (Change& change : step.frames) {
            const std::size_t frame = document_.frameIndex(change.address);
            if (known[frame]) continue;
            known[frame] = true;
            all.frames.push_back(std::move(change));
        }
        all.records.merge(step.records);
        all.measures.merge(step.measures);
    }
    return all;
}

void MassEdits::forgetSteps() {
    undo_.clear();
    redo_.clear();
}

bool MassEdits::undo() {
    if (!canUndo()) return false;
    exchange(undo_.back());
    redo_.push_back(std::move(undo_.back()));
    undo_.pop_back();
    return true;
}

bool MassEdits::redo() {
    if (!canRedo()) return false;
    exchange(redo_.back());
    undo_.push_back(std::move(redo_.back()));
    redo_.pop_back();
    return true;
}

std::size_t MassEdits::cancelAll() {
    const std::size_t count = open_.size();
    while (!open_.empty()) end(open_.back().get(), true);
    return count;
}

}  // namespace rovescio::engine
