// Finds the other ends of ties, before an open mass edit and now.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/edit/mass_edit.h"
#include "engine/model/document.h"

namespace rovescio::engine {

struct NotePlace {
    FrameAddress frame;
    std::uint32_t entryNumber = 0;
    std::uint16_t noteId = 0;
};

// Which state of the document is looked at.
enum class When : std::uint8_t { before, now };

// Where an entry ends, in duration units; its tuplet's rounding leaves it up to a unit short.
std::int32_t endOf(const StoredEntry& entry);

// A tie joins notes of the same sound, the second of which begins where the first ends, in any layer of the
// staff. Where a chord holds the sound twice, notes of one spelling belong together. Frames are sorted when
// they are first asked for, so that each tie costs no more than a search.
class TieIndex {
  public:
    TieIndex(const Document& document, const MassEdits& edits) : document_(document), edits_(edits) {}

    [[nodiscard]] const PackedEntries& entriesOf(const FrameAddress& frame, When when) const;
    // How high a note sounds, in hundredths of a semitone.
    [[nodiscard]] int soundOf(const FrameAddress& frame, const ENOTE& note, When when) const;
    // The note that a tie from this one arrives at, and the one from which a tie to this one comes.
    [[nodiscard]] std::optional<NotePlace> arrivalOf(const FrameAddress& frame, const StoredEntry& entry,
                                                     const ENOTE& note, When when);
    [[nodiscard]] std::optional<NotePlace> departureOf(const FrameAddress& frame, const StoredEntry& entry,
                                                       const ENOTE& note, When when);
    // The entry of a frame, and a note of it; null when it has none such.
    [[nodiscard]] const StoredEntry* find(const FrameAddress& frame, std::uint32_t entryNumber, When when);
    [[nodiscard]] const ENOTE* find(const NotePlace& place, When when);
    // Has a frame sorted again, since ties have gone from it.
    void forget(const FrameAddress& frame) { frames_.erase(keyOf(frame, When::now)); }

  private:
    // A note that has a tie at its end or its beginning.
    struct End {
        int sound = 0;
        std::int32_t position = 0;
        int step = 0;
        std::uint32_t order = 0;
        std::uint32_t entryNumber = 0;
        std::uint16_t noteId = 0;

        friend bool operator<(const End& left, const End& right) {
            return std::tie(left.sound, left.position, left.order) <
                   std::tie(right.sound, right.position, right.order);
        }
    };
    struct FrameEnds {
        std::vector<End> departures;
        std::vector<End> arrivals;
        std::vector<std::pair<std::uint32_t, std::size_t>> entries;  // number and offset
    };
    using Key = std::tuple<short, short, short, When>;
    static Key keyOf(const FrameAddress& frame, When when) {
        return {frame.staff, frame.measure, frame.layer, when};
    }
    const FrameEnds& endsOf(const FrameAddress& frame, When when);
    // The other end of a note's tie on one side, NOTE_TIE_START or NOTE_TIE_END.
    struct Sought {
        Sought(const KeySignature& keyThere, const StoredEntry& entryThere, const ENOTE& note,
               std::uint32_t tieSide);
        // Of the chord's notes with the same sound and a tie on that side, which each need an end of their
        // own.
        [[nodiscard]] std::vector<int> steps() const;

        const KeySignature& key;
        const StoredEntry& entry;
        std::uint32_t side;
        int sound;
        int step;
    };
    [[nodiscard]] std::optional<NotePlace> endAt(const FrameAddress& home, std::int32_t position,
                                                 const Sought& sought, When when,
                                                 std::vector<End> FrameEnds::*ends);
    [[nodiscard]] const KeySignature& keyOf(short staff, short measure, When when) const;

    const Document& document_;
    const MassEdits& edits_;
    std::map<Key, FrameEnds> frames_;
};

}  // namespace rovescio::engine
