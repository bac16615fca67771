// Loading, editing, saving and freeing of frames.
#include "engine/interface/loaded_frames.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <span>
#include <string>
#include <utility>

#include "engine/edit/consequences.h"
#include "engine/interface/strictness.h"
#include "engine/model/note_state.h"

namespace rovescio::engine {

namespace {

constexpr std::uint8_t kPoison = 0xDB;
constexpr std::size_t kRetiredBuffers = 16;
// What decides whether the notes around show an accidental.
constexpr std::uint32_t kSignBits = NOTE_FLAG24 | NOTE_FLAG1 | NOTE_TIE_END;

std::string place(const FrameAddress& address) {
    return "staff " + std::to_string(address.staff) + ", measure " + std::to_string(address.measure) +
           ", layer " + std::to_string(address.layer + 1);
}

// The entries of a frame by their numbers, listed when one is first looked for.
class EntryNumbers {
  public:
    explicit EntryNumbers(const PackedEntries& entries) : entries_(entries) {}

    PackedEntries::ConstIterator find(std::uint32_t number) {
        if (numbers_.empty()) {
            for (const StoredEntry& entry : entries_) numbers_.emplace_back(+entry.entryNumber, &entry);
            std::ranges::sort(numbers_);
        }
        const auto found = std::ranges::lower_bound(numbers_, number, {}, &Number::first);
        return found != numbers_.end() && found->first == number ? PackedEntries::ConstIterator(found->second)
                                                                 : entries_.end();
    }

