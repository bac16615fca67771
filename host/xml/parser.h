// Makes the nodes of a tree out of a text, in one pass and without recursion.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "xml/scanner.h"
#include "xml/tree.h"

namespace rovescio::xml {

// Whether the first thing in the text is some kind of tag, or a declaration stands near its start.
bool looksLikeXml(std::string_view text);
// What a text is refused for when the parser found this before its first illegal character.
ParseFault firstFault(const ParseFault& found, std::string_view text, std::size_t legal);

// Where the nodes go, and what numbers and places they have.
struct ParseTarget {
    std::vector<NodeData>& nodes;
    Node first = 1;
    std::uint32_t base = 0;
};

// Is told of the elements near the root while the text is being parsed.
class ParseWatcher {
  public:
    explicit ParseWatcher(std::size_t depth) : depth_(depth) {}
    virtual ~ParseWatcher() = default;
    // The root has depth 1.
    [[nodiscard]] std::size_t depth() const { return depth_; }
    // The start tag of an element above that depth has been read.
    virtual void opened(Node node) = 0;
    // An element of that depth is complete. After this its nodes are dropped.
    virtual void closed(Node node) = 0;

  private:
    std::size_t depth_;
};

class Parser {
  public:
    // Of characters that are legal. Without names to grow, unknown ones are a fault. The target of a watched
    // parser holds the elements that are open, each the child of the one before.
    Parser(std::string_view text, const Limits& limits, const Names& names, Names* growing,
           ParseTarget target, ParseWatcher* watcher = nullptr);

    // A whole document; false after a fault.
    bool document();
    // One element with nothing around it.
    bool fragment();
    // From inside the last element of the target, or where that is the first one, which is none, from behind
    // the root element.
    bool rest(std::size_t offset);
    // Up to where a watched parser has read what will not change with more text: behind a tag above the
    // watcher's depth.
    [[nodiscard]] std::size_t settled() const {
        return static_cast<std::size_t>(settled_ - scanner_.begin());
    }
    // How many nodes the target had there.
    [[nodiscard]] std::size_t settledNodes() const { return settledNodes_; }
    [[nodiscard]] const ParseFault& fault() const { return scanner_.fault(); }

  private:
    // These take and return places as those of Scanner do.
    const char* prolog(const char* p);
    const char* xmlDeclaration(const char* p);
    const char* pseudoAttribute(const char* p, std::string_view name, bool (*isValid)(std::string_view));
    const char* element(const char* p);
    const char* markup(const char* p);
    const char* startTag(const char* p);
    const char* elementName(const char* p, Name& name);
    const char* attributes(const char* p);
    const char* attribute(const char* p);
    const char* endTag(const char* p);
    const char* wrongEndTag(const char* p);
    const char* characterData(const char* p);
    const char* dataMarkup(const char* p);
    const char* noTag(const char* p);
    bool epilog(const char* p);

    bool numberOf(std::string_view name, Name& number) const;
    bool isNewAttribute(std::string_view name);
    const char* tooLarge(const char* p, std::string description);
    const char* truncatedElement();

    [[nodiscard]] std::uint32_t placeOf(const char* p) const {
        return target_.base + static_cast<std::uint32_t>(p - scanner_.begin());
    }
    [[nodiscard]] NodeData& node(Node number) { return target_.nodes[number - shift_]; }
    [[nodiscard]] Node nextNumber() const { return static_cast<Node>(target_.nodes.size()) + shift_; }
    [[nodiscard]] std::string_view nameOf(Node number) { return names_.text(node(number).name); }
    NodeData& open(const char* p, Name name);
    void close(const char* contentEnd, const char* end);
    const char* contents(const char* p);
    void closeWatched(const char* end);
    void settle(const char* p);

    Scanner scanner_;
    const char* const end_;
    const Limits& limits_;
    const Names& names_;
    Names* growing_;
    ParseTarget target_;
    ParseWatcher* watcher_;
    const char* settled_;
    std::size_t settledNodes_;
    Node shift_;        // of the numbers of nodes against their indices
    Node current_ = 0;  // the element that is open. Until it closes, its `next` is its last child
    std::size_t depth_ = 0;
    std::size_t attributes_ = 0;
    // By the name of an element, the name of what followed its last namesake.
    std::vector<Name> followers_;
    Name lastName_ = 0;
    // The attributes of the tag being read: the first ones, and the others where they are many.
    std::array<std::string_view, 16> few_;
    std::unordered_set<std::string_view> others_;
    std::size_t attributesOfTag_ = 0;
};

}  // namespace rovescio::xml
