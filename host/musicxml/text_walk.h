// A walk over the text of a parsed score that tells where its elements begin and end.
//
// A tree knows what a score says, but not where in the text it says so. Edits of the text need the places,
// and only in the few notes that change. The text has been parsed before, so it is well-formed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace rovescio::musicxml {

// An element's place in the text. Of a self-closing element all of these but `begin` are its end.
struct Element {
    std::size_t begin = 0;  // of its '<'
    std::size_t contentBegin = 0;
    std::size_t contentEnd = 0;
    std::size_t end = 0;  // behind its last '>'

    [[nodiscard]] bool exists() const { return end != 0; }
};

// An attribute's place in the text.
struct Attribute {
    std::size_t begin = 0;  // of the whitespace before it
    std::size_t end = 0;
    std::string_view value;  // as written

    [[nodiscard]] bool exists() const { return end != 0; }
};

class TextWalk {
  public:
    // The text must outlive the walk and all views that it gives.
    explicit TextWalk(std::string_view text) : text_(text) {}

    // Starts at an element that begins at this place.
    void restart(std::size_t offset);

    // Level of the children of the element that the walk is at; 0 is the level of the element it started at.
    [[nodiscard]] std::size_t enter() const { return atEmpty_ ? kNoChildren : open_; }
    // Goes to the next element of a level, passing over what deeper ones still hold. False when the level has
    // ended.
    bool next(std::size_t level);

    // The element that the walk is at: its name's tag(), one of its attributes as written, and its place,
    // whose end is known only to whole() and complete().
    [[nodiscard]] std::uint64_t tagNumber() const { return tagNumber_; }
    [[nodiscard]] std::string_view attribute(std::string_view name) const;
    [[nodiscard]] const Element& element() const { return element_; }
    // How far the walk has come: behind the last tag that it has seen.
    [[nodiscard]] std::size_t reached() const { return next_; }
    // Walks to the end of that element and returns its place, or its character data.
    Element whole();
    std::string value();
    // The place of an element whose children were walked until next() was false; `begin` is its own.
    void complete(Element& element) const;

  private:
    static constexpr std::size_t kNoChildren = ~std::size_t{0};
    enum class Tag { open, close, empty, none };
    Tag nextTag();
    // The next '<' that begins a tag; comments, marked sections and instructions are passed over.
    [[nodiscard]] std::size_t findTag() const;

    std::string_view text_;
    std::size_t next_ = 0;
    std::size_t open_ = 0;  // elements around the walk
    std::string_view name_;
    std::uint64_t tagNumber_ = 0;
    Element element_;
    bool atEmpty_ = false;
    std::size_t closeBegin_ = 0;  // of the last end tag
};

// An attribute of the element that begins at an offset.
Attribute findAttribute(std::string_view text, std::size_t begin, std::string_view name);
// An element's character data without surrounding whitespace.
std::string valueOf(std::string_view text, const Element& element);

}  // namespace rovescio::musicxml
