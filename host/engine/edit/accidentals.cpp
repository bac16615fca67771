// The rules of the measure for accidentals.
#include "engine/edit/accidentals.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/edit/consequences.h"
#include "engine/edit/tie_index.h"
#include "engine/model/note_state.h"

namespace rovescio::engine {

namespace {

// The accidentals in force in one measure of one staff so far, as a player reads them: what is not shown
// does not count. Alterations are hundredths of a semitone.
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
        if (found != written_.end()) return found->second;
        const int letter = floorMod(step, 7);
        return 100 * key_->letterAlter(letter) + key_->letterCents(letter);
    }
    void write(int step, int alteration) {
        const auto found = std::ranges::find(written_, step, &std::pair<int, int>::first);
        if (found != written_.end()) {
            found->second = alteration;
        } else {
            written_.emplace_back(step, alteration);
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

constexpr std::uint8_t kMarks = kDecideAccidentals | kCheckAccidentals;

// Works on one measure of one staff after another, with buffers that are kept between them.
class MeasureReader {
  public:
    MeasureReader(const Document& document, const MassEdits& edits)
        : document_(document), edits_(edits), ties_(document, edits) {}

    // Goes through the notes of the measure in time order. judge(visit, index, needed) gets, for each note
    // of each entry, whether it needs an accidental, and returns whether it shows one.
    template <class Judge>
    void read(short staff, short measure, When when, const Judge& judge) {
        collect(staff, measure, when);
        const StaffMeasure& context = document_.staffMeasure(staff, measure);
        const KeySignature& first = when == When::before ? edits_.keyBefore(staff, measure) : context.key;
        standing_.begin(first);
        for (const Visit& visit : visits_) {
            if (context.changesInside) {
                const KeySignature& later = document_.keyAt(staff, measure, visit.entry->elapsed);
                const KeySignature& key = &later == &context.key ? first : later;
                if (!standing_.isUnder(key)) standing_.begin(key);
            }
            const FrameAddress frame{staff, measure, visit.layer};
            for (std::size_t i = 0; i < visit.entry->notes().size(); ++i) {
                const ENOTE& note = visit.entry->notes()[i];
                const SpelledPitch pitch = first.spell(note);
                const int alteration = 100 * pitch.alter + centsOf(note);
                const bool needed = standing_.inForce(pitch.step) != alteration &&
                                    !isTied(frame, *visit.entry, note, pitch, when);
                if (judge(visit, i, needed)) standing_.write(pitch.step, alteration);
            }
        }
    }

  private:
    void collect(short staff, short measure, When when) {
        visits_.clear();
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            const PackedEntries& entries = ties_.entriesOf({staff, measure, layer}, when);
            for (const StoredEntry& entry : entries) {
                if (entry.noteCount < 1 || entryState(entry).unpitched) continue;
                visits_.push_back({&entry, entries.offsetOf(entry), layer});
            }
        }
        const auto byTime = [](const Visit& a, const Visit& b) {
            return a.entry->elapsed < b.entry->elapsed;
        };
        if (!std::ranges::is_sorted(visits_, byTime)) std::ranges::stable_sort(visits_, byTime);
    }

    // A tie carries its accidental over the barline, for the tied note alone and in one spelling.
    bool isTied(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note,
                const SpelledPitch& pitch, When when) {
        if ((note.noteFlags & NOTE_TIE_END) == 0) return false;
        const auto from = ties_.departureOf(frame, entry, note, when);
        const ENOTE* const earlier = from ? ties_.find(*from, when) : nullptr;
        if (!earlier) return true;
        const short measure = from->frame.measure;
        const KeySignature& key = when == When::before ? edits_.keyBefore(frame.staff, measure)
                                                       : document_.staffMeasure(frame.staff, measure).key;
        return key.spell(*earlier) == pitch;
    }

    const Document& document_;
    const MassEdits& edits_;
    TieIndex ties_;
    MeasureAccidentals standing_;
    std::vector<Visit> visits_;
};

class Decider {
  public:
    Decider(Document& document, Consequences& consequences)
        : document_(document), consequences_(consequences), reader_(document, consequences.edits()) {}

    void decide(short staff, short measure) {
        unsigned markedLayers = 0;
        if (!isMarked(staff, measure, markedLayers)) return;
        courtesies_.clear();
        // Entries that change places bring what they are along.
        if (markedLayers != 0 && !consequences_.isRebarred(staff, measure))
            courtesies_ = courtesySigns(document_, consequences_.edits(), staff, measure);
        reader_.read(staff, measure, When::now, [&](const Visit& visit, std::size_t index, bool needed) {
            return decideNote({staff, measure, visit.layer}, visit, index, needed);
        });
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            if ((markedLayers & 1U << layer) != 0) consequences_.noteDecided({staff, measure, layer});
        }
    }

  private:
    // Whether there is anything to do; `layers` are those with entries to be decided, a bit for each.
    [[nodiscard]] bool isMarked(short staff, short measure, unsigned& layers) const {
        bool marked = false;
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            for (const StoredEntry& entry : std::as_const(document_).entries({staff, measure, layer})) {
                marked = marked || (entry.reserved13 & kMarks) != 0;
                if ((entry.reserved13 & kDecideAccidentals) != 0) layers |= 1U << layer;
            }
        }
        return marked;
    }

