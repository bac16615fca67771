#include "xml/parser.h"

#include <algorithm>
#include <string>
#include <utility>

#include "xml/bytes.h"
#include "xml/doctype.h"

namespace rovescio::xml {

namespace {

using Kind = ParseFault::Kind;

constexpr std::string_view kDeclaration = "the XML declaration";

std::string_view between(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

bool isAlphanumeric(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isVersion(std::string_view value) {
    return value.size() > 2 && value.starts_with("1.") &&
           value.find_first_not_of("0123456789", 2) == std::string_view::npos;
}

bool isEncoding(std::string_view value) {
    return !value.empty() && isAlphanumeric(value[0]) && !(value[0] >= '0' && value[0] <= '9') &&
           std::all_of(value.begin(), value.end(),
                       [](char c) { return isAlphanumeric(c) || c == '.' || c == '_' || c == '-'; });
}

bool isStandalone(std::string_view value) {
    return value == "yes" || value == "no";
}

ParseFault illegalCharacter(std::string_view text, std::size_t offset) {
    const auto byte = static_cast<unsigned char>(text[offset]);
    const bool isControl = byte < 0x20;
    return {Kind::malformed, offset,
            isControl ? "there is a control character" : "there are bytes that are not a character"};
}

}  // namespace

bool looksLikeXml(std::string_view text) {
    constexpr std::size_t kNear = 1000;
    const char* const end = text.data() + text.size();
    const char* const p = skipSpace(text.data(), end);
    if (p == end || *p != '<' || p + 1 == end) return text.substr(0, kNear).find("<?xml ") != text.npos;
    return p[1] == '?' || p[1] == '!' || isOf(p[1], kNameStart | kHigh);
}

ParseFault firstFault(const ParseFault& found, std::string_view text, std::size_t legal) {
    if (legal == text.size()) return found;
    if (found.kind != Kind::none && found.offset < legal) return found;
    const bool isCut = found.kind == Kind::truncated && isCutCharacter(text.substr(legal));
    return isCut ? found : illegalCharacter(text, legal);
}

Parser::Parser(std::string_view text, const Limits& limits, const Names& names, Names* growing,
               ParseTarget target, ParseWatcher* watcher)
    : scanner_(text),
      end_(scanner_.end()),
      limits_(limits),
      names_(names),
      growing_(growing),
      target_(target),
      watcher_(watcher),
      settled_(scanner_.begin()),
      settledNodes_(target.nodes.size()),
      shift_(target.first - static_cast<Node>(target.nodes.size())),
      followers_(growing == nullptr ? 0 : names.size()) {}

bool Parser::document() {
    const char* p = prolog(scanner_.begin());
    if (p != nullptr) p = element(p);
    return p != nullptr && epilog(p);
}

bool Parser::fragment() {
    const char* const p = scanner_.begin();
    return p != end_ && *p == '<' && element(p) == end_;
}

const char* Parser::prolog(const char* p) {
    constexpr std::string_view kStart = "<?xml";
    if (scanner_.startsWith(p, kStart) && nameEnd(p + 2, end_) == p + kStart.size()) p = xmlDeclaration(p);
    if (p != nullptr) p = scanner_.miscellany(p);
    constexpr std::string_view kDocumentType = "<!DOCTYPE";
    if (p != nullptr && scanner_.startsWith(p, kDocumentType)) {
        p = readDocumentType(scanner_, p + kDocumentType.size());
        if (p != nullptr) p = scanner_.miscellany(p);
    }
    if (p == nullptr) return nullptr;
    if (p == end_) return scanner_.fail(Kind::noElement, p, "the text has no element");
    if (*p != '<') return scanner_.malformed(p, "there is text before the first element");
    return p;
}

const char* Parser::xmlDeclaration(const char* p) {
    p += 5;
    if (skipSpace(p, end_) == p) return scanner_.space(p, kDeclaration);
    const char* q = pseudoAttribute(p, "version", isVersion);
    if (q == p) return scanner_.expect(skipSpace(p, end_), "version", kDeclaration);
    if (q != nullptr) q = pseudoAttribute(q, "encoding", isEncoding);
    if (q != nullptr) q = pseudoAttribute(q, "standalone", isStandalone);
    return q == nullptr ? nullptr : scanner_.expect(skipSpace(q, end_), "?>", kDeclaration);
}

// Returns p when there is none of that name.
const char* Parser::pseudoAttribute(const char* p, std::string_view name, bool (*isValid)(std::string_view)) {
    const char* q = skipSpace(p, end_);
    if (q == p) return p;
    if (!scanner_.startsWith(q, name)) {
        return q != end_ && name.starts_with(between(q, end_)) ? scanner_.truncated(kDeclaration) : p;
    }
    q = scanner_.expect(skipSpace(q + name.size(), end_), "=", kDeclaration);
    if (q == nullptr) return nullptr;
    q = skipSpace(q, end_);
    if (q == end_) return scanner_.truncated(kDeclaration);
    if (*q != '"' && *q != '\'') return scanner_.expect(q, "\"", kDeclaration);
    const char* const close = std::find(q + 1, end_, *q);
    if (close == end_) return scanner_.truncated(kDeclaration);
    if (isValid(between(q + 1, close))) return close + 1;
    return scanner_.malformed(
        q + 1, "the XML declaration has the " + std::string(name) + " " + shown(between(q + 1, close)));
}

bool Parser::rest(std::size_t offset) {
    depth_ = target_.nodes.size() - 1;
    current_ = static_cast<Node>(depth_);
    settle(scanner_.begin() + offset);
    const char* const p = contents(settled_);
    return p != nullptr && epilog(p);
}

const char* Parser::element(const char* p) {
    p = startTag(p);
    return p == nullptr ? nullptr : contents(p);
}

// What follows inside of the elements that are open, to the end of the outermost.
const char* Parser::contents(const char* p) {
    while (p != nullptr && current_ != 0) {
        p = characterData(p);
        if (p != nullptr) p = markup(p);
    }
    return p;
}

// From a '<' inside an element.
const char* Parser::markup(const char* p) {
    if (p + 1 == end_) return truncatedElement();
    if (p[1] == '/') return endTag(p);
    return p[1] == '!' || p[1] == '?' ? dataMarkup(p) : startTag(p);
}

const char* Parser::dataMarkup(const char* p) {
    node(current_).isPlain = false;
    if (p[1] == '?') return scanner_.instruction(p + 2);
    if (scanner_.startsWith(p, "<!--")) return scanner_.comment(p + 4);
    constexpr std::string_view kSection = "<![CDATA[";
    if (!scanner_.startsWith(p, kSection)) return noTag(p);
    const std::string_view rest = between(p + kSection.size(), end_);
    const std::size_t close = rest.find("]]>");
    if (close == std::string_view::npos) return scanner_.truncated("a CDATA section");
    return rest.data() + close + 3;
}

// A '<' that does not begin anything allowed here.
const char* Parser::noTag(const char* p) {
    const std::string_view rest = between(p, end_);
    for (const std::string_view known : {"<!--", "<![CDATA[", "<!DOCTYPE"}) {
        if (known.starts_with(rest)) return truncatedElement();
    }
    if (rest.starts_with("<!DOCTYPE")) {
        return scanner_.malformed(p, "a document type declaration may occur only once, before the elements");
    }
    return scanner_.malformed(p, "the character < does not begin a tag");
}

const char* Parser::startTag(const char* p) {
    Name name = 0;
    const char* q = elementName(p, name);
    if (q == nullptr) return nullptr;
    if (nextNumber() >= target_.first + limits_.elements) {
        return tooLarge(p, "there are more elements than " + std::to_string(limits_.elements));
    }
    if (depth_ >= limits_.depth) {
        return tooLarge(p, "elements are nested more than " + std::to_string(limits_.depth) + " deep");
    }
    NodeData& opened = open(p, name);
    if (*q != '>') {
        q = attributes(q);
        if (q == nullptr) return nullptr;
    }
    const bool isEmpty = *q == '/';
    q += isEmpty ? 2 : 1;
    opened.contentBegin = placeOf(q);
    if (watcher_ != nullptr && depth_ < watcher_->depth()) {
        watcher_->opened(current_);
        settle(q);
    }
    if (isEmpty) close(q, q);
    return q;
}

// From the '<'. Mostly an element is followed by the one that followed its namesake before.
const char* Parser::elementName(const char* p, Name& name) {
    const char* q = p + 1;
    if (!followers_.empty()) {
        const std::string_view guess = names_.text(name = followers_[lastName_]);
        if (static_cast<std::size_t>(end_ - q) > guess.size() && !isOf(q[guess.size()], kNameRest | kHigh) &&
            areSame(guess.data(), q, guess.size())) {
            lastName_ = name;
            return q + guess.size();
        }
    }
    q = nameEnd(q, end_);
    if (q == end_) return scanner_.truncated("a tag");
    if (q == p + 1) return noTag(p);
    if (!numberOf(between(p + 1, q), name)) {
        return tooLarge(p, "there are more element names than " + std::to_string(Names::kMost));
    }
    if (growing_ != nullptr) {
        followers_.resize(names_.size());
        followers_[lastName_] = name;
        lastName_ = name;
    }
    return q;
}

NodeData& Parser::open(const char* p, Name name) {
    const Node number = nextNumber();
    if (current_ != 0) {
        NodeData& parent = node(current_);
        if (parent.hasChildren) node(parent.next).next = number;
        parent.hasChildren = true;
        parent.next = number;
    }
    NodeData& opened = target_.nodes.emplace_back();
    opened.begin = placeOf(p);
    opened.parent = current_;
    opened.name = name;
    current_ = number;
    ++depth_;
    return opened;
}

void Parser::close(const char* contentEnd, const char* end) {
    NodeData& closed = node(current_);
    closed.contentEnd = placeOf(contentEnd);
    closed.end = placeOf(end);
    closed.next = 0;
    if (watcher_ != nullptr && depth_ <= watcher_->depth()) return closeWatched(end);
    current_ = closed.parent;
    --depth_;
}

// Drops an element that is complete and that someone has looked at.
void Parser::closeWatched(const char* end) {
    const Node closed = current_;
    if (depth_ == watcher_->depth()) watcher_->closed(closed);
    current_ = node(closed).parent;
    target_.nodes.resize(closed - shift_);
    if (current_ != 0) node(current_).hasChildren = false;
    --depth_;
    settle(end);
}

void Parser::settle(const char* p) {
    settled_ = p;
    settledNodes_ = target_.nodes.size();
}

// The place of the '>' or "/>".
const char* Parser::attributes(const char* p) {
    attributesOfTag_ = 0;
    for (;;) {
        const char* const q = skipSpace(p, end_);
        if (q == end_) return scanner_.truncated("a tag");
        if (*q == '>') return q;
        if (*q == '/') {
            if (q + 1 == end_) return scanner_.truncated("a tag");
            if (q[1] == '>') return q;
            return scanner_.malformed(
                q, "the character / does not end the tag <" + shown(nameOf(current_)) + ">");
        }
        if (q == p) {
            return scanner_.malformed(q,
                                      "white space is missing in the tag <" + shown(nameOf(current_)) + ">");
        }
        p = attribute(q);
        if (p == nullptr) return nullptr;
    }
}

const char* Parser::attribute(const char* p) {
    const char* q = nameEnd(p, end_);
    if (q == end_) return scanner_.truncated("a tag");
    const auto inTag = [this] { return " in the tag <" + shown(nameOf(current_)) + ">"; };
    if (q == p) return scanner_.malformed(p, "the name of an attribute is missing" + inTag());
    const std::string_view name = between(p, q);
    if (attributes_ >= limits_.attributes) {
        return tooLarge(p, "there are more attributes than " + std::to_string(limits_.attributes));
    }
    if (attributesOfTag_ >= limits_.attributesOfElement) {
        return tooLarge(p,
                        "an element has more attributes than " + std::to_string(limits_.attributesOfElement));
    }
    if (!isNewAttribute(name)) {
        return scanner_.malformed(p, "the attribute " + shown(name) + " occurs twice" + inTag());
    }
    ++attributes_;
    if (*q != '=') q = skipSpace(q, end_);
    if (q == end_) return scanner_.truncated("a tag");
    if (*q != '=') return scanner_.malformed(q, "the attribute " + shown(name) + " has no value" + inTag());
    q = skipSpace(q + 1, end_);
    if (q == end_) return scanner_.truncated("a tag");
    if (*q != '"' && *q != '\'') {
        return scanner_.malformed(q,
                                  "the value of the attribute " + shown(name) + " is not quoted" + inTag());
    }
    return scanner_.attributeValue(q);
}

bool Parser::isNewAttribute(std::string_view name) {
    const std::size_t few = std::min(attributesOfTag_, few_.size());
    for (std::size_t i = 0; i < few; ++i) {
        if (areSame(few_[i], name)) return false;
    }
    if (attributesOfTag_ < few_.size()) {
        few_[attributesOfTag_] = name;
    } else {
        if (attributesOfTag_ == few_.size()) others_.clear();
        if (!others_.insert(name).second) return false;
    }
    ++attributesOfTag_;
    return true;
}

const char* Parser::endTag(const char* p) {
    const std::string_view name = nameOf(current_);
    const char* q = p + 2;
    if (static_cast<std::size_t>(end_ - q) <= name.size() || !areSame(name.data(), q, name.size())) {
        return wrongEndTag(p);
    }
    q += name.size();
    if (*q != '>') {
        q = skipSpace(q, end_);
        if (q == end_ || *q != '>') return wrongEndTag(p);
    }
    close(p, q + 1);
    return q + 1;
}

const char* Parser::wrongEndTag(const char* p) {
    const char* const q = nameEnd(p + 2, end_);
    const char* const behind = skipSpace(q, end_);
    if (behind == end_) return scanner_.truncated("an end tag");
    if (q == p + 2) return scanner_.malformed(p, "an end tag has no name");
    const std::string_view name = between(p + 2, q);
    const std::string_view expected = nameOf(current_);
    if (name == expected) {
        return scanner_.malformed(behind, "the end tag </" + shown(name) + "> is not closed");
    }
    return scanner_.malformed(
        p, "the end tag </" + shown(name) + "> does not belong to <" + shown(expected) + ">");
}

// Up to the next '<'.
const char* Parser::characterData(const char* p) {
    for (;;) {
        p = findMarkup(p, end_);
        if (p == end_) return truncatedElement();
        if (*p == '<') return p;
        if (*p == '&') {
            node(current_).isPlain = false;
            p = scanner_.reference(p);
            if (p == nullptr) return nullptr;
            continue;
        }
        // Before the first character data stands the end of markup, so that these two bytes are there.
        if (p[-1] == ']' && p[-2] == ']') return scanner_.malformed(p - 2, "character data contains ]]>");
        ++p;
    }
}

bool Parser::epilog(const char* p) {
    p = scanner_.miscellany(p);
    if (p == nullptr) return false;
    if (p == end_) return true;
    if (*p != '<') {
        scanner_.malformed(p, "there is text after the last element");
    } else if (nameEnd(p + 1, end_) != p + 1) {
        scanner_.malformed(p, "there is a second element after the root element");
    } else {
        noTag(p);
    }
    return false;
}

bool Parser::numberOf(std::string_view name, Name& number) const {
    return growing_ != nullptr ? growing_->intern(name, number) : names_.find(name, number);
}

const char* Parser::tooLarge(const char* p, std::string description) {
    return scanner_.fail(Kind::tooLarge, p, std::move(description));
}

const char* Parser::truncatedElement() {
    if (current_ == 0) return scanner_.truncated("a tag");
    return scanner_.truncated("<" + shown(nameOf(current_)) + ">");
}

}  // namespace rovescio::xml
