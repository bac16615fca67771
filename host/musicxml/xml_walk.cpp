// Tags, character data and balance of XML text.
#include "musicxml/xml_walk.h"

#include "musicxml/numbers.h"
#include "musicxml/tag_names.h"
#include "musicxml/xml_references.h"

namespace rovescio::musicxml {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

bool endsName(char c) {
    return isSpace(c) || c == '>' || c == '/' || c == '=' || c == '<';
}

bool beginsName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
           static_cast<unsigned char>(c) >= 0x80;
}

// The '>' that ends a tag; one inside a quoted value does not count. The size
// of the text when there is none.
std::size_t tagEnd(std::string_view text, std::size_t from) {
    char quote = '\0';
    for (std::size_t i = from; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != '\0') {
            if (c == quote) quote = '\0';
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return i;
        }
    }
    return text.size();
}

}  // namespace

void XmlWalk::restart(std::size_t offset) {
    next_ = offset;
    open_.clear();
    atEmpty_ = false;
}

void XmlWalk::fail(XmlFault fault, std::size_t offset) {
    if (fault_ != XmlFault::none) return;
    fault_ = fault;
    faultOffset_ = offset;
}

bool XmlWalk::skipBehind(std::size_t begin, std::string_view mark) {
    const std::size_t found = text_.find(mark, begin);
    if (found == std::string_view::npos) {
        fail(XmlFault::truncated, text_.size());
        return false;
    }
    next_ = found + mark.size();
    return true;
}

// A document type may hold declarations between brackets, which scores have no
// use for. Entities among them are refused: they can expand without bound.
bool XmlWalk::skipDocumentType(std::size_t begin) {
    const std::size_t mark = text_.find_first_of("[>", begin);
    if (mark == std::string_view::npos || text_[mark] == '>') return skipBehind(begin, ">");
    if (!skipBehind(mark, "]")) return false;
    const std::size_t entity = text_.substr(0, next_).find("<!ENTITY", mark);
    if (entity != std::string_view::npos) {
        fail(XmlFault::entities, entity);
        return false;
    }
    return skipBehind(next_, ">");
}

// Comments, character data, processing instructions and the document type.
bool XmlWalk::skipSpecial(std::size_t begin) {
    const std::string_view rest = text_.substr(begin);
    if (rest.starts_with("<!--")) return skipBehind(begin + 4, "-->");
    if (rest.starts_with("<?")) return skipBehind(begin + 2, "?>");
    if (rest.starts_with("<![CDATA[")) return skipBehind(begin, "]]>");
    if (rest.starts_with("<!DOCTYPE") && open_.empty()) return skipDocumentType(begin);
    fail(XmlFault::badTag, begin);
    return false;
}

bool XmlWalk::closeElement(std::size_t begin) {
    const std::size_t nameBegin = begin + 2;
    if (open_.empty()) {
        fail(XmlFault::badTag, begin);
        return false;
    }
    const std::string_view name = open_.back();
    std::size_t end = nameBegin + name.size();
    if (text_.substr(nameBegin, name.size()) != name) {
        // A cut inside of the end tag is a cut, not a mismatch.
        const bool cut = text_.find('>', nameBegin) == std::string_view::npos;
        faultName_ = name;
        fail(cut ? XmlFault::truncated : XmlFault::mismatch, cut ? text_.size() : begin);
        return false;
    }
    while (end < text_.size() && isSpace(text_[end])) ++end;
    if (end >= text_.size() || text_[end] != '>') {
        faultName_ = name;
        fail(end >= text_.size() ? XmlFault::truncated : XmlFault::mismatch, begin);
        return false;
    }
    open_.pop_back();
    closeBegin_ = begin;
    next_ = end + 1;
    return true;
}

