// A lossless tree of an XML text: its elements and their places. What the text means is not its concern.
//
// The text itself is the tree's storage. A node is four places in it, two links and a name; character data
// and attributes are looked up and decoded when someone asks. Nothing in the tree changes after parsing:
// edits are a layer of their own (edits.h), so that one tree can be written in many ways.
#pragma once

#include <cstdint>
#include <deque>
#include <iterator>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "xml/names.h"

namespace rovescio::xml {

// A node by its number; nodes are numbered from 1 in the order of their start tags, 0 is none.
using Node = std::uint32_t;

// A stretch of text, bytes from begin to before end.
struct Slice {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;

    [[nodiscard]] bool empty() const { return begin == end; }
};

// An element. Its children follow it directly in the order of numbers.
struct NodeData {
    std::uint32_t begin = 0;         // of its '<'
    std::uint32_t contentBegin = 0;  // after the '>' of its start tag
    std::uint32_t contentEnd = 0;    // of the '<' of its end tag; of <a/> this and contentBegin are its end
    std::uint32_t end = 0;           // after its last '>'
    Node next = 0;                   // the next sibling; 0 for the last one
    Node parent = 0;                 // 0 for the root
    Name name = 0;
    bool hasChildren = false;  // the first child is then the node with the next number
    bool isPlain = true;       // its own character data has no reference, section, comment or instruction
};

// What keeps a text from being parsed.
struct ParseFault {
    enum class Kind {
        none,
        noElement,  // this is not XML at all
        truncated,  // the text ends before the root element does
        malformed,  // it is not well-formed; the description says why
        tooLarge,   // more elements, attributes or names than allowed, nested too deep, or too long
        entities,   // its document type declares entities
    };
    Kind kind = Kind::none;
    std::size_t offset = 0;   // in the text, bytes
    std::string description;  // part of a sentence, such as: "the end tag </a> does not belong to <b>"
};

struct Limits {
    std::size_t elements = 24'000'000;
    std::size_t attributes = 24'000'000;
    std::size_t attributesOfElement = 256;
    std::size_t depth = 256;
};

class Element;
class PieceReader;

class Tree {
  public:
    // Parses UTF-8 text, which must outlive the tree and be shorter than 2 GiB; a byte order mark at its
    // start is passed over. Well-formed is what the XML recommendation (1.0, fifth edition) calls so, but for
    // documents that declare entities, which are refused. The names of the vocabulary have the numbers of
    // their order.
    Tree(std::string_view text, std::span<const std::string_view> vocabulary, const Limits& limits = {});
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    // With a fault the tree has no nodes.
    [[nodiscard]] const ParseFault& fault() const { return fault_; }
    [[nodiscard]] bool isSound() const { return fault_.kind == ParseFault::Kind::none; }

    [[nodiscard]] std::string_view source() const { return text_; }
    [[nodiscard]] Node root() const { return isSound() ? 1 : 0; }
    [[nodiscard]] Element rootElement() const;
    // Numbers of nodes are below this.
    [[nodiscard]] Node size() const { return static_cast<Node>(nodes_.size()); }
    [[nodiscard]] const NodeData& data(Node node) const { return nodes_[node]; }
    [[nodiscard]] const Names& names() const { return names_; }

    // Character data of an element without that of its children and without surrounding white space,
    // references and sections resolved, line ends as they are. The view lasts as long as the tree.
    [[nodiscard]] std::string_view text(Node node) const;
    // The value of an attribute with references resolved; empty when there is none of that name. The view
    // lasts as long as the tree.
    [[nodiscard]] std::string_view attribute(Node node, std::string_view name) const;

    // Parses one element that the program itself has made, such as "<step>C</step>", and appends its nodes;
    // the numbers of these count from `first`, places from `base`. Names must be known to the tree or its
    // vocabulary. False when it is not well-formed.
    bool parseFragment(std::string_view text, std::uint32_t base, Node first,
                       std::vector<NodeData>& nodes) const;

  private:
    friend class PieceReader;
    // Without text as yet.
    explicit Tree(std::span<const std::string_view> vocabulary);
    std::string_view keep(std::string decoded) const;

    std::string_view text_;
    Names names_;
    std::vector<NodeData> nodes_;  // the first one is none
    ParseFault fault_;
    // Texts that had to be decoded; they are few. Several threads may read.
    mutable std::mutex decoding_;
    mutable std::deque<std::string> decoded_;
};

// Where an attribute is in the text of a start tag, as places in that text.
struct AttributePlace {
    std::size_t begin = 0;  // of the white space before it
    std::size_t end = 0;    // after the closing quote
    std::size_t valueBegin = 0;
    std::size_t valueEnd = 0;

    [[nodiscard]] bool exists() const { return end != 0; }
};

// Finds an attribute in a well-formed start tag.
AttributePlace findAttribute(std::string_view startTag, std::string_view name);
// Character data or an attribute's value with its references, sections, comments and instructions resolved.
std::string decoded(std::string_view text);
// Text as character data or attribute value: the characters that mean something are written as references.
std::string escaped(std::string_view text);

// An element of a tree, to look at.
class Element {
  public:
    Element() = default;
    Element(const Tree& tree, Node node) : tree_(&tree), node_(node) {}

    [[nodiscard]] bool exists() const { return node_ != 0; }
    [[nodiscard]] Node node() const { return node_; }
    [[nodiscard]] Name name() const { return data().name; }
    [[nodiscard]] std::string_view nameText() const { return tree_->names().text(data().name); }
    // Where it begins in the text.
    [[nodiscard]] std::size_t offset() const { return data().begin; }
    [[nodiscard]] std::string_view text() const { return tree_->text(node_); }
    [[nodiscard]] std::string_view attribute(std::string_view name) const {
        return tree_->attribute(node_, name);
    }
    [[nodiscard]] Element parent() const { return {*tree_, data().parent}; }
    // The first child of a name; none exists() when there is none.
    [[nodiscard]] Element child(Name name) const {
        for (const Element child : *this) {
            if (child.name() == name) return child;
        }
        return {*tree_, 0};
    }

    class Iterator {
      public:
        using value_type = Element;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::input_iterator_tag;
        using pointer = const Element*;
        using reference = Element;
        Iterator() = default;
        Iterator(const Tree* tree, Node node) : tree_(tree), node_(node) {}
        Element operator*() const { return {*tree_, node_}; }
        Iterator& operator++() {
            node_ = tree_->data(node_).next;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) { return a.node_ == b.node_; }

      private:
        const Tree* tree_ = nullptr;
        Node node_ = 0;
    };
    // The children in order.
    [[nodiscard]] Iterator begin() const { return {tree_, data().hasChildren ? node_ + 1 : 0}; }
    [[nodiscard]] Iterator end() const { return {tree_, 0}; }

  private:
    [[nodiscard]] const NodeData& data() const { return tree_->data(node_); }

    const Tree* tree_ = nullptr;
    Node node_ = 0;
};

inline Element Tree::rootElement() const {
    return {*this, root()};
}

}  // namespace rovescio::xml
