// Mass edits, undo, redo and rollback.
#include "engine/mass_edit.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "engine/accidentals.h"
#include "engine/shape_ends.h"
#include "engine/strictness.h"
#include "engine/ties.h"

namespace rovescio::engine {

std::vector<FrameAddress> MassEdits::changedFrames(const Edit& edit) {
    std::vector<FrameAddress> frames;
    frames.reserve(edit.changes.frames.size());
    for (const Change& change : edit.changes.frames) frames.push_back(change.address);
    return frames;
}

SXMassEdit MassEdits::start() {
    open_.push_back(std::make_unique<Edit>());
    return open_.back().get();
}

bool MassEdits::isOpen(SXMassEdit handle) const {
    return std::ranges::any_of(open_, [&](const auto& edit) { return edit.get() == handle; });
}

void MassEdits::end(SXMassEdit handle, bool cancelled) {
    if (open_.empty() || open_.back().get() != handle) {
        ruleBroken(Rule::massEditEndedTwice,
                   "SX_EndMassEdit was called with an edit that is not the innermost open one");
        return;
    }
    if (!cancelled) {
        // The edit stays open while the host adds what follows from the changes, so that undo takes it back
        // too.
        addConsequences(changedFrames(*open_.back()));
        dropMarksOfDeleted(document_, *this, changedFrames(*open_.back()));
    }
    const std::unique_ptr<Edit> edit = std::move(open_.back());
    open_.pop_back();
    if (cancelled) {
        exchange(edit->changes);
        return;
    }
    if (!open_.empty()) {
        for (Change& change : edit->changes.frames)
            remember(*open_.back(), change.address, std::move(change.entries));
        // What the outer edit changed before is older, and stays.
        open_.back()->changes.records.merge(edit->changes.records);
        open_.back()->changes.measures.merge(edit->changes.measures);
        for (const auto& [staff, spans] : edit->rebarred) {
            std::ranges::copy(spans, std::back_inserter(open_.back()->rebarred[staff]));
        }
        return;
    }
    if (edit->changes.empty()) return;
    undo_.push_back(std::move(edit->changes));
    redo_.clear();
}

void MassEdits::addConsequences(const std::vector<FrameAddress>& frames) {
    const std::size_t known = open_.back()->changes.frames.size();
    breakWrongTies(document_, *this, frames);
    for (const auto& [staff, spans] : open_.back()->rebarred) {
        for (const StaffSpan& span : spans) dropLooseTies(document_, *this, span);
    }
    decideAccidentals(document_, *this, frames);
    // Where ties went, further frames have changed.
    std::vector<FrameAddress> further;
    for (std::size_t i = known; i < open_.back()->changes.frames.size(); ++i) {
        further.push_back(open_.back()->changes.frames[i].address);
    }
    decideAccidentals(document_, *this, further);
}

void MassEdits::noteLoad(const FrameAddress& address) {
    if (open_.empty() || !open_.back()->walks.wasSaved(index(address))) return;
    std::vector<FrameAddress> frames = std::exchange(open_.back()->recent, {});
    addConsequences(frames);
    open_.back()->recent.clear();
    open_.back()->walks.endWalk();
}

std::size_t MassEdits::index(const FrameAddress& address) const {
    const auto measures = static_cast<std::size_t>(document_.measureCount());
    return ((static_cast<std::size_t>(address.staff) - 1) * measures +
            static_cast<std::size_t>(address.measure) - 1) *
               kMaxLayers +
           static_cast<std::size_t>(address.layer);
}

std::size_t MassEdits::frameCount() const {
    return static_cast<std::size_t>(document_.staffCount()) *
           static_cast<std::size_t>(document_.measureCount()) * kMaxLayers;
}

void MassEdits::noteSave(const FrameAddress& address, bool marks, bool moves) {
    open_.back()->walks.saved(index(address), frameCount(), marks, moves);
}

bool MassEdits::decidesAnew(const FrameAddress& address) const {
    const std::optional<bool> moved = open_.back()->walks.moved(index(address));
    // Entries that were laid out again are marked by the host.
    return moved ? !*moved : !isRebarred(address.staff, address.measure);
}

bool MassEdits::isFirstChange(Edit& edit, const FrameAddress& address) const {
    if (edit.placeOf.empty()) {
        edit.placeOf.resize(frameCount());
    }
    return edit.placeOf[index(address)] == 0;
}

void MassEdits::remember(Edit& edit, const FrameAddress& address, PackedEntries old) const {
    if (!isFirstChange(edit, address)) return;
    edit.changes.frames.push_back({address, std::move(old)});
    edit.placeOf[index(address)] = static_cast<std::uint32_t>(edit.changes.frames.size());
}

void MassEdits::replace(const FrameAddress& address, PackedEntries entries) {
    document_.exchangeEntries(address, entries);
    open_.back()->recent.push_back(address);
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
    const std::uint32_t place = edit.placeOf.empty() ? 0 : edit.placeOf[index(address)];
    if (place == 0) return document_.entries(address);
    return edit.changes.frames[place - 1].entries;
}

const KeySignature& MassEdits::keyBefore(short staff, short measure) const {
    const std::map<short, MeasureState>& changed = open_.back()->changes.measures;
    const auto old = changed.find(measure);
    return old == changed.end() ? document_.staffMeasure(staff, measure).key
                                : old->second.keys[static_cast<std::size_t>(staff - 1)];
}

void MassEdits::markRebarred(const StaffSpan& span) {
    open_.back()->rebarred[span.staff].push_back(span);
}

bool MassEdits::isRebarred(short staff, short measure) const {
    const auto spans = open_.back()->rebarred.find(staff);
    return spans != open_.back()->rebarred.end() &&
           std::ranges::any_of(spans->second,
                               [&](const StaffSpan& span) { return span.contains(staff, measure); });
}

void MassEdits::exchange(Step& step) {
    // A frame, list or measure occurs in a step only once, so the order does not matter.
    for (Change& change : step.frames) document_.exchangeEntries(change.address, change.entries);
    for (auto& [place, incidents] : step.records) document_.exchangeRecords(place, incidents);
    for (auto& [measure, state] : step.measures) document_.exchangeMeasure(measure, state);
}

bool MassEdits::undo() {
    if (undo_.empty() || isOpen()) return false;
    exchange(undo_.back());
    redo_.push_back(std::move(undo_.back()));
    undo_.pop_back();
    return true;
}

bool MassEdits::redo() {
    if (redo_.empty() || isOpen()) return false;
    exchange(redo_.back());
    undo_.push_back(std::move(redo_.back()));
    redo_.pop_back();
    return true;
}

void MassEdits::checkBalanced() {
    if (open_.empty()) return;
    ruleBroken(Rule::massEditNotEnded, std::to_string(open_.size()) + " mass edits were left open");
    while (!open_.empty()) end(open_.back().get(), true);
}

}  // namespace rovescio::engine
