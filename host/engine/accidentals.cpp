// The rules of the measure for accidentals.
#include "engine/accidentals.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/mass_edit.h"

namespace rovescio::engine {

namespace {

// The accidentals that stand in one measure of one staff so far.
class MeasureAccidentals {
  public:
    // A key change cancels what stood before.
    void begin(const KeySignature& key) {
        key_ = &key;
        written_.clear();
    }
    [[nodiscard]] bool isUnder(const KeySignature& key) const { return key_ == &key; }
    // The alteration that a note without accidental has on this line or space.
    [[nodiscard]] int inForce(int step) const {
        const auto found = std::ranges::find(written_, step, &std::pair<int, int>::first);
        return found != written_.end() ? found->second : key_->letterAlter(floorMod(step, 7));
    }
    void write(const SpelledPitch& pitch) {
        const auto found = std::ranges::find(written_, pitch.step, &std::pair<int, int>::first);
        if (found != written_.end()) {
            found->second = pitch.alter;
        } else {
            written_.emplace_back(pitch.step, pitch.alter);
        }
    }

  private:
    const KeySignature* key_ = nullptr;
    std::vector<std::pair<int, int>> written_;  // step and alteration
};

struct Visit {
    const StoredEntry* entry;
    std::size_t offset;
    short layer;
};

// Works on one measure of one staff after another, with buffers that are kept between them.
class Decider {
  public:
    Decider(Document& document, MassEdits& edits) : document_(document), edits_(edits) {}

    void decide(short staff, short measure) {
        if (!collect(staff, measure)) return;
        const StaffMeasure& context = document_.staffMeasure(staff, measure);
        standing_.begin(context.key);
        for (const Visit& visit : visits_) {
            const StoredEntry& entry = *visit.entry;
            if (context.changesInside) {
                const KeySignature& key = document_.keyAt(staff, measure, entry.elapsed);
                if (!standing_.isUnder(key)) standing_.begin(key);
            }
            decideEntry({staff, measure, visit.layer}, visit, context.key);
        }
    }

  private:
    // The pitched entries of the measure in time order; false when none of them is marked.
    bool collect(short staff, short measure) {
        visits_.clear();
        bool marked = false;
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            const PackedEntries& entries = document_.entries({staff, measure, layer});
            for (const StoredEntry& entry : entries) {
                marked = marked || (entry.reserved13 & (kDecideAccidentals | kPitchMoved));
                if (entry.noteCount < 1 || entryState(entry).unpitched) continue;
                visits_.push_back({&entry, entries.offsetOf(entry), layer});
            }
        }
        const auto byTime = [](const Visit& a, const Visit& b) {
            return a.entry->elapsed < b.entry->elapsed;
        };
        if (marked && !std::ranges::is_sorted(visits_, byTime)) std::ranges::stable_sort(visits_, byTime);
        return marked;
    }

    void decideEntry(const FrameAddress& address, const Visit& visit, const KeySignature& storedIn) {
        const StoredEntry& entry = *visit.entry;
        const bool marked = entry.reserved13 & kDecideAccidentals;
        std::array<std::uint32_t, kMaxNotes> flags{};
        bool changes = entry.reserved13 & (kDecideAccidentals | kPitchMoved);
        std::size_t count = 0;
        for (const ENOTE& note : entry.notes()) {
            const bool needed = isNeeded(note, storedIn.spell(note));
            std::uint32_t& flag = flags[count++];
            flag = note.noteFlags;
            if (note.noteFlags & NOTE_FLAG1) continue;
            if (needed) {
                flag |= NOTE_FLAG24;
            } else if (marked) {
                flag &= ~NOTE_FLAG24;
            }
            changes = changes || flag != note.noteFlags;
        }
        if (!changes) return;
        StoredEntry& target = edits_.editable(address).atOffset(visit.offset);
        count = 0;
        for (ENOTE& note : target.notes()) note.noteFlags = flags[count++];
        target.reserved13 =
            static_cast<std::uint8_t>(target.reserved13 & ~(kDecideAccidentals | kPitchMoved));
    }

    bool isNeeded(const ENOTE& note, const SpelledPitch& pitch) {
        // A tie carries its accidental over the barline, for the tied note alone.
        if (note.noteFlags & NOTE_TIE_END) return false;
        const bool needed = standing_.inForce(pitch.step) != pitch.alter;
        standing_.write(pitch);
        return needed;
    }

    Document& document_;
    MassEdits& edits_;
    MeasureAccidentals standing_;
    std::vector<Visit> visits_;
};

}  // namespace

void decideAccidentals(Document& document, MassEdits& edits, std::span<const FrameAddress> frames) {
    Decider decider(document, edits);
    FrameAddress last{0, 0, 0};
    for (const FrameAddress& frame : frames) {
        // Frames of one measure mostly follow each other. Where they do not, nothing is marked any more.
        if (frame.staff != last.staff || frame.measure != last.measure)
            decider.decide(frame.staff, frame.measure);
        last = frame;
    }
}

}  // namespace rovescio::engine
