// Changed lists of children, start tags and texts over an unchanged tree.
#include "xml/edits.h"

#include <algorithm>
#include <utility>

#include "xml/characters.h"
#include "xml/decoding.h"

namespace rovescio::xml {

Edits::Edits(const Tree& tree) : tree_(&tree), changeOf_(tree.size()), changes_(1) {}

std::string_view Edits::slice(const Slice& at) const {
    const std::string_view source = tree_->source();
    if (at.begin <= source.size()) return source.substr(at.begin, at.end - at.begin);
    return std::string_view(pool_).substr(at.begin - source.size() - 1, at.end - at.begin);
}

// Places of the pool count on after the source, with one between them so that no stretch joins both.
Slice Edits::keep(std::string_view text) {
    if (text.empty()) return {};
    const auto begin = static_cast<std::uint32_t>(tree_->source().size() + 1 + pool_.size());
    pool_ += text;
    return {begin, begin + static_cast<std::uint32_t>(text.size())};
}

std::string_view Edits::startTag(Node node) const {
    const Change* const change = changeOf(node);
    if (change != nullptr && !change->startTag.empty()) return slice(change->startTag);
    return slice({data(node).begin, data(node).contentBegin});
}

// --- looking ---

std::size_t Edits::place(Node node) const {
    while (node != 0 && data(node).begin > tree_->source().size()) node = data(node).parent;
    return data(node).begin;
}

std::string Edits::text(Node node) const {
    const Change* const change = changeOf(node);
    if (change != nullptr && change->hasList) {
        std::string text;
        for (std::uint32_t i = change->first; i != kNone; i = pieces_[i].next)
            text += decoded(slice(pieces_[i].lead));
        text += decoded(slice(change->tail));
        return std::string(trimmed(text));
    }
    if (node < tree_->size()) return std::string(tree_->text(node));
    const NodeData& at = data(node);
    return at.hasChildren ? std::string()
                          : std::string(trimmed(decoded(slice({at.contentBegin, at.contentEnd}))));
}

bool Edits::says(Node node, std::string_view text) const {
    if (node < tree_->size() && changeOf_[node] == 0) return tree_->text(node) == text;
    return this->text(node) == text;
}

std::string Edits::attribute(Node node, std::string_view name) const {
    const std::string_view tag = startTag(node);
    const AttributePlace place = findAttribute(tag, name);
    if (!place.exists()) return {};
    return decoded(withoutLineEnds(tag.substr(place.valueBegin, place.valueEnd - place.valueBegin)));
}

void Edits::children(Node node, std::vector<Node>& list) const {
    list.clear();
    for (const Node child : children(node)) list.push_back(child);
}

Node Edits::child(Node node, Name name) const {
    for (const Node child : children(node)) {
        if (data(child).name == name) return child;
    }
    return 0;
}

bool Edits::hasChildren(Node node) const {
    const Change* const change = changeOf(node);
    return change != nullptr && change->hasList ? change->first != kNone : data(node).hasChildren;
}

// --- changes ---

// All elements around a change are marked, so that printing finds it.
void Edits::markAround(Node node) {
    for (Node around = data(node).parent; around != 0 && changeOf_[around] == 0;
         around = data(around).parent) {
        changeOf_[around] = static_cast<std::uint32_t>(changes_.size());
        changes_.emplace_back();
    }
}

Edits::Change& Edits::change(Node node) {
    if (changeOf_[node] == 0) {
        markAround(node);
        changeOf_[node] = static_cast<std::uint32_t>(changes_.size());
        changes_.emplace_back();
    }
    return changes_[changeOf_[node]];
}

// The change of an element with a list of its children.
Edits::Change& Edits::listOf(Node parent) {
    Change& list = change(parent);
    if (list.hasList) return list;
    list.hasList = true;
    const NodeData& at = data(parent);
    std::uint32_t reached = at.contentBegin;
    std::uint32_t* link = &list.first;
    for (Node child = at.hasChildren ? parent + 1 : 0; child != 0; child = data(child).next) {
        *link = static_cast<std::uint32_t>(pieces_.size());
        pieces_.push_back({{reached, data(child).begin}, child, kNone});
        link = &pieces_.back().next;
        reached = data(child).end;
    }
    list.tail = {reached, at.contentEnd};
    return list;
}

void Edits::setText(Node node, std::string_view text) {
    openStartTag(node);
    Change& changed = change(node);
    changed.hasList = true;
    changed.first = kNone;
    changed.tail = keep(escaped(text));
}

// The start tag of an element that gets a content must not end the element as well.
void Edits::openStartTag(Node node) {
    const std::string_view tag = startTag(node);
    if (!tag.ends_with("/>")) return;
    std::string open(tag.substr(0, tag.size() - 2));
    while (isSpace(open.back())) open.pop_back();
    replaceStartTag(node, open + ">");
}

void Edits::setAttribute(Node node, std::string_view name, std::string_view value) {
    std::string tag(startTag(node));
    const AttributePlace place = findAttribute(tag, name);
    if (place.exists()) {
        tag.replace(place.valueBegin, place.valueEnd - place.valueBegin, escaped(value));
    } else {
        std::size_t end = tag.size() - (tag.ends_with("/>") ? 2 : 1);
        while (isSpace(tag[end - 1])) --end;
        tag.insert(end, " " + std::string(name) + "=\"" + escaped(value) + "\"");
    }
    replaceStartTag(node, tag);
}

void Edits::removeAttribute(Node node, std::string_view name) {
    const AttributePlace place = findAttribute(startTag(node), name);
    if (!place.exists()) return;
    std::string tag(startTag(node));
    replaceStartTag(node, tag.erase(place.begin, place.end - place.begin));
}

Node Edits::make(std::string_view text) {
    const Slice place = keep(text);
    const Node node = tree_->size() + static_cast<Node>(added_.size());
    if (!tree_->parseFragment(text, place.begin, node, added_)) return 0;
    changeOf_.resize(tree_->size() + added_.size());
    return node;
}

Node Edits::copy(Node original) {
    const Node first = tree_->size() + static_cast<Node>(added_.size());
    const Node shift = first - original;
    Node last = original;  // the last node inside the element
    for (Node child = original; tree_->data(child).hasChildren;) {
        child = child + 1;
        while (tree_->data(child).next != 0) child = tree_->data(child).next;
        last = child;
    }
    for (Node node = original; node <= last; ++node) {
        NodeData copied = tree_->data(node);
        copied.parent = node == original ? 0 : copied.parent + shift;
        copied.next = node == original || copied.next == 0 ? 0 : copied.next + shift;
        added_.push_back(copied);
    }
    changeOf_.resize(tree_->size() + added_.size());
    return first;
}

// The white space at the end of what stands before an element, unless character data stands there.
Slice Edits::indentation(const Slice& lead) const {
    const std::string_view text = slice(lead);
    std::size_t begin = text.size();
    while (begin > 0 && isSpace(text[begin - 1])) --begin;
    if (begin > 0 && text[begin - 1] != '>') return {};
    return {lead.begin + static_cast<std::uint32_t>(begin), lead.end};
}

// The rest of it.
Slice Edits::commentsOf(const Slice& lead) const {
    return {lead.begin, lead.end - static_cast<std::uint32_t>(slice(indentation(lead)).size())};
}

Slice Edits::firstIndentation(Node parent) const {
    const NodeData& at = data(parent);
    if (at.hasChildren) return indentation({at.contentBegin, data(parent + 1).begin});
    return {};
}

// What stands before an element, with the comments that others left to it.
Slice Edits::leadOf(Node node) const {
    const auto changed = leads_.find(node);
    if (changed != leads_.end()) return changed->second;
    if (node >= tree_->size()) return {};
    const NodeData& at = data(node);
    // The number before a first child's is its parent's, another's belongs into the sibling before.
    Node before = node - 1;
    if (before == at.parent) return {data(before).contentBegin, at.begin};
    while (data(before).parent != at.parent) before = data(before).parent;
    return {data(before).end, at.begin};
}

bool Edits::saysSomething(const Slice& lead) const {
    return !trimmed(slice(lead)).empty();
}

void Edits::insertAfter(Node sibling, Node added) {
    const Node parent = data(sibling).parent;
    listOf(parent);
    addedData(added).parent = parent;
    const Change& list = *changeOf(parent);
    for (std::uint32_t i = list.first; i != kNone; i = pieces_[i].next) {
        if (pieces_[i].node != sibling) continue;
        pieces_.push_back({indentation(pieces_[i].lead), added, pieces_[i].next});
        pieces_[i].next = static_cast<std::uint32_t>(pieces_.size() - 1);
        return;
    }
}

void Edits::insertBefore(Node sibling, Node added) {
    const Node parent = data(sibling).parent;
    Change& list = listOf(parent);
    addedData(added).parent = parent;
    const auto made = static_cast<std::uint32_t>(pieces_.size());
    pieces_.push_back({{}, added, kNone});
    std::uint32_t* link = &list.first;
    while (pieces_[*link].node != sibling) link = &pieces_[*link].next;
    pieces_[made].lead = indentation(pieces_[*link].lead);
    pieces_[made].next = std::exchange(*link, made);
}

void Edits::insertFirst(Node parent, Node added) {
    openStartTag(parent);
    Change& list = listOf(parent);
    addedData(added).parent = parent;
    const Slice lead = list.first == kNone ? Slice{} : indentation(pieces_[list.first].lead);
    pieces_.push_back({lead, added, list.first});
    list.first = static_cast<std::uint32_t>(pieces_.size() - 1);
}

void Edits::append(Node parent, Node added) {
    Change& list = listOf(parent);
    if (list.first == kNone) {
        insertFirst(parent, added);
        return;
    }
    std::uint32_t last = list.first;
    while (pieces_[last].next != kNone) last = pieces_[last].next;
    insertAfter(pieces_[last].node, added);
}

void Edits::remove(Node node) {
    Change& list = listOf(data(node).parent);
    std::uint32_t* link = &list.first;
    while (*link != kNone && pieces_[*link].node != node) link = &pieces_[*link].next;
    if (*link == kNone) return;
    const Piece gone = pieces_[*link];
    *link = gone.next;
    // Comments and text before it stay, before what is next.
    const Slice kept = commentsOf(gone.lead);
    if (kept.empty()) return;
    Slice& after = gone.next == kNone ? list.tail : pieces_[gone.next].lead;
    const std::string joined = std::string(slice(kept)) + std::string(slice(after));
    after = keep(joined);
    if (gone.next != kNone) leads_[pieces_[gone.next].node] = after;
}

void Edits::setChildren(Node parent, std::span<const Node> list) {
    openStartTag(parent);
    listOf(parent);
    const Slice usual = firstIndentation(parent);
    for (std::uint32_t i = changeOf(parent)->first; i != kNone; i = pieces_[i].next) {
        const Node node = pieces_[i].node;
        if (!saysSomething(leadOf(node)) || std::ranges::find(list, node) != list.end()) continue;
        strays_[parent].insert(node);
        const auto home = homes_.find(node);
        if (home != homes_.end() && home->second == parent) homes_.erase(home);
    }
    std::uint32_t last = kNone;
    for (const Node node : list) {
        if (node >= tree_->size()) addedData(node).parent = parent;
        const Slice own = leadOf(node);
        const bool commented = saysSomething(own);
        if (commented) homes_[node] = parent;
        pieces_.push_back({commented ? own : usual, node, kNone});
        const auto here = static_cast<std::uint32_t>(pieces_.size() - 1);
        (last == kNone ? changes_[changeOf_[parent]].first : pieces_[last].next) = here;
        last = here;
    }
    if (last == kNone) changes_[changeOf_[parent]].first = kNone;
}

// --- printing ---

// Joins pieces that follow one another in the source before it hands them on.
class Edits::Printer {
  public:
    Printer(const Edits& edits, const ByteSink& sink) : edits_(edits), sink_(sink) {}

