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

// Where the nodes go, and what numbers and places they have.
struct ParseTarget {
    std::vector<NodeData>& nodes;
    Node first = 1;
    std::uint32_t base = 0;
};

class Parser {
  public:
    // Of characters that are legal. Without names to grow, unknown ones are a fault.
    Parser(std::string_view text, const Limits& limits, const Names& names, Names* growing,
           ParseTarget target);

    // A whole document; false after a fault.
    bool document();
    // One element with nothing around it.
    bool fragment();
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

    Scanner scanner_;
    const char* const end_;
    const Limits& limits_;
    const Names& names_;
    Names* growing_;
    ParseTarget target_;
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
