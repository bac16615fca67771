// Finds the two ends of a tie and compares their pitches.
#include "engine/ties.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace rovescio::engine {

namespace {

// Of a note that barlines cut, as far as ties are followed through them.
constexpr int kMostParts = 64;

struct NotePlace {
    FrameAddress frame;
    std::uint32_t entryNumber = 0;
    std::uint16_t noteId = 0;
};

class TieBreaker {
  public:
    TieBreaker(Document& document, MassEdits& edits, const StaffSpan& span = {})
        : document_(document), edits_(edits), span_(span) {}

    // Looks after all ties that left a frame before the edit.
    void visit(const FrameAddress& frame) {
        if (edits_.isRebarred(frame.staff, frame.measure)) return;
        const PackedEntries& before = edits_.before(frame);
        if (!before.mayHaveNoteFlags(NOTE_TIE_START)) return;
        for (const StoredEntry& entry : before) {
            for (const ENOTE& note : entry.notes()) {
                if (note.noteFlags & NOTE_TIE_START) visitTie(frame, entry, note);
            }
        }
    }

    // Clears half ties in a frame that was laid out anew.
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
    // Where an entry ends, in duration units; its tuplet's rounding leaves it up to a unit short.
    static std::int32_t endOf(const StoredEntry& entry) {
        const EntryState state = entryState(entry);
        if (state.grace != Grace::none) return entry.elapsed;
        return entry.elapsed +
               static_cast<std::int32_t>(std::int64_t{entry.duration} * state.normal / state.actual);
    }

    void visitTie(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note) {
        const auto arrival =
            findArrival(frame, endOf(entry), pitchOf(frame, note, When::before), When::before);
        if (!arrival || edits_.isRebarred(arrival->frame.staff, arrival->frame.measure)) return;
        const NotePlace departure{frame, entry.entryNumber, note.noteId};
        const ENOTE* first = find(departure);
        const ENOTE* second = find(*arrival);
        if (!first || !second ||
            pitchOf(frame, *first, When::now) == pitchOf(arrival->frame, *second, When::now))
            return;
        clear(departure, NOTE_TIE_START);
        clear(*arrival, NOTE_TIE_END);
    }

    // Which state of the document is looked at.
    enum class When { before, now };
    [[nodiscard]] const PackedEntries& entriesOf(const FrameAddress& frame, When when) const {
        return when == When::before ? edits_.before(frame) : std::as_const(document_).entries(frame);
    }
    [[nodiscard]] int pitchOf(const FrameAddress& frame, const ENOTE& note, When when) const {
        const KeySignature& key = when == When::before
                                      ? edits_.keyBefore(frame.staff, frame.measure)
                                      : document_.staffMeasure(frame.staff, frame.measure).key;
        return semitones(key.spell(note));
    }

    // The note that such a tie arrives at: the same pitch at the end of the first, in any layer of the staff.
    [[nodiscard]] std::optional<NotePlace> findArrival(const FrameAddress& from, std::int32_t end, int pitch,
                                                       When when) const {
        const auto starts = [](const StoredEntry& entry) { return entry.elapsed; };
        if (auto found = findAt(from, end, pitch, NOTE_TIE_END, when, starts)) return found;
        const std::int32_t duration = document_.staffMeasure(from.staff, from.measure).duration;
        if (end + 1 < duration) return {};
        const auto next = static_cast<short>(from.measure + 1);
        return findAt({from.staff, next, from.layer}, 0, pitch, NOTE_TIE_END, when, starts);
    }

    // The note that a tie comes from: the same pitch, ending where the other begins.
    [[nodiscard]] std::optional<NotePlace> findDeparture(const FrameAddress& to, std::int32_t begin,
                                                         int pitch, When when) const {
        if (begin > 0) return findAt(to, begin - 1, pitch, NOTE_TIE_START, when, endOf);
        const auto earlier = static_cast<short>(to.measure - 1);
        if (!document_.has(to.staff, earlier)) return {};
        const std::int32_t end = document_.staffMeasure(to.staff, earlier).duration;
        return findAt({to.staff, earlier, to.layer}, end - 1, pitch, NOTE_TIE_START, when, endOf);
    }

