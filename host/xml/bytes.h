// Bytes looked at by the word, for the places where a parser spends its time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace rovescio::xml {

template <typename Word>
Word wordAt(const char* p) {
    Word word = 0;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// Compares short runs of bytes faster than a call would.
inline bool areSame(const char* a, const char* b, std::size_t size) {
    const auto wordsMatch = [a, b]<typename Word>(std::size_t at, Word) {
        return wordAt<Word>(a + at) == wordAt<Word>(b + at);
    };
    if (size < 4) {
        return size == 0 || (a[0] == b[0] && a[size / 2] == b[size / 2] && a[size - 1] == b[size - 1]);
    }
    // The last word may overlap the one before it.
    if (size < 8) return wordsMatch(0, std::uint32_t{}) && wordsMatch(size - 4, std::uint32_t{});
    for (std::size_t at = 0; at + 8 < size; at += 8) {
        if (!wordsMatch(at, std::uint64_t{})) return false;
    }
    return wordsMatch(size - 8, std::uint64_t{});
}

inline bool areSame(std::string_view a, std::string_view b) {
    return a.size() == b.size() && areSame(a.data(), b.data(), a.size());
}

// The first place from p on where one of '<', '>' and '&' stands; the end when none does.
inline const char* findMarkup(const char* p, const char* end) {
    constexpr std::uint64_t kOnes = 0x0101010101010101U;
    constexpr std::uint64_t kLowBits = 0x7F * kOnes;
    // The high bit of each byte of the result is set where that byte of the word is not zero.
    const auto nonZero = [](std::uint64_t word) { return ((word & kLowBits) + kLowBits) | word; };
    while (end - p >= 8) {
        const std::uint64_t word = wordAt<std::uint64_t>(p);
        // '<' and '>' differ in one bit.
        const std::uint64_t tags = nonZero((word | '\2' * kOnes) ^ ('>' * kOnes));
        const std::uint64_t references = nonZero(word ^ ('&' * kOnes));
        const std::uint64_t found = ~(tags & references) & ~kLowBits;
        if (found != 0) {
            const int bits = std::endian::native == std::endian::little ? std::countr_zero(found)
                                                                        : std::countl_zero(found);
            return p + bits / 8;
        }
        p += 8;
    }
    while (p != end && *p != '<' && *p != '>' && *p != '&') ++p;
    return p;
}

}  // namespace rovescio::xml
