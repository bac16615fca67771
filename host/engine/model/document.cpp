// Storage of the document.
#include "engine/model/document.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

namespace rovescio::engine {

short Document::addStaff(Staff staff) {
    staves_.push_back(std::move(staff));
    return staffCount();
}

short Document::addMeasure(Measure measure) {
    if (measures_.size() >= std::numeric_limits<short>::max()) return 0;
    measures_.push_back(std::move(measure));
    return measureCount();
}

void Document::layOut() {
    const std::size_t cells = staves_.size() * measures_.size();
    staffMeasures_.resize(cells);
    frames_.resize(cells * kMaxLayers);
}

std::size_t Document::cell(short staff, short measure) const {
    assert(has(staff, measure));
    return static_cast<std::size_t>(staff - 1) * measures_.size() + static_cast<std::size_t>(measure - 1);
}

std::size_t Document::frameIndex(const FrameAddress& address) const {
    assert(address.layer >= 0 && address.layer < kMaxLayers);
    return cell(address.staff, address.measure) * kMaxLayers + static_cast<std::size_t>(address.layer);
}

bool Document::has(short staff, short measure) const {
    return staff >= 1 && staff <= staffCount() && measure >= 1 && measure <= measureCount();
}

StaffMeasure& Document::staffMeasure(short staff, short measure) {
    return staffMeasures_[cell(staff, measure)];
}

const StaffMeasure& Document::staffMeasure(short staff, short measure) const {
    return staffMeasures_[cell(staff, measure)];
}

const Staff& Document::staff(short staff) const {
    return staves_[static_cast<std::size_t>(staff - 1)];
}

const Measure& Document::measure(short measure) const {
    return measures_[static_cast<std::size_t>(measure - 1)];
}

void Document::addKeyChange(const KeyChange& change) {
    std::vector<KeyChange>& changes = keyChanges_[{change.staff, change.measure}];
    changes.insert(std::ranges::upper_bound(changes, change.position, {}, &KeyChange::position), change);
}

MeasureLayout& Document::layout(short measure) {
    return measures_[static_cast<std::size_t>(measure - 1)].layout;
}

bool Document::addShape(const Shape& shape) {
    if (!shapes_.add(shape)) return false;
    const std::size_t last = std::max(shape.firstEntry, shape.lastEntry);
    if (last >= shapeEnds_.size()) shapeEnds_.resize(last + 1);
    shapeEnds_[shape.firstEntry] = true;
    shapeEnds_[shape.lastEntry] = true;
    return true;
}

const RecordStore& Document::records() const {
    if (!recordsMade_) {
        shapes_.makeRecords(records_);
        recordsMade_ = true;
    }
    return records_;
}

void Document::exchangeRecords(const RecordStore::Place& place, RecordStore::Incidents& incidents) {
    changingRecords().exchange(place, incidents);
    changeOfRecordsDone(place);
}

RecordStore& Document::changingRecords() {
    static_cast<void>(records());
    recordsChanged_ = true;
    return records_;
}

void Document::changeOfRecordsDone(const RecordStore::Place& place) {
    if (place.tag != kEntryMarkTag) return;
    if (place.owner >= shapeEnds_.size()) shapeEnds_.resize(std::size_t{place.owner} + 1);
    shapeEnds_[place.owner] = records_.list(place) != nullptr;
}

void Document::exchangeMeasure(short measure, MeasureState& state) {
    MeasureState old{.layout = layout(measure), .keys = {}};
    for (const short staff : staffNumbers()) {
        old.keys.push_back(staffMeasure(staff, measure).key);
        staffMeasure(staff, measure).key = state.keys[static_cast<std::size_t>(staff - 1)];
    }
    layout(measure) = state.layout;
    changedMeasures_.try_emplace(measure, old);
    state = std::move(old);
}

const KeySignature& Document::keyAt(short staff, short measure, std::int32_t position) const {
    const KeySignature& first = staffMeasure(staff, measure).key;
    const auto changes = keyChanges_.find({staff, measure});
    if (changes == keyChanges_.end()) return first;
    const auto behind = std::ranges::upper_bound(changes->second, position, {}, &KeyChange::position);
    return behind == changes->second.begin() ? first : std::prev(behind)->key;
}

std::uint32_t Document::continuationOf(std::uint32_t entryNumber) {
    const std::uint32_t number = nextEntryNumber();
    origins_.emplace(number, originOf(entryNumber));
    return number;
}

std::uint32_t Document::originOf(std::uint32_t entryNumber) const {
    const auto found = origins_.find(entryNumber);
    return found == origins_.end() ? entryNumber : found->second;
}

void Document::setEntries(const FrameAddress& address, std::span<const EXENTRY> entries) {
    setPackedEntries(address, PackedEntries(entries));
}

void Document::setPackedEntries(const FrameAddress& address, PackedEntries entries) {
    frames_[frameIndex(address)].entries = std::move(entries);
}

const PackedEntries& Document::entries(const FrameAddress& address) const {
    return frames_[frameIndex(address)].entries;
}

void Document::exchangeEntries(const FrameAddress& address, PackedEntries& entries) {
    Frame& frame = frames_[frameIndex(address)];
    frame.entries.swap(entries);
    frame.changed = true;
}

PackedEntries& Document::changedEntries(const FrameAddress& address) {
    Frame& frame = frames_[frameIndex(address)];
    assert(frame.changed);
    return frame.entries;
}

std::vector<FrameAddress> Document::changedFrames() const {
    std::vector<FrameAddress> changed;
    std::size_t index = 0;
    for (const short staff : staffNumbers()) {
        for (const short measure : measureNumbers()) {
            for (short layer = 0; layer < kMaxLayers; ++layer, ++index) {
                if (frames_[index].changed) changed.push_back({staff, measure, layer});
            }
        }
    }
    return changed;
}

}  // namespace rovescio::engine