    // A note of that pitch and flag whose entry has its edge at a position or a unit later, in the frame or
    // else in another layer of the measure.
    template <class Edge>
    [[nodiscard]] std::optional<NotePlace> findAt(const FrameAddress& home, std::int32_t position, int pitch,
                                                  std::uint32_t flag, When when, const Edge& edge) const {
        if (!document_.has(home.staff, home.measure)) return {};
        for (short step = 0; step < kMaxLayers; ++step) {
            const FrameAddress frame{home.staff, home.measure,
                                     static_cast<short>((home.layer + step) % kMaxLayers)};
            for (const StoredEntry& entry : entriesOf(frame, when)) {
                const std::int32_t at = edge(entry);
                if (at < position || at > position + 1) continue;
                for (const ENOTE& note : entry.notes()) {
                    if ((note.noteFlags & flag) && pitchOf(frame, note, when) == pitch) {
                        return NotePlace{frame, entry.entryNumber, note.noteId};
                    }
                }
            }
        }
        return {};
    }

    [[nodiscard]] bool arrives(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note,
                               When when) const {
        const auto arrival = findArrival(frame, endOf(entry), pitchOf(frame, note, when), when);
        return arrival && isTrusted(frame.layer, entry, *arrival, when);
    }
    [[nodiscard]] bool departs(const FrameAddress& frame, const StoredEntry& entry, const ENOTE& note,
                               When when) const {
        const auto departure = findDeparture(frame, entry.elapsed, pitchOf(frame, note, when), when);
        return departure && isTrusted(frame.layer, entry, *departure, when);
    }

    // Half ties of two layers can come to lie beside each other by chance. They are one tie only if they were
    // one before.
    [[nodiscard]] bool isTrusted(short layer, const StoredEntry& entry, const NotePlace& other,
                                 When when) const {
        if (when == When::before || other.frame.layer == layer) return true;
        const std::uint32_t one = document_.originOf(entry.entryNumber);
        const std::uint32_t two = document_.originOf(other.entryNumber);
        return ledTo(layer, one, two) || ledTo(other.frame.layer, two, one);
    }

    // Whether ties led from one entry to the other before the edit, in which entries keep their layer. Parts
    // of a note that was cut can lie between them.
    [[nodiscard]] bool ledTo(short layer, std::uint32_t from, std::uint32_t to) const {
        const short measure = measureBefore(from);
        return measure != 0 && ledOnTo({{span_.staff, measure, layer}, from, 0}, to, kMostParts);
    }
    [[nodiscard]] bool ledOnTo(const NotePlace& from, std::uint32_t to, int parts) const {
        for (const StoredEntry& entry : edits_.before(from.frame)) {
            if (entry.entryNumber != from.entryNumber || parts == 0) continue;
            for (const ENOTE& note : entry.notes()) {
                // The first entry is left by any of its notes, the parts by the note that arrived.
                if ((note.noteFlags & NOTE_TIE_START) == 0) continue;
                if (from.noteId != 0 && note.noteId != from.noteId) continue;
                const int pitch = pitchOf(from.frame, note, When::before);
                const auto arrival = findArrival(from.frame, endOf(entry), pitch, When::before);
                if (!arrival) continue;
                if (document_.originOf(arrival->entryNumber) == to || ledOnTo(*arrival, to, parts - 1))
                    return true;
            }
        }
        return false;
    }

    // Where an entry in or beside the span stood before the edit; 0 for a new one.
    [[nodiscard]] short measureBefore(std::uint32_t entryNumber) const {
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
    StaffSpan span_;                                                   // that was laid out anew
    mutable std::unordered_map<std::uint32_t, short> measuresBefore_;  // by entry, once they are asked for
};

}  // namespace

void breakWrongTies(Document& document, MassEdits& edits, std::span<const FrameAddress> frames) {
    TieBreaker breaker(document, edits);
    for (const FrameAddress& frame : frames) {
        breaker.visit(frame);
        // Ties into the frame may come from the measure before.
        if (frame.measure < 2 || !edits.before(frame).mayHaveNoteFlags(NOTE_TIE_END)) continue;
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            breaker.visit({frame.staff, static_cast<short>(frame.measure - 1), layer});
        }
    }
}

void dropLooseTies(Document& document, MassEdits& edits, const StaffSpan& span) {
    TieBreaker breaker(document, edits, span);
    const auto before = static_cast<short>(span.first - 1);
    const auto behind = static_cast<short>(span.last + 1);
    for (short layer = 0; layer < kMaxLayers; ++layer) {
        if (document.has(span.staff, before)) breaker.dropLost({span.staff, before, layer}, NOTE_TIE_START);
        if (document.has(span.staff, behind)) breaker.dropLost({span.staff, behind, layer}, NOTE_TIE_END);
        for (short measure = span.first; measure <= span.last; ++measure) {
            breaker.dropHalves({span.staff, measure, layer});
        }
    }
}

}  // namespace rovescio::engine
