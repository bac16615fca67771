// Which notes a run changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "contract/records.h"
#include "engine/model/document.h"
#include "run/selection.h"

namespace rovescio::run {

struct NoteCounts {
    std::size_t selected = 0;
    std::size_t changed = 0;         // of those selected
    std::size_t changedOutside = 0;  // in pitch; signs outside may follow from what happened inside
    bool sameNotes = true;           // the same entries with the same notes
};

// What makes a note count as changed.
enum class ChangeIn { pitch, pitchAndSigns };

// The notes of all entries in the order of the document, as they were when this object was made.
class NotesBefore {
  public:
    explicit NotesBefore(const engine::Document& document);

    [[nodiscard]] NoteCounts compare(const engine::Document& document, const Selection& selection,
                                     ChangeIn what) const;

  private:
    // What a reader of the score sees of a note's pitch and signs.
    struct Appearance {
        std::int16_t displacement;
        std::int16_t alteration;
        std::uint32_t signs;  // accidental shown, ties

        explicit Appearance(const ENOTE& note);
        [[nodiscard]] bool hasPitchOf(const Appearance& other) const {
            return displacement == other.displacement && alteration == other.alteration;
        }
    };
    void count(const engine::StoredEntry& entry, std::size_t index, bool selected, ChangeIn what,
               NoteCounts& counts) const;
    [[nodiscard]] std::size_t begin(std::size_t entry) const { return entry == 0 ? 0 : ends_[entry - 1]; }
    [[nodiscard]] const Appearance* find(std::size_t entry, std::uint16_t noteId) const;

    std::vector<std::pair<std::uint16_t, Appearance>> notes_;  // with their numbers inside the entry
    std::vector<std::size_t> ends_;                            // of each entry's notes
};

}  // namespace rovescio::run
