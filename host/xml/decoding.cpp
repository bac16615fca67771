#include "xml/decoding.h"

#include <algorithm>

#include "xml/scanner.h"
#include "xml/tree.h"

namespace rovescio::xml {

namespace {

constexpr std::string_view kSection = "<![CDATA[";

// The size of the markup at the start of text; 1 for a '<' that begins none.
std::size_t markupSize(std::string_view text) {
    const std::string_view close = text.starts_with(kSection) ? "]]>"
                                   : text.starts_with("<!--") ? "-->"
                                   : text.starts_with("<?")   ? "?>"
                                                              : "";
    if (close.empty()) return 1;
    const std::size_t at = text.find(close, text.starts_with("<!--") ? 4 : 2);
    return at == std::string_view::npos ? text.size() : at + close.size();
}

}  // namespace

std::string decoded(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t plain = std::min(text.find_first_of("&<"), text.size());
        result += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) break;
        if (text[0] == '&') {
            const Reference reference = referenceAt(text);
            if (reference.length == 0) {
                result += '&';
            } else {
                appendUtf8(result, reference.character);
            }
            text.remove_prefix(std::max<std::size_t>(reference.length, 1));
            continue;
        }
        const std::size_t size = markupSize(text);
        if (size == 1) result += '<';
        if (text.starts_with(kSection)) {
            const std::size_t close = text.substr(0, size).ends_with("]]>") ? 3 : 0;
            result += text.substr(kSection.size(), size - kSection.size() - close);
        }
        text.remove_prefix(size);
    }
    return result;
}

std::string escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            case '\'':
                result += "&apos;";
                break;
            // A reader would make a space or a line end of these.
            case '\t':
                result += "&#9;";
                break;
            case '\n':
                result += "&#10;";
                break;
            case '\r':
                result += "&#13;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string withoutLineEnds(std::string_view value) {
    std::string result;
    result.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        // A carriage return and its line feed are one line end.
        if (value[i] == '\r' && i + 1 < value.size() && value[i + 1] == '\n') continue;
        result += isSpace(value[i]) ? ' ' : value[i];
    }
    return result;
}

AttributePlace findAttribute(std::string_view startTag, std::string_view name) {
    const char* const begin = startTag.data();
    const char* const end = begin + startTag.size();
    const auto offset = [begin](const char* p) { return static_cast<std::size_t>(p - begin); };
    // Behind the '<' and the element's name.
    const char* p = begin;
    while (p != end && !isSpace(*p) && *p != '>' && *p != '/') ++p;
    while (p != end) {
        const char* const nameBegin = skipSpace(p, end);
        const char* q = nameBegin;
        while (q != end && *q != '=' && !isSpace(*q)) ++q;
        const std::string_view found(nameBegin, static_cast<std::size_t>(q - nameBegin));
        while (q != end && *q != '"' && *q != '\'') ++q;
        if (q == end) return {};
        const char* const close = std::find(q + 1, end, *q);
        if (close == end) return {};
        if (found == name) return {offset(p), offset(close) + 1, offset(q) + 1, offset(close)};
        p = close + 1;
    }
    return {};
}

}  // namespace rovescio::xml
