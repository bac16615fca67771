// Compares the sounds of the two ends of ties.
#include "engine/edit/ties.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/edit/consequences.h"
#include "engine/edit/tie_index.h"

namespace rovescio::engine {

namespace {

// Of a note that barlines cut, as far as ties are followed through them.
constexpr int kMostParts = 64;

class TieBreaker {
  public:
    TieBreaker(Document& document, Consequences& consequences, const StaffSpan& span = {})
        : document_(document),
          consequences_(consequences),
          edits_(consequences.edits()),
          index_(document, edits_),
          span_(span) {}

    // Looks after all ties that left a frame before the edit.
    void visit(const FrameAddress& frame) {
        if (consequences_.isRebarred(frame.staff, frame.measure)) return;
        const PackedEntries& before = edits_.before(frame);
        if (!before.mayHaveNoteFlags(NOTE_TIE_START)) return;
        for (const StoredEntry& entry : before) {
            for (const ENOTE& note : entry.notes()) {
                if (note.noteFlags & NOTE_TIE_START) visitTie(frame, entry, note);
            }
        }
    }

    // Clears half ties in a frame that was laid out again.
    void dropHalves(const FrameAddress& frame) {
        dropFrom(frame, [&](const StoredEntry& entry, const ENOTE& note, std::uint32_t flag) {
            return flag == NOTE_TIE_START ? !arrives(frame, entry, note, When::now)
                                          : !departs(frame, entry, note, When::now);
        });
    }
    // Clears the ties of a frame beside such a one that have lost their other end.
    void dropLost(const FrameAddress& frame, std::uint32_t flag) {
        dropFrom(frame, [&](const StoredEntry& entry, const ENOTE& note, std::uint32_t found) {
            if (found != flag) return false;
            return flag == NOTE_TIE_START
                       ? arrives(frame, entry, note, When::before) && !arrives(frame, entry, note, When::now)
                       : departs(frame, entry, note, When::before) && !departs(frame, entry, note, When::now);
        });
    }

  private:
    void visitTie(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note) {
        const auto arrival = index_.arrivalOf(frame, entry, note, When::before);
        if (!arrival || consequences_.isRebarred(arrival->frame.staff, arrival->frame.measure)) return;
        const NotePlace departure{frame, entry.entryNumber, note.noteId};
        // The edit may have removed or moved them.
        const ENOTE* first = index_.find(departure, When::now);
        const ENOTE* second = index_.find(*arrival, When::now);
        if (!first || !second ||
            index_.soundOf(frame, *first, When::now) == index_.soundOf(arrival->frame, *second, When::now))
            return;
        clear(departure, NOTE_TIE_START);
        clear(*arrival, NOTE_TIE_END);
    }

    [[nodiscard]] bool arrives(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note,
                               When when) {
        const auto arrival = index_.arrivalOf(frame, entry, note, when);
        return arrival && isTrusted(frame.layer, entry, *arrival, when);
    }
    [[nodiscard]] bool departs(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note,
                               When when) {
        const auto departure = index_.departureOf(frame, entry, note, when);
        return departure && isTrusted(frame.layer, entry, *departure, when);
    }

    // Half ties of two layers can come to lie beside each other by chance. They are one tie only if they were
    // one before.
    [[nodiscard]] bool isTrusted(short layer, const StoredEntry& entry, const NotePlace& other, When when) {
        if (when == When::before || other.frame.layer == layer) return true;
        const std::uint32_t one = document_.originOf(entry.entryNumber);
        const std::uint32_t two = document_.originOf(other.entryNumber);
        return ledTo(layer, one, two) || ledTo(other.frame.layer, two, one);
    }

    // Whether ties led from one entry to the other before the edit, in which entries keep their layer. Parts
    // of a note that was cut can lie between them.
    [[nodiscard]] bool ledTo(short layer, std::uint32_t from, std::uint32_t to) {
        const short measure = measureBefore(from);
        return measure != 0 && ledOnTo({{span_.staff, measure, layer}, from, 0}, to, kMostParts);
    }
    [[nodiscard]] bool ledOnTo(const NotePlace& from, std::uint32_t to, int parts) {
        const StoredEntry* const entry = index_.find(from.frame, from.entryNumber, When::before);
        if (!entry || parts == 0) return false;
        return std::ranges::any_of(entry->notes(), [&](const ENOTE& note) {
            // The first entry is left by any of its notes, the parts by the note that arrived.
            if ((note.noteFlags & NOTE_TIE_START) == 0) return false;
            if (from.noteId != 0 && note.noteId != from.noteId) return false;
            const auto arrival = index_.arrivalOf(from.frame, *entry, note, When::before);
            return arrival &&
                   (document_.originOf(arrival->entryNumber) == to || ledOnTo(*arrival, to, parts - 1));
        });
    }

