// Writes a note anew in another place of the score: another length, voice, beams, brackets and ties.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/note_values.h"
#include "musicxml/note_groups.h"

namespace rovescio::musicxml {

// What a note is to say in its new place.
struct NoteShape {
    std::string duration;                    // in divisions; empty for a grace note
    std::optional<engine::NoteValue> value;  // none: as it is
    bool measureRest = false;                // a rest for the whole measure
    std::string voice;                       // empty: as it is
    bool chord = false;                      // sounds with the note before it
    std::uint32_t ties = 0;                  // NOTE_TIE_START, NOTE_TIE_END
    std::string cutId;          // of the tie that joins it with the part before a cut; empty for none
    bool mirrored = false;      // the order of notes around it has turned round
    bool continuation = false;  // goes on with a note that was cut, without its marks
    const NoteGroups* groups = nullptr;  // its beams and brackets; null for none
};

// Writes notes one after the other; it keeps its memory between them.
class NoteRewriter {
  public:
    // Appends the text of a note that was read before, rewritten. Everything that the shape does not speak of
    // stays. The text must not be part of `out`.
    void rewrite(std::string_view note, const NoteShape& shape, std::string& out);

  private:
    // A child by its place in the format's order; the text is the note's own or one of the new ones.
    struct Child {
        int rank = 0;
        bool isNew = false;
        std::size_t begin = 0;
        std::size_t length = 0;
    };
    void keep(int rank, const Element& element);
    template <class... Parts>
    void add(int rank, const Parts&... parts);
    void take(TextWalk& walk);
    void takeRest(const Element& element);
    void takeNotations(TextWalk& walk);
    void takeOrnaments(TextWalk& walk);
    void takeLyric(TextWalk& walk);
    void addNew();
    void addNotations();
    [[nodiscard]] std::string_view textOf(const Child& child) const;

    std::string_view note_;
    const NoteShape* shape_ = nullptr;
    std::string_view indentation_;
    std::vector<Child> children_;
    std::string new_;                     // texts of new children, one behind the other
    std::vector<std::string> notations_;  // contents of each that is left
    std::string notationsTag_;            // of the first
};

// The text of a rest that was nowhere before; staff 0 for none.
std::string restText(const NoteShape& shape, int staff);

}  // namespace rovescio::musicxml
