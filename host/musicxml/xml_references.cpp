// Resolving of references and gathering of character data.
#include "musicxml/xml_references.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "musicxml/numbers.h"

namespace rovescio::musicxml {

namespace {

constexpr std::array<std::pair<std::string_view, char>, 5> kNamed = {
    {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}}};

void appendUtf8(std::uint32_t code, std::string& out) {
    const auto continuation = [&](int shift) { out += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | code >> 6);
        continuation(0);
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | code >> 12);
        continuation(6);
        continuation(0);
    } else {
        out += static_cast<char>(0xF0 | code >> 18);
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

// Appends what a reference without its & and ; means; false when it means
// nothing.
bool appendReference(std::string_view reference, std::string& out) {
    if (reference.starts_with('#')) {
        const bool hexadecimal = reference.starts_with("#x");
        const std::string_view digits = reference.substr(hexadecimal ? 2 : 1);
        std::uint32_t code = 0;
        const auto result =
            std::from_chars(digits.data(), digits.data() + digits.size(), code, hexadecimal ? 16 : 10);
        const bool surrogate = code >= 0xD800 && code < 0xE000;
        if (result.ec != std::errc{} || result.ptr != digits.data() + digits.size() || code == 0 ||
            code > 0x10FFFF || surrogate) {
            return false;
        }
        appendUtf8(code, out);
        return true;
    }
    for (const auto& [name, character] : kNamed) {
        if (reference != name) continue;
        out += character;
        return true;
    }
    return false;
}

}  // namespace

std::string resolveReferences(std::string_view text) {
    std::string out;
    while (true) {
        const std::size_t begin = text.find('&');
        out += text.substr(0, begin);
        if (begin == std::string_view::npos) return out;
        text.remove_prefix(begin + 1);
        const std::size_t end = text.substr(0, 16).find(';');
        if (end != std::string_view::npos && appendReference(text.substr(0, end), out)) {
            text.remove_prefix(end + 1);
        } else {
            out += '&';
        }
    }
}

std::string characterData(std::string_view content) {
    constexpr std::string_view kSection = "<![CDATA[";
    std::string out;
    int depth = 0;
    while (true) {
        const std::size_t begin = content.find('<');
        if (depth == 0) out += resolveReferences(content.substr(0, begin));
        if (begin == std::string_view::npos) return std::string(trimmed(out));
        content.remove_prefix(begin);
        std::string_view mark = ">";
        if (content.starts_with("<!--")) {
            mark = "-->";
        } else if (content.starts_with(kSection)) {
            mark = "]]>";
            if (depth == 0) out += content.substr(kSection.size(), content.find(mark) - kSection.size());
        } else if (content.starts_with("<?")) {
            mark = "?>";
        } else {
            depth += content.starts_with("</") ? -1 : 1;
        }
        const std::size_t end = content.find(mark);
        if (end == std::string_view::npos) return std::string(trimmed(out));
        if (mark == ">" && end > 0 && content[end - 1] == '/') --depth;
        content.remove_prefix(end + mark.size());
    }
}

}  // namespace rovescio::musicxml
