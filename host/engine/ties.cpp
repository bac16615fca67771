// Finds the two ends of a tie and compares their pitches.
#include "engine/ties.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "engine/mass_edit.h"

namespace rovescio::engine {

namespace {

struct NotePlace {
    FrameAddress frame;
    std::uint32_t entryNumber = 0;
    std::uint16_t noteId = 0;
};

class TieBreaker {
  public:
    TieBreaker(Document& document, MassEdits& edits) : document_(document), edits_(edits) {}

    // Looks after all ties that left a frame before the edit.
    void visit(const FrameAddress& frame) {
        const PackedEntries& before = edits_.before(frame);
        if (!before.mayHaveNoteFlags(NOTE_TIE_START)) return;
        for (const StoredEntry& entry : before) {
            for (const ENOTE& note : entry.notes()) {
                if (note.noteFlags & NOTE_TIE_START) visitTie(frame, entry, note);
            }
        }
    }

  private:
    [[nodiscard]] int pitchOf(const FrameAddress& frame, const ENOTE& note) const {
        return semitones(document_.staffMeasure(frame.staff, frame.measure).key.spell(note));
    }

    // Where an entry ends, in duration units; its tuplet's rounding leaves it up to a unit short.
    static std::int32_t endOf(const StoredEntry& entry) {
        const EntryState state = entryState(entry);
        if (state.grace != Grace::none) return entry.elapsed;
        return entry.elapsed +
               static_cast<std::int32_t>(std::int64_t{entry.duration} * state.normal / state.actual);
    }

    void visitTie(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note) {
        const auto arrival = findArrival(frame, endOf(entry), pitchOf(frame, note));
        if (!arrival) return;
        const NotePlace departure{frame, entry.entryNumber, note.noteId};
        const ENOTE* first = find(departure);
        const ENOTE* second = find(*arrival);
        if (!first || !second || pitchOf(frame, *first) == pitchOf(arrival->frame, *second)) return;
        clear(departure, NOTE_TIE_START);
        clear(*arrival, NOTE_TIE_END);
    }

    // The note that such a tie arrived at: the same pitch at the end of the first, in any layer of the staff.
    [[nodiscard]] std::optional<NotePlace> findArrival(const FrameAddress& from, std::int32_t end,
                                                       int pitch) const {
        if (auto found = findArrivalIn(from.staff, from.measure, end, pitch)) return found;
        const std::int32_t duration = document_.staffMeasure(from.staff, from.measure).duration;
        if (end + 1 < duration || !document_.has(from.staff, static_cast<short>(from.measure + 1))) return {};
        return findArrivalIn(from.staff, static_cast<short>(from.measure + 1), 0, pitch);
    }

    [[nodiscard]] std::optional<NotePlace> findArrivalIn(short staff, short measure, std::int32_t position,
                                                         int pitch) const {
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            const FrameAddress frame{staff, measure, layer};
            for (const StoredEntry& entry : edits_.before(frame)) {
                if (entry.elapsed < position || entry.elapsed > position + 1) continue;
                for (const ENOTE& note : entry.notes()) {
                    if ((note.noteFlags & NOTE_TIE_END) && pitchOf(frame, note) == pitch) {
                        return NotePlace{frame, entry.entryNumber, note.noteId};
                    }
                }
            }
        }
        return {};
    }

    // The note as it is now; null when the edit removed or moved it.
    [[nodiscard]] const ENOTE* find(const NotePlace& place) const {
        for (const StoredEntry& entry : document_.entries(place.frame)) {
            if (entry.entryNumber != place.entryNumber) continue;
            for (const ENOTE& note : entry.notes()) {
                if (note.noteId == place.noteId) return &note;
            }
        }
        return nullptr;
    }

    void clear(const NotePlace& place, std::uint32_t flag) {
        for (StoredEntry& entry : edits_.editable(place.frame)) {
            if (entry.entryNumber != place.entryNumber) continue;
            for (ENOTE& note : entry.notes()) {
                if (note.noteId == place.noteId) note.noteFlags &= ~flag;
            }
            // A note that no tie carries any more may need its accidental.
            entry.reserved13 |= kDecideAccidentals;
        }
    }

    Document& document_;
    MassEdits& edits_;
};

}  // namespace

void breakWrongTies(Document& document, MassEdits& edits, std::span<const FrameAddress> frames) {
    TieBreaker breaker(document, edits);
    FrameAddress last{0, 0, 0};
    for (const FrameAddress& frame : frames) {
        breaker.visit(frame);
        // Ties into the frame may come from the measure before; layers of one measure mostly follow each
        // other.
        if (frame.measure > 1 && (frame.staff != last.staff || frame.measure != last.measure)) {
            for (short layer = 0; layer < kMaxLayers; ++layer) {
                breaker.visit({frame.staff, static_cast<short>(frame.measure - 1), layer});
            }
        }
        last = frame;
    }
}

}  // namespace rovescio::engine
