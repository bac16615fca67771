// Places of tags and attributes in XML text.
#include "musicxml/text_walk.h"

#include <algorithm>
#include <pugixml.hpp>

#include "musicxml/numbers.h"
#include "musicxml/tag_names.h"

namespace rovescio::musicxml {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

bool endsName(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '>' || c == '/' || c == '=';
}

// The first character from here on that has a property; tags are short, so each is looked at.
template <class Property>
std::size_t findFirst(std::string_view text, std::size_t from, Property&& property) {
    while (from < text.size() && !property(text[from])) ++from;
    return from;
}

// The next place of a character. In a score it is mostly near, nearer than a search for far ones pays off.
std::size_t findNear(std::string_view text, std::size_t from, char wanted) {
    constexpr std::size_t kNear = 24;
    const std::size_t last = std::min(text.size(), from + kNear);
    for (; from < last; ++from) {
        if (text[from] == wanted) return from;
    }
    return text.find(wanted, from);
}

// The '>' that ends a tag; one inside a quoted value does not count.
std::size_t tagEnd(std::string_view text, std::size_t from) {
    const auto isMark = [](char c) { return c == '>' || c == '"' || c == '\''; };
    std::size_t at = findFirst(text, from, isMark);
    while (at < text.size() && text[at] != '>') {
        const std::size_t closing = text.find(text[at], at + 1);
        at = closing == std::string_view::npos ? text.size() : findFirst(text, closing + 1, isMark);
    }
    return at;
}

}  // namespace

void TextWalk::restart(std::size_t offset) {
    next_ = offset;
    open_ = 0;
    atEmpty_ = false;
}

std::size_t TextWalk::findTag() const {
    std::size_t begin = findNear(text_, next_, '<');
    while (begin != std::string_view::npos && (text_[begin + 1] == '!' || text_[begin + 1] == '?')) {
        const std::string_view rest = text_.substr(begin);
        const std::string_view mark = rest.starts_with("<!--") ? "-->"
                                      : rest.starts_with("<?") ? "?>"
                                                               : "]]>";
        const std::size_t end = text_.find(mark, begin);
        begin = end == std::string_view::npos ? end : text_.find('<', end);
    }
    return begin;
}

TextWalk::Tag TextWalk::nextTag() {
    const std::size_t begin = findTag();
    if (begin == std::string_view::npos) return Tag::none;
    if (text_[begin + 1] == '/') {
        closeBegin_ = begin;
        next_ = findNear(text_, begin + 2, '>') + 1;
        --open_;
        return Tag::close;
    }
    const std::size_t nameEnd = findFirst(text_, begin + 1, endsName);
    const std::size_t end = tagEnd(text_, nameEnd);
    if (end >= text_.size()) return Tag::none;
    name_ = text_.substr(begin + 1, nameEnd - begin - 1);
    next_ = end + 1;
    element_ = {begin, next_, next_, next_};
    atEmpty_ = text_[end - 1] == '/';
    if (atEmpty_) return Tag::empty;
    ++open_;
    return Tag::open;
}

bool TextWalk::next(std::size_t level) {
    if (level == kNoChildren) return false;
    while (open_ >= level) {
        const std::size_t depth = open_;
        const Tag found = nextTag();
        if (found == Tag::none) return false;
        if (found != Tag::close && depth == level) {
            tagNumber_ = tag(name_);
            return true;
        }
        // The element that the walk started at has ended.
        if (open_ == 0) return false;
    }
    return false;
}

std::string_view TextWalk::attribute(std::string_view name) const {
    return findAttribute(text_, element_.begin, name).value;
}

Element TextWalk::whole() {
    Element element = element_;
    if (atEmpty_) return element;
    const std::size_t level = open_;
    while (next(level)) {
    }
    complete(element);
    return element;
}

std::string TextWalk::value() {
    return valueOf(text_, whole());
}

void TextWalk::complete(Element& element) const {
    element.contentEnd = closeBegin_;
    element.end = next_;
}

Attribute findAttribute(std::string_view text, std::size_t begin, std::string_view name) {
    std::size_t next = findFirst(text, begin + 1, endsName);
    while (true) {
        const auto isNoSpace = [](char c) { return !isSpace(c); };
        const std::size_t nameBegin = findFirst(text, next, isNoSpace);
        if (text[nameBegin] == '>' || text[nameBegin] == '/') return {};
        const std::size_t nameEnd = findFirst(text, nameBegin, endsName);
        const std::size_t quote = findFirst(text, nameEnd, [](char c) { return c == '"' || c == '\''; });
        const std::size_t closing = text.find(text[quote], quote + 1);
        const Attribute attribute{next, closing + 1, text.substr(quote + 1, closing - quote - 1)};
        if (text.substr(nameBegin, nameEnd - nameBegin) == name) return attribute;
        next = attribute.end;
    }
}

std::string valueOf(std::string_view text, const Element& element) {
    const std::string_view content =
        text.substr(element.contentBegin, element.contentEnd - element.contentBegin);
    if (content.find_first_of("<&") == std::string_view::npos) return std::string(trimmed(content));
    // References, comments and marked sections are rare in values.
    pugi::xml_document parsed;
    parsed.load_buffer(content.data(), content.size(), pugi::parse_default | pugi::parse_fragment,
                       pugi::encoding_utf8);
    return std::string(trimmed(parsed.text().get()));
}

}  // namespace rovescio::musicxml
