// A walk over a parsed score: its elements in order, level by level, with their places in the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace rovescio::musicxml {

// What is wrong with a text as XML.
enum class XmlFault { none, noElement, truncated, malformed, tooMany, tooDeep, entities };

// The tree lives as long as the walk, and so do the views that it gives. A text that cannot be parsed has no
// elements; nesting beyond reason is found while walking.
class TreeWalk {
  public:
    static constexpr int kMaxDepth = 256;
    // Tags of the largest text that a reader allows, if it is a score. The tree of the shortest possible
    // elements would take 16 times the room of their text.
    static constexpr std::ptrdiff_t kMaxTags = 24'000'000;

    // The text is UTF-8; places are byte offsets in it.
    explicit TreeWalk(std::string_view text);

    [[nodiscard]] XmlFault fault() const { return fault_; }
    [[nodiscard]] std::size_t faultOffset() const { return faultOffset_; }
    // The parser's own words about a malformed text.
    [[nodiscard]] const char* faultDescription() const { return description_; }

    // Level of the children of the element that the walk is at; 0 is the level of the root.
    [[nodiscard]] std::size_t enter() const { return path_.size(); }
    // Goes to the next element of a level, passing over what deeper ones still hold. False when the level has
    // ended.
    bool next(std::size_t level);

    // The element that the walk is at: its name, the name's tag(), and the place of its '<'.
    [[nodiscard]] std::string_view name() const { return path_.back().name(); }
    [[nodiscard]] std::uint64_t tagNumber() const { return tagNumber_; }
    [[nodiscard]] std::size_t offset() const;
    // The element itself, for a second look at what it holds.
    [[nodiscard]] const pugi::xml_node& node() const { return path_.back(); }
    // Value of one of its attributes; empty when it has none of that name.
    [[nodiscard]] std::string_view attribute(const char* name) const {
        return path_.back().attribute(name).value();
    }
    // Its character data without surrounding whitespace.
    [[nodiscard]] std::string_view text() const;

  private:
    void fail(XmlFault fault, std::size_t offset);
    void checkTree(std::string_view text);
    void passOver(const pugi::xml_node& element);

    std::string copy_;  // the parser works in place
    pugi::xml_document tree_;
    std::vector<pugi::xml_node> path_;  // from the root to the element that the walk is at
    std::uint64_t tagNumber_ = 0;
    bool entered_ = false;  // the children of the element that the walk is at have been walked
    XmlFault fault_ = XmlFault::none;
    std::size_t faultOffset_ = 0;
    const char* description_ = "";
};

}  // namespace rovescio::musicxml
