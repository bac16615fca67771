// A single walk over XML text: elements in order with their places in the text,
// no tree and no copies.
//
// Scores are large and read once, front to back, and written by small edits of
// their own text. So what a reader needs is where things stand, and the room
// for a tree would be the largest cost of all. The walk checks that tags are
// balanced and not nested beyond reason; it does not expand entities of a
// document type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace rovescio::musicxml {

// An element's place in the text. Of a self-closing element all of these but
// `begin` are its end.
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
    std::string_view value;  // as written, references not resolved

    [[nodiscard]] bool exists() const { return end != 0; }
};

enum class XmlFault { none, truncated, badTag, mismatch, tooDeep, entities };

class XmlWalk {
  public:
    static constexpr std::size_t kMaxDepth = 256;

    // Starts at an offset, before the root element of the text or of a part of
    // it. The text must outlive the walk and all views that it gives.
    explicit XmlWalk(std::string_view text, std::size_t offset = 0) : text_(text), next_(offset) {}

    // Goes back to the start of another stretch of the same text.
    void restart(std::size_t offset);

    // Level of the children of the element that the walk is at; 0 is the level of
    // the root.
    [[nodiscard]] std::size_t enter() const { return atEmpty_ ? kNoChildren : open_.size(); }
    // Goes to the next element of a level, passing over what deeper ones still
    // hold. False when the level has ended, or on a fault, from when on it is
    // always false.
    bool next(std::size_t level);

    // The element that the walk is at: its name, the name's tag(), and where it
    // begins.
    [[nodiscard]] std::string_view name() const { return name_; }
    [[nodiscard]] std::uint64_t tagNumber() const { return tagNumber_; }
    [[nodiscard]] std::size_t offset() const { return element_.begin; }
    // Value of one of its attributes, references resolved; empty when it has none
    // of that name.
    std::string_view attribute(std::string_view name);

    // Walks to the end of that element and returns its character data, without
    // surrounding whitespace.
    std::string_view text();
    // Walks to the end of that element and returns its place.
    Element whole();
    // The place of an element whose children were walked until next() was false;
    // `begin` is its own.
    void complete(Element& element) const;
    [[nodiscard]] const Element& element() const { return element_; }

    // Passes over what may stand behind the root element; anything else is a
    // fault.
    void finish();
    [[nodiscard]] XmlFault fault() const { return fault_; }
    [[nodiscard]] std::size_t faultOffset() const { return faultOffset_; }
    // The element of a mismatch that should have been closed.
    [[nodiscard]] std::string_view faultName() const { return faultName_; }

  private:
    static constexpr std::size_t kNoChildren = ~std::size_t{0};
    enum class Tag { open, close, empty, none };

    Tag nextTag();
    bool skipSpecial(std::size_t begin);
    bool skipDocumentType(std::size_t begin);
    bool skipBehind(std::size_t begin, std::string_view mark);
    bool closeElement(std::size_t begin);
    void fail(XmlFault fault, std::size_t offset);
    std::string_view resolve(std::string_view raw);

    std::string_view text_;
    std::size_t next_;
    std::vector<std::string_view> open_;  // names of the elements around the walk
    std::string_view name_;
    std::uint64_t tagNumber_ = 0;
    Element element_;
    bool atEmpty_ = false;
    std::size_t closeBegin_ = 0;  // of the last end tag
    std::deque<std::string> resolved_;
    XmlFault fault_ = XmlFault::none;
    std::size_t faultOffset_ = 0;
    std::string_view faultName_;
};

// An attribute of the element that begins at an offset.
Attribute findAttribute(std::string_view text, std::size_t begin, std::string_view name);
// An element's character data without surrounding whitespace.
std::string valueOf(std::string_view text, const Element& element);

}  // namespace rovescio::musicxml