    void element(Node node) {
        const NodeData& at = edits_.data(node);
        const Change* const change = edits_.changeOf(node);
        if (change == nullptr) {
            put({at.begin, at.end});
            return;
        }
        put(change->startTag.empty() ? Slice{at.begin, at.contentBegin} : change->startTag);
        if (change->hasList) {
            for (std::uint32_t i = change->first; i != kNone; i = edits_.pieces_[i].next) {
                put(edits_.pieces_[i].lead);
                element(edits_.pieces_[i].node);
            }
            strays(node);
            put(change->tail);
        } else {
            std::uint32_t reached = at.contentBegin;
            for (Node child = at.hasChildren ? node + 1 : 0; child != 0; child = edits_.data(child).next) {
                put({reached, edits_.data(child).begin});
                element(child);
                reached = edits_.data(child).end;
            }
            put({reached, at.contentEnd});
        }
        endTag(node, *change);
    }
    void put(const Slice& piece) {
        if (piece.empty()) return;
        if (piece.begin != pending_.end) flush();
        if (pending_.empty()) pending_.begin = piece.begin;
        pending_.end = piece.end;
    }
    bool finish() {
        flush();
        return fine_;
    }

  private:
    // An element that had no end tag, and has a content now, gets one.
    void endTag(Node node, const Change& change) {
        const NodeData& at = edits_.data(node);
        if (at.contentEnd != at.end) {
            put({at.contentEnd, at.end});
        } else if (!change.startTag.empty() && !edits_.slice(change.startTag).ends_with("/>")) {
            flush();
            send("</" + std::string(edits_.tree_->names().text(at.name)) + ">");
        }
    }
    // Comments of elements that are nowhere any more stay where these were.
    void strays(Node parent) {
        const auto found = edits_.strays_.find(parent);
        if (found == edits_.strays_.end()) return;
        for (const Node stray : found->second) {
            if (!edits_.homes_.contains(stray)) put(edits_.commentsOf(edits_.leadOf(stray)));
        }
    }
    void flush() {
        if (!pending_.empty()) send(edits_.slice(pending_));
        pending_ = {};
    }
    void send(std::string_view bytes) { fine_ = fine_ && sink_(bytes); }

    const Edits& edits_;
    const ByteSink& sink_;
    Slice pending_;
    bool fine_ = true;
};

bool Edits::print(const ByteSink& sink) const {
    Printer printer(*this, sink);
    const NodeData& root = tree_->data(tree_->root());
    printer.put({0, root.begin});
    printer.element(tree_->root());
    printer.put({root.end, static_cast<std::uint32_t>(tree_->source().size())});
    return printer.finish();
}

std::string Edits::print(Node node) const {
    std::string text;
    const ByteSink sink = [&](std::string_view piece) {
        text += piece;
        return true;
    };
    Printer printer(*this, sink);
    printer.element(node);
    printer.finish();
    return text;
}

}  // namespace rovescio::xml
