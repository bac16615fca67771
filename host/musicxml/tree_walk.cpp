// Parsing, and the walk over the tree.
#include "musicxml/tree_walk.h"

#include <algorithm>

#include "musicxml/large_pages.h"
#include "musicxml/numbers.h"
#include "musicxml/tag_names.h"

namespace rovescio::musicxml {

namespace {

// A value is kept in its element, not in a node of its own: that is a third of the room of a large score.
constexpr unsigned kParseFlags = pugi::parse_minimal | pugi::parse_escapes | pugi::parse_cdata |
                                 pugi::parse_embed_pcdata | pugi::parse_doctype;

// The first element at or after a node.
pugi::xml_node elementFrom(pugi::xml_node node) {
    while (node && node.type() != pugi::node_element) node = node.next_sibling();
    return node;
}

// Place of an element's '<'.
std::size_t placeOf(const pugi::xml_node& node) {
    return static_cast<std::size_t>(node.offset_debug()) - 1;
}

}  // namespace

TreeWalk::TreeWalk(std::string_view text) {
    // A short text cannot hold so many, and need not be counted.
    if (text.size() > std::size_t{kMaxTags} && std::count(text.begin(), text.end(), '<') > kMaxTags) {
        fail(XmlFault::tooMany, 0);
        return;
    }
    reserveInLargePages(copy_, text.size());
    copy_ = text;
    const pugi::xml_parse_result result =
        tree_.load_buffer_inplace(copy_.data(), copy_.size(), kParseFlags, pugi::encoding_utf8);
    if (result) {
        checkTree(text);
        return;
    }
    description_ = result.description();
    const auto offset = static_cast<std::size_t>(result.offset);
    if (result.status == pugi::status_no_document_element) {
        fail(XmlFault::noElement, 0);
    } else {
        // Where no tag ends any more, what the parser misses is the rest of the file.
        const bool cutOff = text.find('>', offset + 1) == std::string_view::npos;
        fail(cutOff ? XmlFault::truncated : XmlFault::malformed, cutOff ? text.size() : offset);
    }
}

void TreeWalk::fail(XmlFault fault, std::size_t offset) {
    fault_ = fault;
    faultOffset_ = offset;
    tree_.reset();
}

// Refuses what no score needs and what a careless reader could stumble over.
void TreeWalk::checkTree(std::string_view text) {
    std::size_t roots = 0;
    for (const pugi::xml_node node : tree_.children()) {
        if (node.type() == pugi::node_doctype &&
            std::string_view(node.value()).find("<!ENTITY") != std::string_view::npos) {
            fail(XmlFault::entities, text.find("<!ENTITY"));
            return;
        }
        if (node.type() == pugi::node_element && ++roots > 1) {
            description_ = "a second root element";
            fail(XmlFault::malformed, placeOf(node));
            return;
        }
    }
}

// What the walk passes over is looked at for its depth alone.
void TreeWalk::passOver(const pugi::xml_node& element) {
    const pugi::xml_node child = elementFrom(element.first_child());
    if (!child || fault_ != XmlFault::none) return;
    struct DepthCheck : pugi::xml_tree_walker {
        int above = 0;
        std::size_t tooDeep = 0;
        bool for_each(pugi::xml_node& node) override {
            if (above + depth() >= kMaxDepth && node.type() == pugi::node_element) tooDeep = placeOf(node);
            return tooDeep == 0;
        }
    } check;
    check.above = static_cast<int>(path_.size());
    pugi::xml_node(element).traverse(check);
    if (!check.tooDeep) return;
    fault_ = XmlFault::tooDeep;
    faultOffset_ = check.tooDeep;
}

bool TreeWalk::next(std::size_t level) {
    if (path_.size() > level) {
        if (path_.size() == level + 1 && !entered_) passOver(path_.back());
        path_.resize(level + 1);
        path_.back() = elementFrom(path_.back().next_sibling());
    } else {
        path_.push_back(elementFrom(level == 0 ? tree_.first_child() : path_.back().first_child()));
    }
    entered_ = false;
    if (!path_.back()) {
        path_.pop_back();
        // The element around this level was entered; what is next is its sibling.
        entered_ = true;
        return false;
    }
    tagNumber_ = tagOfTerminated(path_.back().name());
    return true;
}

std::size_t TreeWalk::offset() const {
    return placeOf(path_.back());
}

std::string_view TreeWalk::text() const {
    return trimmed(path_.back().text().get());
}

}  // namespace rovescio::musicxml
