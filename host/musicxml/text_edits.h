// Small changes to a long text, collected in any order and applied at once.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "musicxml/large_pages.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

// Takes bytes; false when it cannot take more.
using ByteSink = std::function<bool(std::string_view)>;

class TextEdits {
  public:
    // The text must outlive the edits and be shorter than 4 GiB.
    explicit TextEdits(std::string_view text) : text_(text) {}

    [[nodiscard]] std::string_view text() const { return text_; }
    [[nodiscard]] bool empty() const { return edits_.empty(); }

    void replace(std::size_t begin, std::size_t end, std::string_view replacement);
    void replaceContent(const Element& element, std::string_view replacement) {
        replace(element.contentBegin, element.contentEnd, replacement);
    }
    // Removes an element with the whitespace before it.
    void remove(const Element& element);
    // Inserts an element's text behind another, on a line of its own where the
    // other has one.
    void insertAfter(const Element& element, std::string_view inserted);

    // Brings the edits added since the last call into the order of the text, and all of them in the end.
    // Those of one stretch of text are quickly put in order while they are few.
    void settleNew();
    void settleAll();
    // Whether there are edits inside a stretch of the text; all must be settled.
    [[nodiscard]] bool hasEdits(std::size_t begin, std::size_t end) const {
        const auto [first, last] = within(begin, end);
        return first != last;
    }
    // A stretch of the text with its edits, all of which must be settled.
    [[nodiscard]] std::string edited(std::size_t begin, std::size_t end) const;
    // Makes room for so many bytes of replacements.
    void reserve(std::size_t bytes) { reserveInLargePages(pool_, bytes); }
    // Replaces a stretch of the text together with the edits inside it. All edits must be settled first, and
    // again when the last stretch has been replaced.
    void replaceStretch(std::size_t begin, std::size_t end, std::string_view replacement);
    // Hands the changed text to a sink, piece by piece; false as soon as the sink refuses one. Edits must not
    // overlap, and all must be settled.
    bool applyTo(const ByteSink& sink) const;

  private:
    struct Edit {
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
        std::uint32_t poolBegin = 0;
        std::uint32_t poolEnd = 0;
        bool gone = false;  // a replaced stretch took it in
        // At one place an insertion comes before what is removed there.
        friend bool operator<(const Edit& left, const Edit& right) {
            return left.begin != right.begin ? left.begin < right.begin : left.end < right.end;
        }
    };
    [[nodiscard]] std::size_t indentationBegin(const Element& element) const;

    // The settled edits that begin inside a stretch.
    [[nodiscard]] std::pair<std::size_t, std::size_t> within(std::size_t begin, std::size_t end) const;

    std::string_view text_;
    std::string pool_;  // all replacements, one behind the other
    std::vector<Edit> edits_;
    std::size_t settled_ = 0;
};

}  // namespace rovescio::musicxml