XmlWalk::Tag XmlWalk::nextTag() {
    if (fault_ != XmlFault::none) return Tag::none;
    std::size_t begin = 0;
    while (true) {
        begin = text_.find('<', next_);
        if (begin == std::string_view::npos || begin + 1 >= text_.size()) {
            if (!open_.empty() || begin != std::string_view::npos) fail(XmlFault::truncated, text_.size());
            next_ = text_.size();
            return Tag::none;
        }
        if (text_[begin + 1] != '!' && text_[begin + 1] != '?') break;
        if (!skipSpecial(begin)) return Tag::none;
    }
    if (text_[begin + 1] == '/') return closeElement(begin) ? Tag::close : Tag::none;
    if (!beginsName(text_[begin + 1])) {
        fail(XmlFault::badTag, begin);
        return Tag::none;
    }
    std::size_t nameEnd = begin + 1;
    while (nameEnd < text_.size() && !endsName(text_[nameEnd])) ++nameEnd;
    const std::size_t end = tagEnd(text_, nameEnd);
    if (end == text_.size()) {
        fail(XmlFault::truncated, text_.size());
        return Tag::none;
    }
    name_ = text_.substr(begin + 1, nameEnd - begin - 1);
    element_.begin = begin;
    element_.contentBegin = element_.contentEnd = element_.end = next_ = end + 1;
    atEmpty_ = text_[end - 1] == '/';
    if (atEmpty_) return Tag::empty;
    if (open_.size() >= kMaxDepth) {
        fail(XmlFault::tooDeep, begin);
        return Tag::none;
    }
    open_.push_back(name_);
    return Tag::open;
}

bool XmlWalk::next(std::size_t level) {
    if (level == kNoChildren) return false;
    while (open_.size() >= level) {
        const std::size_t depth = open_.size();
        switch (nextTag()) {
            case Tag::open:
            case Tag::empty:
                if (depth != level) break;
                tagNumber_ = tag(name_);
                return true;
            case Tag::close:
                break;
            case Tag::none:
                return false;
        }
    }
    return false;
}

std::string_view XmlWalk::attribute(std::string_view name) {
    return resolve(findAttribute(text_, element_.begin, name).value);
}

std::string_view XmlWalk::text() {
    if (atEmpty_) return {};
    const std::size_t begin = element_.contentBegin;
    const std::size_t end = text_.find('<', begin);
    if (end != std::string_view::npos && text_.substr(end).starts_with("</")) {
        if (!closeElement(end)) return {};
        return resolve(trimmed(text_.substr(begin, end - begin)));
    }
    // Comments, marked sections or elements inside a value are rare.
    const Element element = whole();
    return resolved_.emplace_back(valueOf(text_, element));
}

Element XmlWalk::whole() {
    Element element = element_;
    if (atEmpty_) return element;
    const std::size_t level = open_.size();
    while (next(level)) {
    }
    complete(element);
    return element;
}

void XmlWalk::complete(Element& element) const {
    element.contentEnd = closeBegin_;
    element.end = next_;
}

void XmlWalk::finish() {
    while (next(0)) fail(XmlFault::badTag, element_.begin);
}

// Most values have no references and are given as they stand.
std::string_view XmlWalk::resolve(std::string_view raw) {
    if (raw.find('&') == std::string_view::npos) return raw;
    return resolved_.emplace_back(resolveReferences(raw));
}

Attribute findAttribute(std::string_view text, std::size_t begin, std::string_view name) {
    std::size_t next = begin + 1;
    const auto skip = [&](auto&& condition) {
        while (next < text.size() && condition(text[next])) ++next;
    };
    skip([](char c) { return !endsName(c); });
    while (next < text.size()) {
        Attribute attribute;
        attribute.begin = next;
        skip(isSpace);
        const std::size_t nameBegin = next;
        skip([](char c) { return !endsName(c); });
        const std::string_view found = text.substr(nameBegin, next - nameBegin);
        skip(isSpace);
        if (found.empty() || next >= text.size() || text[next] != '=') break;
        ++next;
        skip(isSpace);
        if (next >= text.size() || (text[next] != '"' && text[next] != '\'')) break;
        const std::size_t closing = text.find(text[next], next + 1);
        if (closing == std::string_view::npos) break;
        attribute.value = text.substr(next + 1, closing - next - 1);
        attribute.end = next = closing + 1;
        if (found == name) return attribute;
    }
    return {};
}

std::string valueOf(std::string_view text, const Element& element) {
    const std::string_view content =
        text.substr(element.contentBegin, element.contentEnd - element.contentBegin);
    if (content.find_first_of("<&") == std::string_view::npos) return std::string(trimmed(content));
    return characterData(content);
}

}  // namespace rovescio::musicxml
