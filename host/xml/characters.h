// The characters of XML: which are legal, and which make names, white space and the ends of character data.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace rovescio::xml {

// What a byte may be. Bytes of characters beyond ASCII are none of these but kHigh.
enum CharacterClass : std::uint8_t {
    kSpace = 1,
    kNameStart = 2,
    kNameRest = 4,
    kHigh = 8,
    kEndsValue = 16,  // may end an attribute's value, or means something in it
};

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

namespace detail {

constexpr std::array<std::uint8_t, 256> characterClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (unsigned c = 0; c < classes.size(); ++c) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
        const bool rest = letter || (c >= '0' && c <= '9') || c == '-' || c == '.';
        const bool space = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        const bool endsValue = c == '"' || c == '\'' || c == '<' || c == '&';
        classes[c] = static_cast<std::uint8_t>((space ? kSpace : 0) | (letter ? kNameStart : 0) |
                                               (rest ? kNameRest : 0) | (c >= 0x80 ? kHigh : 0) |
                                               (endsValue ? kEndsValue : 0));
    }
    return classes;
}

inline constexpr std::array<std::uint8_t, 256> kCharacterClasses = characterClasses();

const char* nameEndBeyondAscii(const char* begin, const char* end);
const char* tokenEndBeyondAscii(const char* p, const char* end);

}  // namespace detail

inline bool isOf(char c, unsigned classes) {
    return (detail::kCharacterClasses[static_cast<unsigned char>(c)] & classes) != 0;
}
inline bool isSpace(char c) {
    return isOf(c, kSpace);
}

inline const char* skipSpace(const char* p, const char* end) {
    while (p != end && isSpace(*p)) ++p;
    return p;
}

inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

// The end of what name characters follow in legal text; p itself where none does.
inline const char* tokenEnd(const char* p, const char* end) {
    while (p != end && isOf(*p, kNameRest)) ++p;
    return p != end && isOf(*p, kHigh) ? detail::tokenEndBeyondAscii(p, end) : p;
}

// The end of the name that begins at p in legal text; p itself where none does.
inline const char* nameEnd(const char* p, const char* end) {
    if (p == end || !isOf(*p, kNameStart | kHigh)) return p;
    const char* q = p;
    while (q != end && isOf(*q, kNameRest)) ++q;
    return q != end && isOf(*q, kHigh) ? detail::nameEndBeyondAscii(p, end) : q;
}

// The place of the first byte that belongs to no character that XML allows in UTF-8; the text's size when all
// do.
std::size_t firstIllegal(std::string_view text);
// Whether these bytes are the beginning of a character whose rest is missing.
bool isCutCharacter(std::string_view bytes);
// Whether a character reference may stand for this character.
bool isLegalCharacter(std::uint32_t character);
// Appends a legal character as UTF-8.
void appendUtf8(std::string& text, std::uint32_t character);

}  // namespace rovescio::xml