  private:
    using Number = std::pair<std::uint32_t, const StoredEntry*>;
    const PackedEntries& entries_;
    std::vector<Number> numbers_;
};

bool notesBeyondCount(const EXENTRY& entry) {
    static constexpr ENOTE kNone[kMaxNotes] = {};
    const auto used = static_cast<std::size_t>(std::clamp<int>(entry.noteCount, 0, kMaxNotes));
    return std::memcmp(entry.notes + used, kNone, (kMaxNotes - used) * sizeof(ENOTE)) != 0;
}

}  // namespace

LoadedFrames::LoadedFrames(Document& document, Consequences& consequences)
    : document_(document), consequences_(consequences) {}

EXTGF2005a* LoadedFrames::load(const FrameAddress& address) {
    if (!document_.has(address.staff, address.measure) || address.layer < 0 || address.layer >= kMaxLayers) {
        return nullptr;
    }
    consequences_.noteLoad(address);
    if (idle_.empty()) addFrames();
    Frame& frame = *idle_.back();
    idle_.pop_back();
    if (retired_.size() >= kRetiredBuffers) {
        checkUntouched(retired_.front());
        frame.entries = std::move(retired_.front().entries);
        retired_.pop_front();
    }
    document_.entries(address).expand(frame.entries);
    if (document_.hasShapes()) {
        for (EXENTRY& entry : frame.entries) {
            if (document_.hasShapes(entry.entryNumber)) entry.updateFlags |= ENTRY_HAS_SHAPES;
        }
    }
    frame.address = address;
    frame.live = true;
    frame.record = {};
    frame.record.headerWord = document_.staffMeasure(address.staff, address.measure).changesInside ? 1 : 0;
    show(frame);
    ++loads_;
    return &frame.record;
}

void LoadedFrames::addFrames() {
    constexpr std::size_t kFirst = 16;
    const std::size_t count = groups_.empty() ? kFirst : 2 * groups_.back().count;
    const Group& group = groups_.emplace_back(Group{std::make_unique<Frame[]>(count), count});
    for (std::size_t i = count; i > 0; --i) idle_.push_back(&group.frames[i - 1]);
}

LoadedFrames::Frame* LoadedFrames::frameOf(const EXTGF2005a* record) const {
    const auto place = reinterpret_cast<std::uintptr_t>(record);
    for (auto group = groups_.rbegin(); group != groups_.rend(); ++group) {
        // Wraps round to a large distance for a record before the group.
        const std::size_t distance = place - reinterpret_cast<std::uintptr_t>(group->frames.get());
        if (distance >= group->count * sizeof(Frame)) continue;
        return distance % sizeof(Frame) == 0 ? &group->frames[distance / sizeof(Frame)] : nullptr;
    }
    return nullptr;
}

void LoadedFrames::show(Frame& frame) {
    frame.record.entries = frame.entries.data();
    frame.record.entryCount = static_cast<std::int16_t>(frame.entries.size());
}

LoadedFrames::Frame* LoadedFrames::find(EXTGF2005a* record, const char* call, Rule ifFreed) {
    Frame* const known = frameOf(record);
    if (known == nullptr) {
        ruleBroken(Rule::frameUnknown,
                   std::string(call) + " was called with a frame that the host never supplied");
        return nullptr;
    }
    Frame& frame = *known;
    if (!frame.live) {
        ruleBroken(ifFreed,
                   std::string(call) + " was called with the freed frame of " + place(frame.address));
        return nullptr;
    }
    if (record->entries != frame.entries.data() ||
        record->entryCount != static_cast<std::int16_t>(frame.entries.size())) {
        ruleBroken(Rule::frameHeaderChanged,
                   "the frame of " + place(frame.address) + " came back with other entries or another count");
        return nullptr;
    }
    return &frame;
}

bool LoadedFrames::insert(EXTGF2005a* record, short index, short count) {
    Frame* frame = find(record, "SX_InsertEXENTRY", Rule::frameUnknown);
    if (!frame) return false;
    const auto size = static_cast<int>(frame->entries.size());
    if (index < 0 || index > size || count < 1 || size + count > std::numeric_limits<short>::max())
        return false;
    // Always into a new buffer: a plug-in that keeps using the old one is noticed at once.
    std::vector<EXENTRY> grown;
    grown.reserve(frame->entries.size() + static_cast<std::size_t>(count));
    grown.assign(frame->entries.begin(), frame->entries.begin() + index);
    for (short i = 0; i < count; ++i) {
        EXENTRY fresh{};
        fresh.entryNumber = document_.nextEntryNumber();
        fresh.entryFlags = ENTRY_VALID;
        setEntryState(fresh, {.silence = Silence::filler});
        grown.push_back(fresh);
    }
    grown.insert(grown.end(), frame->entries.begin() + index, frame->entries.end());
    retire(std::exchange(frame->entries, std::move(grown)), frame->address);
    show(*frame);
    return true;
}

bool LoadedFrames::remove(EXTGF2005a* record, short index, short count) {
    Frame* frame = find(record, "SX_DeleteEXENTRY", Rule::frameUnknown);
    if (!frame) return false;
    const auto size = static_cast<int>(frame->entries.size());
    if (index < 0 || count < 1 || index + count > size) return false;
    const auto first = frame->entries.begin() + index;
    frame->entries.erase(first, first + count);
    show(*frame);
    return true;
}

// What the document keeps of an entry: rests without the placeholder that cleaning gave them, chords sorted
// upward, unpitched notes where they were, and marks of what changed instead of the plug-in's own. `old` is
// the entry as the document has it; null for a new one.
LoadedFrames::Change LoadedFrames::normalise(EXENTRY& entry, const StoredEntry* old) {
    Change change;
    if (!(entry.entryFlags & ENTRY_NOTE)) {
        std::fill_n(entry.notes, std::clamp<int>(entry.noteCount, 0, kMaxNotes), ENOTE{});
        entry.noteCount = 0;
    }
    // A sign that is not shown reminds of nothing.
    for (ENOTE& note : std::span(entry.notes).first(static_cast<std::size_t>(entry.noteCount))) {
        if ((note.noteFlags & NOTE_FLAG24) == 0) note.noteFlags &= ~kCourtesySign;
    }
    const int known = old ? std::min<int>(entry.noteCount, old->noteCount) : 0;
    const bool unpitched = entryState(entry).unpitched;
    for (int i = 0; i < known; ++i) {
        ENOTE& note = entry.notes[i];
        const ENOTE& before = old->notes()[static_cast<std::size_t>(i)];
        if (unpitched) {
            note.displacement = before.displacement;
            note.alteration = before.alteration;
            continue;
        }
        const bool moved = note.displacement != before.displacement || note.alteration != before.alteration;
        const bool signChanged = ((note.noteFlags ^ before.noteFlags) & kSignBits) != 0;
        if (moved || signChanged) entry.reserved13 |= kCheckAccidentals;
        change.moves = change.moves || moved;
    }
    for (int i = 1; i < entry.noteCount; ++i) {
        ENOTE* const note = entry.notes + i;
        std::rotate(std::upper_bound(entry.notes, note, *note, isLower), note, note + 1);
    }
    // The marks of an entry tell whether it has shapes.
    entry.updateFlags = static_cast<std::uint8_t>(entry.updateFlags & ~ENTRY_HAS_SHAPES);
    if (entry.updateFlags & ENTRY_CHANGED) {
        entry.updateFlags = static_cast<std::uint8_t>(entry.updateFlags & ~ENTRY_CHANGED);
        entry.reserved13 |= kDecideAccidentals;
        change.marks = true;
    }
    return change;
}

bool LoadedFrames::save(EXTGF2005a* record) {
    Frame* frame = find(record, "SX_SaveTGF", Rule::frameUnknown);
    if (!frame) return false;
    if (!consequences_.edits().isOpen()) {
        ruleBroken(Rule::saveOutsideMassEdit,
                   "the frame of " + place(frame->address) + " was saved outside a mass edit");
        return false;
    }
    std::size_t bytes = 0;
    for (const EXENTRY& entry : frame->entries) {
        if (entry.noteCount < 0 || entry.noteCount > kMaxNotes || notesBeyondCount(entry)) {
            ruleBroken(Rule::notesBeyondCount, "an entry of " + place(frame->address) + " was saved with " +
                                                   std::to_string(entry.noteCount) +
                                                   " notes, and more beyond the count");
            return false;
        }
        bytes += PackedEntries::bytesFor(entry.noteCount);
    }
    const PackedEntries& before = document_.entries(frame->address);
    PackedEntries saved = PackedEntries::withRoom(bytes);
    auto old = before.begin();
    EntryNumbers numbers(before);
    Change all;
    for (EXENTRY entry : frame->entries) {
        // Mostly the entries are still the same in the same order.
        if (old == before.end() || old->entryNumber != entry.entryNumber) {
            old = numbers.find(entry.entryNumber);
        }
        const Change change = normalise(entry, old == before.end() ? nullptr : &*old);
        all = {all.marks || change.marks, all.moves || change.moves};
        saved.append(entry);
        if (old != before.end()) ++old;
    }
    consequences_.edits().replace(frame->address, std::move(saved));
    consequences_.noteSave(frame->address, all.marks, all.moves);
    return true;
}

void LoadedFrames::free(EXTGF2005a* record) {
    Frame* frame = find(record, "SX_FreeTGF", Rule::frameFreedTwice);
    if (!frame) return;
    // The record goes on pointing at the retired buffer, so that a late write lands where it is noticed.
    frame->live = false;
    retire(std::move(frame->entries), frame->address);
    frame->entries = {};
    idle_.push_back(frame);
}

void LoadedFrames::retire(std::vector<EXENTRY> entries, const FrameAddress& address) {
    if (entries.empty()) return;
    std::memset(static_cast<void*>(entries.data()), kPoison, entries.size() * sizeof(EXENTRY));
    retired_.push_back({std::move(entries), address});
}

void LoadedFrames::checkUntouched(const Retired& retired) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(retired.entries.data());
    const std::size_t size = retired.entries.size() * sizeof(EXENTRY);
    // Equal to itself shifted by one byte: all bytes are the same.
    if (bytes[0] == kPoison && std::memcmp(bytes, bytes + 1, size - 1) == 0) return;
    ruleBroken(Rule::frameWrittenAfterFree,
               "the frame of " + place(retired.address) + " was written to after it was freed");
}

void LoadedFrames::checkBalanced() {
    for (const Group& group : groups_) {
        for (Frame& frame : std::span(group.frames.get(), group.count)) {
            if (!frame.live) continue;
            ruleBroken(Rule::frameNotFreed,
                       "the frame of " + place(frame.address) + " was loaded and not freed");
            free(&frame.record);
        }
    }
    for (const Retired& retired : retired_) checkUntouched(retired);
    retired_.clear();
}

}  // namespace rovescio::engine
