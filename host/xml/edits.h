// Changes to a tree, and the changed text.
//
// A layer over a tree that stays as it is: it holds the new nodes and the changes to the others. What it does
// not mention is printed byte for byte as it was. White space and comments before an element belong to it and
// go where it goes.
#pragma once

#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "xml/tree.h"

namespace rovescio::xml {

// Takes bytes; false when it cannot take more.
using ByteSink = std::function<bool(std::string_view)>;

class Edits {
  public:
    // The tree must outlive its edits.
    explicit Edits(const Tree& tree);

    [[nodiscard]] const Tree& tree() const { return *tree_; }
    [[nodiscard]] bool empty() const { return changes_.size() == 1; }

    // --- an element as it is now ---

    [[nodiscard]] Name name(Node node) const { return data(node).name; }
    [[nodiscard]] Node parent(Node node) const { return data(node).parent; }
    // Where it begins in the source, or what it is a copy or a part of.
    [[nodiscard]] std::size_t place(Node node) const;
    [[nodiscard]] std::string text(Node node) const;
    [[nodiscard]] std::string attribute(Node node, std::string_view name) const;
    // Whether an element's character data is this, without copying any where it can be helped.
    [[nodiscard]] bool says(Node node, std::string_view text) const;
    class Children;
    // The children in order; a change of them ends the walk over them.
    [[nodiscard]] Children children(Node node) const;
    // Puts the children into a list that the caller can keep for the next call.
    void children(Node node, std::vector<Node>& list) const;
    // The first child of a name; 0 for none.
    [[nodiscard]] Node child(Node node, Name name) const;
    [[nodiscard]] bool hasChildren(Node node) const;

    // --- changes ---

    // Gives an element without children other character data.
    void setText(Node node, std::string_view text);
    void setAttribute(Node node, std::string_view name, std::string_view value);
    void removeAttribute(Node node, std::string_view name);

    // An element that has no place yet, made from text that is well-formed and whose names the tree knows.
    Node make(std::string_view text);
    // A copy of an element of the tree as it was parsed.
    Node copy(Node original);

    // Puts an element that has no place yet after or before another, on a line of its own where the other has
    // one; before the first child, where there is one; and after the last.
    void insertAfter(Node sibling, Node added);
    void insertBefore(Node sibling, Node added);
    void insertFirst(Node parent, Node added);
    void append(Node parent, Node added);
    // Takes an element out, with the white space before it.
    void remove(Node node);
    // Gives an element new children: its own or those of others, copies and new ones in any order. Each
    // begins on a line of its own with the white space that the first child had. Comments stay before their
    // elements, also where these come from another list; those of an element that comes nowhere stay at the
    // parent's end.
    void setChildren(Node parent, std::span<const Node> list);

    // Hands the changed text to a sink, piece by piece; false as soon as the sink refuses one.
    bool print(const ByteSink& sink) const;
    // The changed text of one element.
    [[nodiscard]] std::string print(Node node) const;

  private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // A child in a list of its own, with the text before it.
    struct Piece {
        Slice lead;
        Node node = 0;
        std::uint32_t next = kNone;
    };
    // The change to an element; with nothing set, something inside it has changed.
    struct Change {
        Slice startTag;  // empty: as it stood
        bool hasList = false;
        std::uint32_t first = kNone;  // pieces
        Slice tail;                   // after the last child, or all there is
    };
    class Printer;

    [[nodiscard]] const NodeData& data(Node node) const {
        return node < tree_->size() ? tree_->data(node) : added_[node - tree_->size()];
    }
    NodeData& addedData(Node node) { return added_[node - tree_->size()]; }
    [[nodiscard]] std::string_view slice(const Slice& at) const;
    [[nodiscard]] const Change* changeOf(Node node) const {
        return changeOf_[node] == 0 ? nullptr : &changes_[changeOf_[node]];
    }
    [[nodiscard]] std::string_view startTag(Node node) const;
    Change& change(Node node);
    Change& listOf(Node parent);
    void markAround(Node node);
    Slice keep(std::string_view text);
    [[nodiscard]] Slice leadOf(Node node) const;
    [[nodiscard]] bool saysSomething(const Slice& lead) const;
    [[nodiscard]] Slice indentation(const Slice& lead) const;
    [[nodiscard]] Slice commentsOf(const Slice& lead) const;
    [[nodiscard]] Slice firstIndentation(Node parent) const;
    void openStartTag(Node node);
    void replaceStartTag(Node node, std::string_view tag) { change(node).startTag = keep(tag); }

    const Tree* tree_;
    std::vector<std::uint32_t> changeOf_;  // by node; 0 for none
    std::vector<Change> changes_;          // the first one is none
    std::vector<Piece> pieces_;
    std::vector<NodeData> added_;  // new nodes; their places count on after the source
    std::string pool_;             // new text
    // Of the few elements with comments before them:
    std::map<Node, Slice> leads_;            // these, where those of removed elements have joined them
    std::map<Node, Node> homes_;             // by element, in whose list it has been put
    std::map<Node, std::set<Node>> strays_;  // by parent, what its list has no more
};

// A walk over children: of a list of their own, or as they stand in the tree.
class Edits::Children {
  public:
    class Iterator {
      public:
        using value_type = Node;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::input_iterator_tag;
        using pointer = const Node*;
        using reference = Node;
        Iterator() = default;
        Iterator(const Edits& edits, Node node, std::uint32_t piece)
            : edits_(&edits), node_(node), piece_(piece) {}
        Node operator*() const { return piece_ == kNone ? node_ : edits_->pieces_[piece_].node; }
        Iterator& operator++() {
            if (piece_ == kNone) {
                node_ = edits_->data(node_).next;
            } else {
                piece_ = edits_->pieces_[piece_].next;
            }
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) {
            return a.node_ == b.node_ && a.piece_ == b.piece_;
        }

      private:
        const Edits* edits_ = nullptr;
        Node node_ = 0;
        std::uint32_t piece_ = kNone;
    };
    Children(const Edits& edits, Iterator first) : edits_(&edits), first_(first) {}
    [[nodiscard]] Iterator begin() const { return first_; }
    [[nodiscard]] Iterator end() const { return {*edits_, 0, kNone}; }

  private:
    const Edits* edits_;
    Iterator first_;
};

inline Edits::Children Edits::children(Node node) const {
    const Change* const change = changeOf(node);
    if (change != nullptr && change->hasList) return {*this, {*this, 0, change->first}};
    return {*this, {*this, data(node).hasChildren ? node + 1 : 0, kNone}};
}

}  // namespace rovescio::xml
