// What holds for every tree, whatever its text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "xml/tree.h"

namespace rovescio::xml {

// Shows the name and the value of each attribute of a sound start tag.
template <class Visit>
void eachAttribute(std::string_view tag, const Visit& visit) {
    constexpr std::string_view kSpaces = " \t\r\n";
    for (std::size_t at = tag.find_first_of(kSpaces); at != std::string_view::npos;) {
        at = tag.find_first_not_of(kSpaces, at);
        if (tag[at] == '>' || tag[at] == '/') return;
        const std::string_view name = tag.substr(at, tag.find_first_of(" \t\r\n=", at) - at);
        const std::size_t value = tag.find_first_of("\"'", at + name.size()) + 1;
        at = tag.find(tag[value - 1], value);
        visit(name, tag.substr(value, at - value));
        ++at;
    }
}

// Looks at all of a tree and remembers the first thing that is not as it must be.
class TreeCheck {
  public:
    explicit TreeCheck(const Tree& tree) : tree_(tree), text_(tree.source()) {
        if (!tree.isSound()) checkFault();
        for (Node node = 1; node < tree.size(); ++node) {
            checkNode(node);
            checkAttributes(node);
        }
        if (tree.isSound() && broken_.empty()) checkFragment();
    }

    // Empty when there is none.
    [[nodiscard]] std::string_view broken() const { return broken_; }

  private:
    void require(bool condition, std::string_view rule) {
        if (!condition && broken_.empty()) broken_ = rule;
    }

    void checkFault() {
        const ParseFault& fault = tree_.fault();
        require(tree_.root() == 0 && tree_.size() == 1, "a refused text has no nodes");
        require(fault.offset <= text_.size(), "the fault lies in the text");
        require(!fault.description.empty() && fault.description.size() < 200,
                "the fault is described briefly");
        for (const char c : fault.description)
            require(c >= ' ' || (c & 0x80) != 0, "the description is printable");
    }

    void checkNode(Node node) {
        const NodeData& data = tree_.data(node);
        const std::string name(tree_.names().text(data.name));
        require(
            data.contentBegin <= data.contentEnd && data.contentEnd <= data.end && data.end <= text_.size(),
            "places are in order");
        if (!broken_.empty()) return;
        require(text_.substr(data.begin).starts_with("<" + name), "an element begins with its start tag");
        require(text_[data.contentBegin - 1] == '>' && text_[data.end - 1] == '>', "tags are closed");
        const bool isEmptyTag = data.contentBegin == data.end;
        require(isEmptyTag || text_.substr(data.contentEnd).starts_with("</" + name),
                "an element ends with its end tag");
        require(!isEmptyTag || text_[data.end - 2] == '/', "an empty tag says so");
        std::uint32_t from = data.contentBegin;
        for (const Element child : Element(tree_, node)) {
            require(child.parent().node() == node && child.node() > node, "children know their parent");
            require(tree_.data(child.node()).begin >= from, "children follow one another");
            from = tree_.data(child.node()).end;
        }
        require(from <= data.contentEnd, "children end inside their parent");
        require(tree_.text(node).size() <= data.contentEnd - data.contentBegin, "decoding adds nothing");
    }

    void checkAttributes(Node node) {
        const NodeData& data = tree_.data(node);
        const std::string_view tag = text_.substr(data.begin, data.contentBegin - data.begin);
        eachAttribute(tag, [&](std::string_view name, std::string_view value) {
            const AttributePlace place = findAttribute(tag, name);
            const auto after = static_cast<std::size_t>(value.data() - tag.data()) + value.size();
            require(place.begin < static_cast<std::size_t>(name.data() - tag.data()) &&
                        place.valueBegin + value.size() == after && place.valueEnd == after &&
                        place.end == after + 1,
                    "an attribute is found");
            require(tree_.attribute(node, name).size() <= value.size(), "decoding adds nothing");
        });
    }

    // The root element by itself is a fragment with the same nodes.
    void checkFragment() {
        constexpr std::uint32_t kBase = 1000;
        constexpr Node kFirst = 77;
        const NodeData& root = tree_.data(1);
        std::vector<NodeData> nodes;
        require(tree_.parseFragment(text_.substr(root.begin, root.end - root.begin), kBase, kFirst, nodes),
                "an element is a fragment");
        require(nodes.size() + 1 == tree_.size(), "a fragment has the nodes of its element");
        if (!broken_.empty()) return;
        const auto moved = [](Node node) { return node == 0 ? 0 : node + kFirst - 1; };
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const NodeData& node = nodes[i];
            const NodeData& data = tree_.data(static_cast<Node>(i + 1));
            require(node.begin - kBase == data.begin - root.begin &&
                        node.end - kBase == data.end - root.begin && node.next == moved(data.next) &&
                        node.parent == moved(data.parent) && node.name == data.name &&
                        node.isPlain == data.isPlain && node.hasChildren == data.hasChildren,
                    "a fragment's nodes are those of its element");
        }
    }

    const Tree& tree_;
    std::string_view text_;
    std::string_view broken_;
};

}  // namespace rovescio::xml
