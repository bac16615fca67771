// The sorted ends of ties.
#include "engine/edit/tie_index.h"

#include <algorithm>
#include <limits>

#include "engine/model/note_state.h"

namespace rovescio::engine {

namespace {

// Frames that are kept sorted at a time; ties lead to the next measure at most.
constexpr std::size_t kMostFrames = 256;

}  // namespace

std::int32_t endOf(const StoredEntry& entry) {
    const EntryState state = entryState(entry);
    if (state.grace != Grace::none) return entry.elapsed;
    return entry.elapsed +
           static_cast<std::int32_t>(std::int64_t{entry.duration} * state.normal / state.actual);
}

const PackedEntries& TieIndex::entriesOf(const FrameAddress& frame, When when) const {
    return when == When::before ? edits_.before(frame) : document_.entries(frame);
}

const KeySignature& TieIndex::keyOf(short staff, short measure, When when) const {
    return when == When::before ? edits_.keyBefore(staff, measure)
                                : document_.staffMeasure(staff, measure).key;
}

int TieIndex::soundOf(const FrameAddress& frame, const ENOTE& note, When when) const {
    return engine::soundOf(keyOf(frame.staff, frame.measure, when), note);
}

const TieIndex::FrameEnds& TieIndex::endsOf(const FrameAddress& frame, When when) {
    if (frames_.size() > kMostFrames) frames_.clear();
    const auto [known, isNew] = frames_.try_emplace(keyOf(frame, when));
    FrameEnds& ends = known->second;
    if (!isNew) return ends;
    const PackedEntries& entries = entriesOf(frame, when);
    const KeySignature& key = keyOf(frame.staff, frame.measure, when);
    std::uint32_t order = 0;
    for (const StoredEntry& entry : entries) {
        ends.entries.emplace_back(+entry.entryNumber, entries.offsetOf(entry));
        for (const ENOTE& note : entry.notes()) {
            if ((note.noteFlags & NOTE_TIES) == 0) continue;
            End end{engine::soundOf(key, note), entry.elapsed, key.spell(note).step, order++,
                    entry.entryNumber,          note.noteId};
            if (note.noteFlags & NOTE_TIE_END) ends.arrivals.push_back(end);
            end.position = endOf(entry);
            if (note.noteFlags & NOTE_TIE_START) ends.departures.push_back(end);
        }
    }
    std::ranges::sort(ends.entries);
    std::ranges::sort(ends.arrivals, std::less());
    std::ranges::sort(ends.departures, std::less());
    return ends;
}

TieIndex::Sought::Sought(const KeySignature& keyThere, const StoredEntry& entryThere, const ENOTE& note,
                         std::uint32_t tieSide)
    : key(keyThere),
      entry(entryThere),
      side(tieSide),
      sound(engine::soundOf(key, note)),
      step(key.spell(note).step) {}

std::vector<int> TieIndex::Sought::steps() const {
    std::vector<int> found;
    for (const ENOTE& note : entry.notes()) {
        if ((note.noteFlags & side) != 0 && engine::soundOf(key, note) == sound)
            found.push_back(key.spell(note).step);
    }
    return found;
}

// An end at a position or a unit later, in the frame or else in another layer of the measure.
std::optional<NotePlace> TieIndex::endAt(const FrameAddress& home, std::int32_t position,
                                         const Sought& sought, When when, std::vector<End> FrameEnds::*ends) {
    if (!document_.has(home.staff, home.measure)) return {};
    for (short step = 0; step < kMaxLayers; ++step) {
        const FrameAddress frame{home.staff, home.measure,
                                 static_cast<short>((home.layer + step) % kMaxLayers)};
        if (!entriesOf(frame, when).mayHaveNoteFlags(NOTE_TIES)) continue;
        const std::vector<End>& sorted = endsOf(frame, when).*ends;
        const auto first =
            std::lower_bound(sorted.begin(), sorted.end(),
                             End{sought.sound, position, std::numeric_limits<int>::min(), 0, 0, 0});
        const auto last = std::find_if(first, sorted.end(), [&](const End& end) {
            return end.sound != sought.sound || end.position > position + 1;
        });
        const auto place = [&](auto end) { return NotePlace{frame, end->entryNumber, end->noteId}; };
        const auto same = std::ranges::find(first, last, sought.step, &End::step);
        if (same != last) return place(same);
        // Those spelled otherwise than any of the chord's notes, one after the other.
        std::vector<int> steps = sought.steps();
        const auto isSpelledAs = [](int wanted) {
            return [wanted](const End& end) { return end.step == wanted; };
        };
        auto before =
            std::ranges::count_if(steps.begin(), std::ranges::find(steps, sought.step),
                                  [&](int other) { return std::none_of(first, last, isSpelledAs(other)); });
        for (auto end = first; end != last; ++end) {
            if (std::ranges::find(steps, end->step) == steps.end() && before-- == 0) return place(end);
        }
    }
    return {};
}

std::optional<NotePlace> TieIndex::arrivalOf(const FrameAddress& frame, const StoredEntry& entry,
                                             const ENOTE& note, When when) {
    const std::int32_t end = endOf(entry);
    const Sought wanted(keyOf(frame.staff, frame.measure, when), entry, note, NOTE_TIE_START);
    if (auto found = endAt(frame, end, wanted, when, &FrameEnds::arrivals)) return found;
    const std::int32_t duration = document_.staffMeasure(frame.staff, frame.measure).duration;
    if (end + 1 < duration) return {};
    const auto next = static_cast<short>(frame.measure + 1);
    return endAt({frame.staff, next, frame.layer}, 0, wanted, when, &FrameEnds::arrivals);
}

std::optional<NotePlace> TieIndex::departureOf(const FrameAddress& frame, const StoredEntry& entry,
                                               const ENOTE& note, When when) {
    const Sought wanted(keyOf(frame.staff, frame.measure, when), entry, note, NOTE_TIE_END);
    if (entry.elapsed > 0) return endAt(frame, entry.elapsed - 1, wanted, when, &FrameEnds::departures);
    const auto earlier = static_cast<short>(frame.measure - 1);
    if (!document_.has(frame.staff, earlier)) return {};
    const std::int32_t end = document_.staffMeasure(frame.staff, earlier).duration;
    return endAt({frame.staff, earlier, frame.layer}, end - 1, wanted, when, &FrameEnds::departures);
}

const StoredEntry* TieIndex::find(const FrameAddress& frame, std::uint32_t entryNumber, When when) {
    const auto& entries = endsOf(frame, when).entries;
    const auto found =
        std::ranges::lower_bound(entries, entryNumber, {}, &std::pair<std::uint32_t, std::size_t>::first);
    if (found == entries.end() || found->first != entryNumber) return nullptr;
    return &entriesOf(frame, when).atOffset(found->second);
}

const ENOTE* TieIndex::find(const NotePlace& place, When when) {
    const StoredEntry* const entry = find(place.frame, place.entryNumber, when);
    if (!entry) return nullptr;
    const auto note = std::ranges::find_if(
        entry->notes(), [&](const ENOTE& candidate) { return candidate.noteId == place.noteId; });
    return note == entry->notes().end() ? nullptr : &*note;
}

}  // namespace rovescio::engine
