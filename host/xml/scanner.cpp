#include "xml/scanner.h"

#include <algorithm>
#include <utility>

namespace rovescio::xml {

using Kind = ParseFault::Kind;

namespace {

struct Predefined {
    std::string_view text;
    char character;
};
constexpr Predefined kPredefined[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};

// The value of a digit; 16 for what is none.
unsigned digitOf(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
    return 16;
}

bool isXml(std::string_view target) {
    return target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' &&
           (target[2] | 0x20) == 'l';
}

Reference characterReferenceAt(std::string_view text) {
    const bool hexadecimal = text.size() > 2 && text[2] == 'x';
    const unsigned base = hexadecimal ? 16 : 10;
    const std::size_t digits = hexadecimal ? 3 : 2;
    std::size_t at = digits;
    std::uint32_t character = 0;
    for (; at < text.size() && digitOf(text[at]) < base; ++at) {
        character = std::min(character * base + digitOf(text[at]), 0x110000U);
    }
    const bool isClosed = at > digits && at < text.size() && text[at] == ';';
    if (!isClosed || !isLegalCharacter(character)) return {};
    return {at + 1, character};
}

}  // namespace

std::string shown(std::string_view text) {
    constexpr std::size_t kMost = 40;
    std::string result(text.substr(0, kMost));
    if (text.size() > kMost) {
        // No character is cut in two.
        std::size_t size = kMost;
        while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
        result.resize(size);
        result += "...";
    }
    std::replace_if(
        result.begin(), result.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return result;
}

Reference referenceAt(std::string_view text) {
    if (text.starts_with("&#")) return characterReferenceAt(text);
    for (const Predefined& known : kPredefined) {
        if (text.starts_with(known.text)) {
            return {known.text.size(), static_cast<unsigned char>(known.character)};
        }
    }
    return {};
}

const char* Scanner::fail(Kind kind, const char* place, std::string description) {
    fault_.kind = kind;
    fault_.offset = static_cast<std::size_t>(place - begin_);
    fault_.description = std::move(description);
    return nullptr;
}

const char* Scanner::truncated(std::string_view thing) {
    return fail(Kind::truncated, end_, "the text ends inside " + std::string(thing));
}

const char* Scanner::comment(const char* p) {
    const std::string_view rest(p, static_cast<std::size_t>(end_ - p));
    const std::size_t dashes = rest.find("--");
    if (dashes == std::string_view::npos || dashes + 2 == rest.size()) return truncated("a comment");
    if (rest[dashes + 2] != '>') return malformed(p + dashes, "a comment contains --");
    return p + dashes + 3;
}

const char* Scanner::instruction(const char* p) {
    const char* const q = nameEnd(p, end_);
    if (q == end_) return truncated("a processing instruction");
    if (q == p) return malformed(p, "a processing instruction has no name");
    const std::string_view target(p, static_cast<std::size_t>(q - p));
    if (isXml(target)) {
        return malformed(p - 2, "an XML declaration may occur only at the very start");
    }
    const std::string_view rest(q, static_cast<std::size_t>(end_ - q));
    const std::size_t close = rest.find("?>");
    if (close != 0 && !isSpace(*q) && rest != "?") {
        return malformed(
            q, "the name of the processing instruction " + shown(target) + " is not followed by white space");
    }
    if (close == std::string_view::npos) return truncated("a processing instruction");
    return q + close + 2;
}

const char* Scanner::reference(const char* p) {
    const std::string_view rest(p, static_cast<std::size_t>(end_ - p));
    const Reference found = referenceAt(rest);
    if (found.length != 0) return p + found.length;
    const bool ofCharacter = rest.starts_with("&#");
    const char* const last = ofCharacter ? tokenEnd(p + 2, end_) : nameEnd(p + 1, end_);
    if (last == end_) return truncated("a reference");
    if (*last != ';' || last == p + 1) return malformed(p, "the character & does not begin a reference");
    const std::string whole = shown({p, static_cast<std::size_t>(last + 1 - p)});
    if (ofCharacter) return malformed(p, "the reference " + whole + " does not stand for a legal character");
    return malformed(p, "the reference " + whole + " is not defined");
}

const char* Scanner::miscellany(const char* p) {
    while (p != nullptr) {
        p = skipSpace(p, end_);
        if (startsWith(p, "<!--")) {
            p = comment(p + 4);
        } else if (startsWith(p, "<?")) {
            p = instruction(p + 2);
        } else {
            return p;
        }
    }
    return nullptr;
}

const char* Scanner::attributeValue(const char* p) {
    const char quote = *p;
    const char* q = p + 1;
    for (;;) {
        while (q != end_ && !isOf(*q, kEndsValue)) ++q;
        if (q == end_) return truncated("an attribute");
        if (*q == quote) return q + 1;
        if (*q == '<') return malformed(q, "an attribute's value contains <");
        if (*q != '&') {
            ++q;
            continue;
        }
        q = reference(q);
        if (q == nullptr) return nullptr;
    }
}

const char* Scanner::name(const char* p, std::string_view thing) {
    const char* const q = nameEnd(p, end_);
    if (q == end_) return truncated(thing);
    if (q == p) return malformed(p, "a name is missing in " + std::string(thing));
    return q;
}

const char* Scanner::space(const char* p, std::string_view thing) {
    if (p == end_) return truncated(thing);
    if (!isSpace(*p)) return malformed(p, "white space is missing in " + std::string(thing));
    return skipSpace(p, end_);
}

const char* Scanner::expect(const char* p, std::string_view literal, std::string_view thing) {
    if (startsWith(p, literal)) return p + literal.size();
    const std::string_view rest(p, static_cast<std::size_t>(end_ - p));
    if (literal.starts_with(rest)) return truncated(thing);
    return malformed(p, std::string(literal) + " is missing in " + std::string(thing));
}

}  // namespace rovescio::xml