    // Where an entry in or beside the span stood before the edit; 0 for a new one.
    [[nodiscard]] short measureBefore(std::uint32_t entryNumber) {
        if (measuresBefore_.empty()) {
            const int last = std::min<int>(span_.last + 1, document_.measureCount());
            for (int measure = std::max(span_.first - 1, 1); measure <= last; ++measure) {
                for (short layer = 0; layer < kMaxLayers; ++layer) {
                    const auto number = static_cast<short>(measure);
                    for (const StoredEntry& entry : edits_.before({span_.staff, number, layer})) {
                        measuresBefore_.emplace(+entry.entryNumber, number);
                    }
                }
            }
        }
        const auto found = measuresBefore_.find(entryNumber);
        return found == measuresBefore_.end() ? short{0} : found->second;
    }

    // Clears the half ties of one frame that are `wrong`.
    template <class Wrong>
    void dropFrom(const FrameAddress& frame, const Wrong& wrong) {
        if (!document_.entries(frame).mayHaveNoteFlags(NOTE_TIES)) return;
        std::vector<std::pair<NotePlace, std::uint32_t>> loose;
        for (const StoredEntry& entry : std::as_const(document_).entries(frame)) {
            for (const ENOTE& note : entry.notes()) {
                for (const std::uint32_t flag : {NOTE_TIE_START, NOTE_TIE_END}) {
                    if ((note.noteFlags & flag) && wrong(entry, note, flag)) {
                        loose.emplace_back(NotePlace{frame, entry.entryNumber, note.noteId}, flag);
                    }
                }
            }
        }
        for (const auto& [place, flag] : loose) clear(place, flag);
        if (!loose.empty()) index_.forget(frame);
    }

    void clear(const NotePlace& place, std::uint32_t flag) {
        const StoredEntry* const found = index_.find(place.frame, place.entryNumber, When::now);
        if (!found) return;
        const std::size_t offset = std::as_const(document_).entries(place.frame).offsetOf(*found);
        StoredEntry& entry = edits_.editable(place.frame).atOffset(offset);
        for (ENOTE& note : entry.notes()) {
            if (note.noteId == place.noteId) note.noteFlags &= ~flag;
        }
        // A note that no tie carries any more may need its accidental.
        entry.reserved13 |= kCheckAccidentals;
    }

    Document& document_;
    const Consequences& consequences_;
    MassEdits& edits_;
    TieIndex index_;
    StaffSpan span_;                                           // that was laid out again
    std::unordered_map<std::uint32_t, short> measuresBefore_;  // by entry, once they are asked for
};

}  // namespace

void breakWrongTies(Document& document, Consequences& consequences, std::span<const FrameAddress> frames) {
    TieBreaker breaker(document, consequences);
    for (const FrameAddress& frame : frames) {
        breaker.visit(frame);
        // Ties into the frame may come from the measure before.
        if (frame.measure < 2 || !consequences.edits().before(frame).mayHaveNoteFlags(NOTE_TIE_END)) continue;
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            breaker.visit({frame.staff, static_cast<short>(frame.measure - 1), layer});
        }
    }
}

void dropLooseTies(Document& document, Consequences& consequences, const StaffSpan& span) {
    TieBreaker breaker(document, consequences, span);
    const auto before = static_cast<short>(span.first - 1);
    const auto behind = static_cast<short>(span.last + 1);
    for (short layer = 0; layer < kMaxLayers; ++layer) {
        if (document.has(span.staff, before)) breaker.dropLost({span.staff, before, layer}, NOTE_TIE_START);
        if (document.has(span.staff, behind)) breaker.dropLost({span.staff, behind, layer}, NOTE_TIE_END);
        for (const short measure : numbers(span.first, span.last)) {
            breaker.dropHalves({span.staff, measure, layer});
        }
    }
}

}  // namespace rovescio::engine
