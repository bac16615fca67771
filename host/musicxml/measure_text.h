// One measure's text, taken apart into notes and everything else with its time.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/fraction.h"
#include "musicxml/note_groups.h"
#include "musicxml/numbers.h"

namespace rovescio::musicxml {

class MeasureText {
  public:
    // The text of a whole measure element of a sound score, which must outlive this; the divisions are those
    // in force at its start.
    MeasureText(std::string_view element, const Decimal& divisions);

    struct Note {
        std::string_view text;  // with the comments before it
        NoteGroups groups;
    };

    // Anything but notes, backups and forwards.
    struct Item {
        std::string_view text;  // with the comments before it
        std::uint64_t tag = 0;
        engine::Fraction time;  // from the start of the measure, duration units
    };

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] std::string_view startTag() const { return startTag_; }
    [[nodiscard]] std::string_view endTag() const { return endTag_; }
    // The whitespace before a child, and behind the last one.
    [[nodiscard]] std::string_view indentation() const { return indentation_; }
    [[nodiscard]] std::string_view closing() const { return closing_; }
    [[nodiscard]] std::vector<Note>& notes() { return notes_; }
    [[nodiscard]] const std::vector<Item>& items() const { return items_; }

  private:
    std::size_t size_ = 0;
    std::string startTag_;
    std::string endTag_;
    std::string_view indentation_;
    std::string_view closing_;
    std::vector<Note> notes_;
    std::vector<Item> items_;
};

}  // namespace rovescio::musicxml
