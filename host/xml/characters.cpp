#include "xml/characters.h"

#include <algorithm>
#include <iterator>

namespace rovescio::xml {

namespace {

struct Range {
    std::uint32_t first;
    std::uint32_t last;
};

// Beyond ASCII.
constexpr Range kNameStarts[] = {{0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                 {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                 {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
constexpr Range kNameRests[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t count>
bool isIn(std::uint32_t character, const Range (&ranges)[count]) {
    return std::any_of(std::begin(ranges), std::end(ranges), [character](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

unsigned byteAt(const char* p) {
    return static_cast<unsigned char>(*p);
}

bool isContinuation(unsigned byte) {
    return (byte & 0xC0) == 0x80;
}

// How many bytes the character has that begins with this byte; 0 when none does.
std::size_t lengthFrom(unsigned lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC2) return 0;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    return lead < 0xF5 ? 4 : 0;
}

// The character at p, whose length is right and whose bytes are there.
std::uint32_t characterAt(const char* p, std::size_t length) {
    if (length == 1) return byteAt(p);
    std::uint32_t character = byteAt(p) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) character = character << 6 | (byteAt(p + i) & 0x3F);
    return character;
}

// The length of the legal character at p; 0 when there is none.
std::size_t legalLength(const char* p, const char* end) {
    const std::size_t length = lengthFrom(byteAt(p));
    if (length == 0 || static_cast<std::size_t>(end - p) < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(byteAt(p + i))) return 0;
    }
    const std::uint32_t character = characterAt(p, length);
    const bool overlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    return !overlong && isLegalCharacter(character) ? length : 0;
}

constexpr std::size_t kChunk = 64;

// Written without branches so that the compiler makes vector instructions of it.
bool isPlainChunk(const char* p) {
    unsigned char odd = 0;
    for (std::size_t i = 0; i < kChunk; ++i) {
        // Bytes beyond ASCII are negative.
        const auto byte = static_cast<signed char>(p[i]);
        const bool isOdd = (byte < 0x20) & (byte != '\t') & (byte != '\n') & (byte != '\r');
        odd = static_cast<unsigned char>(odd | static_cast<unsigned char>(isOdd));
    }
    return odd == 0;
}

}  // namespace

namespace detail {

const char* tokenEndBeyondAscii(const char* p, const char* end) {
    while (p != end) {
        const std::size_t length = lengthFrom(byteAt(p));
        if (length == 0 || static_cast<std::size_t>(end - p) < length) return p;
        const std::uint32_t character = characterAt(p, length);
        const bool belongs =
            length == 1 ? isOf(*p, kNameRest) : isIn(character, kNameStarts) || isIn(character, kNameRests);
        if (!belongs) return p;
        p += length;
    }
    return p;
}

const char* nameEndBeyondAscii(const char* begin, const char* end) {
    const std::size_t length = lengthFrom(byteAt(begin));
    if (length == 0 || static_cast<std::size_t>(end - begin) < length) return begin;
    const bool starts =
        length == 1 ? isOf(*begin, kNameStart) : isIn(characterAt(begin, length), kNameStarts);
    return starts ? tokenEndBeyondAscii(begin + length, end) : begin;
}

}  // namespace detail

std::size_t firstIllegal(std::string_view text) {
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p != end) {
        while (static_cast<std::size_t>(end - p) >= kChunk && isPlainChunk(p)) p += kChunk;
        const char* const stop = p + std::min(kChunk, static_cast<std::size_t>(end - p));
        while (p < stop) {
            // Printable ASCII in most places.
            const std::size_t length = static_cast<signed char>(*p) >= 0x20 ? 1 : legalLength(p, end);
            if (length == 0) return static_cast<std::size_t>(p - text.data());
            p += length;
        }
    }
    return text.size();
}

bool isCutCharacter(std::string_view bytes) {
    if (bytes.empty() || bytes.size() >= lengthFrom(byteAt(bytes.data()))) return false;
    return std::all_of(bytes.begin() + 1, bytes.end(),
                       [](char c) { return isContinuation(static_cast<unsigned char>(c)); });
}

bool isLegalCharacter(std::uint32_t character) {
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    if (character >= 0xD800 && character < 0xE000) return false;
    return character <= 0x10FFFF && character != 0xFFFE && character != 0xFFFF;
}

void appendUtf8(std::string& text, std::uint32_t character) {
    const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) return append(character);
    if (character < 0x800) {
        append(0xC0 | character >> 6);
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        append(0x80 | (character >> 6 & 0x3F));
    } else {
        append(0xF0 | character >> 18);
        append(0x80 | (character >> 12 & 0x3F));
        append(0x80 | (character >> 6 & 0x3F));
    }
    append(0x80 | (character & 0x3F));
}

}  // namespace rovescio::xml
