#include "xml/tree.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "xml/decoding.h"
#include "xml/parser.h"

namespace rovescio::xml {

namespace {

using Kind = ParseFault::Kind;

constexpr std::size_t kMostBytes = std::numeric_limits<std::int32_t>::max();
// Scores have an element for so many bytes or more.
constexpr std::size_t kBytesOfElement = 24;

// Parses what stands before the first illegal character, and finds fault with that when nothing comes before
// it.
ParseFault parseDocument(std::string_view text, const Limits& limits, Names& names,
                         std::vector<NodeData>& nodes, std::uint32_t base) {
    if (!looksLikeXml(text)) return {Kind::noElement, 0, "this is not XML"};
    const std::size_t legal = firstIllegal(text);
    Parser parser(text.substr(0, legal), limits, names, &names, {nodes, 1, base});
    parser.document();
    return firstFault(parser.fault(), text, legal);
}

}  // namespace

Tree::Tree(std::string_view text, std::span<const std::string_view> vocabulary, const Limits& limits)
    : text_(text), names_(vocabulary) {
    if (text.size() > kMostBytes) {
        nodes_.emplace_back();
        fault_ = {Kind::tooLarge, 0, "the text is 2 GiB or larger"};
        return;
    }
    const std::size_t mark = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    nodes_.reserve(std::min(text.size() / kBytesOfElement, limits.elements) + 2);
    nodes_.emplace_back();
    fault_ = parseDocument(text.substr(mark), limits, names_, nodes_, static_cast<std::uint32_t>(mark));
    if (isSound()) return;
    fault_.offset += mark;
    nodes_.resize(1);
    nodes_.shrink_to_fit();
}

Tree::Tree(std::span<const std::string_view> vocabulary) : names_(vocabulary), nodes_(1) {}

bool Tree::parseFragment(std::string_view text, std::uint32_t base, Node first,
                         std::vector<NodeData>& nodes) const {
    const std::size_t before = nodes.size();
    const Limits limits;
    if (text.size() <= std::numeric_limits<std::uint32_t>::max() - base &&
        firstIllegal(text) == text.size()) {
        Parser parser(text, limits, names_, nullptr, {nodes, first, base});
        if (parser.fragment()) return true;
    }
    nodes.resize(before);
    return false;
}

std::string_view Tree::keep(std::string decoded) const {
    if (decoded.empty()) return {};
    const std::lock_guard lock(decoding_);
    return decoded_.emplace_back(std::move(decoded));
}

std::string_view Tree::text(Node node) const {
    const NodeData& data = nodes_[node];
    if (data.isPlain && !data.hasChildren) {
        return trimmed(text_.substr(data.contentBegin, data.contentEnd - data.contentBegin));
    }
    std::string own;
    std::uint32_t from = data.contentBegin;
    for (const Element child : Element(*this, node)) {
        const NodeData& inner = nodes_[child.node()];
        own += text_.substr(from, inner.begin - from);
        from = inner.end;
    }
    own += text_.substr(from, data.contentEnd - from);
    if (!data.isPlain) own = decoded(own);
    return keep(std::string(trimmed(own)));
}

std::string_view Tree::attribute(Node node, std::string_view name) const {
    const NodeData& data = nodes_[node];
    const std::string_view tag = text_.substr(data.begin, data.contentBegin - data.begin);
    const AttributePlace place = findAttribute(tag, name);
    if (!place.exists()) return {};
    const std::string_view value = tag.substr(place.valueBegin, place.valueEnd - place.valueBegin);
    if (value.find_first_of("&\t\n\r") == std::string_view::npos) return value;
    return keep(decoded(withoutLineEnds(value)));
}

}  // namespace rovescio::xml