    [[nodiscard]] bool isCourtesy(const FrameAddress& frame, const StoredEntry& entry,
                                  const ENOTE& note) const {
        if ((note.noteFlags & kCourtesySign) != 0) return true;
        return !consequences_.wasDecided(frame) &&
               std::ranges::binary_search(courtesies_, numberOf(entry, note));
    }

    // Whether the note shows an accidental in the end.
    bool decideNote(const FrameAddress& address, const Visit& visit, std::size_t index, bool needed) {
        const StoredEntry& entry = *visit.entry;
        const bool marked = (entry.reserved13 & kDecideAccidentals) != 0;
        if (index == 0) flags_.clear();
        const ENOTE& note = entry.notes()[index];
        std::uint32_t flags = note.noteFlags;
        if ((flags & NOTE_FLAG1) == 0) {
            if (marked) {
                const bool courtesy = isCourtesy(address, entry, note) && !consequences_.decidesAnew(address);
                flags &= ~(NOTE_FLAG24 | kCourtesySign);
                if (courtesy) flags |= NOTE_FLAG24 | kCourtesySign;
            }
            if (needed) flags |= NOTE_FLAG24;
        }
        flags_.push_back(flags);
        if (flags_.size() == entry.notes().size()) store(address, visit);
        return (flags & NOTE_FLAG24) != 0;
    }

    void store(const FrameAddress& address, const Visit& visit) {
        const bool changes =
            (visit.entry->reserved13 & kMarks) != 0 ||
            !std::ranges::equal(visit.entry->notes(), flags_, [](const ENOTE& note, std::uint32_t flags) {
                return note.noteFlags == flags;
            });
        if (!changes) return;
        StoredEntry& target = consequences_.edits().editable(address).atOffset(visit.offset);
        for (std::size_t i = 0; i < flags_.size(); ++i) target.notes()[i].noteFlags = flags_[i];
        target.reserved13 = static_cast<std::uint8_t>(target.reserved13 & ~kMarks);
    }

    Document& document_;
    Consequences& consequences_;
    MeasureReader reader_;
    std::vector<NoteNumber> courtesies_;
    std::vector<std::uint32_t> flags_;  // of the entry at hand
};

}  // namespace

std::vector<NoteNumber> courtesySigns(const Document& document, const MassEdits& edits, short staff,
                                      short measure) {
    std::vector<NoteNumber> found;
    bool signs = false;
    for (short layer = 0; layer < kMaxLayers; ++layer) {
        signs = signs || edits.before({staff, measure, layer}).mayHaveNoteFlags(NOTE_FLAG24);
    }
    if (!signs) return found;
    MeasureReader reader(document, edits);
    reader.read(staff, measure, When::before, [&](const Visit& visit, std::size_t index, bool needed) {
        const ENOTE& note = visit.entry->notes()[index];
        const bool shown = (note.noteFlags & NOTE_FLAG24) != 0;
        if (shown && !needed) found.push_back(numberOf(*visit.entry, note));
        return shown;
    });
    std::ranges::sort(found);
    return found;
}

void decideAccidentals(Document& document, Consequences& consequences, std::span<const FrameAddress> frames) {
    Decider decider(document, consequences);
    FrameAddress last{0, 0, 0};
    for (const FrameAddress& frame : frames) {
        // Frames of one measure mostly follow each other. Where they do not, nothing is marked any more.
        if (frame.staff != last.staff || frame.measure != last.measure)
            decider.decide(frame.staff, frame.measure);
        last = frame;
    }
}

}  // namespace rovescio::engine
