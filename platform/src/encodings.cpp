// Decoders and encoders: 8-bit sets by table, UTF-8 in its strict form, UTF-16 in both byte orders.
#include "encodings.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>
#include <utility>

namespace rovescio::platform {

namespace {

// Mac Roman 0x80 to 0xFF, with the euro sign and the private-use code of the manufacturer's sign.
constexpr std::array<char16_t, 128> kMacRomanUpper = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7};

// Windows Latin 1 0x80 to 0x9F; the rest is as in ISO Latin 1. Unassigned codes stand for themselves.
constexpr std::array<char16_t, 32> kWindowsUpper = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char16_t kMark = 0xFEFF;

constexpr bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool isSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

bool isUtf16(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF16 || encoding == kCFStringEncodingUTF16BE ||
           encoding == kCFStringEncodingUTF16LE;
}

bool isSingleByte(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingMacRoman || encoding == kCFStringEncodingWindowsLatin1 ||
           encoding == kCFStringEncodingISOLatin1 || encoding == kCFStringEncodingASCII;
}

bool isBigEndian(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF16BE ||
           (encoding == kCFStringEncodingUTF16 && std::endian::native == std::endian::big);
}

/// The unit of one byte. ASCII takes bytes above 0x7F for the Latin codes, as the real framework does.
char16_t unitOfByte(unsigned char byte, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingMacRoman && byte >= 0x80) {
        return kMacRomanUpper[byte - 0x80U];
    }
    if (encoding == kCFStringEncodingWindowsLatin1 && byte >= 0x80 && byte < 0xA0) {
        return kWindowsUpper[byte - 0x80U];
    }
    return byte;
}

template <std::size_t N>
std::optional<unsigned char> byteInTable(const std::array<char16_t, N>& table, char32_t character) {
    const auto found = std::find(table.begin(), table.end(), character);
    if (found == table.end()) {
        return std::nullopt;
    }
    return static_cast<unsigned char>(0x80 + (found - table.begin()));
}

std::optional<unsigned char> byteOfCharacter(char32_t character, CFStringEncoding encoding) {
    if (character < 0x80) {
        return static_cast<unsigned char>(character);
    }
    if (encoding == kCFStringEncodingMacRoman) {
        return byteInTable(kMacRomanUpper, character);
    }
    const bool isLatin = encoding == kCFStringEncodingISOLatin1 || encoding == kCFStringEncodingWindowsLatin1;
    const char32_t firstShared = encoding == kCFStringEncodingWindowsLatin1 ? 0xA0 : 0x80;
    if (isLatin && character >= firstShared && character <= 0xFF) {
        return static_cast<unsigned char>(character);
    }
    return encoding == kCFStringEncodingWindowsLatin1 ? byteInTable(kWindowsUpper, character) : std::nullopt;
}

void appendCharacter(std::u16string& text, char32_t character) {
    if (character < kFirstSupplementary) {
        text.push_back(static_cast<char16_t>(character));
        return;
    }
    text.push_back(static_cast<char16_t>(0xD800 + ((character - kFirstSupplementary) >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
}

/// Reads the UTF-8 sequence of a character outside ASCII and moves past it; nothing for overlong, cut or
/// impossible ones.
std::optional<char32_t> nextUtf8(std::string_view bytes, std::size_t& position) {
    const auto lead = static_cast<unsigned char>(bytes[position]);
    const int followers = std::countl_one(lead) - 1;
    if (followers < 1 || followers > 3 || bytes.size() - position <= static_cast<std::size_t>(followers)) {
        return std::nullopt;
    }
    char32_t character = lead & (0x3FU >> followers);
    for (int i = 1; i <= followers; ++i) {
        const auto next = static_cast<unsigned char>(bytes[position + static_cast<std::size_t>(i)]);
        if ((next & 0xC0U) != 0x80) {
            return std::nullopt;
        }
        character = (character << 6) | (next & 0x3FU);
    }
    constexpr std::array<char32_t, 4> kSmallest = {0, 0x80, 0x800, kFirstSupplementary};
    if (character < kSmallest[static_cast<std::size_t>(followers)] || character > 0x10FFFF ||
        isSurrogate(character)) {
        return std::nullopt;
    }
    position += static_cast<std::size_t>(followers) + 1;
    return character;
}

std::optional<std::u16string> decodeUtf8(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
    }
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t position = 0; position < bytes.size();) {
        // Most text is ASCII, which is copied run by run.
        const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(position);
        const auto end = std::find_if(start, bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
        text.append(start, end);
        position += static_cast<std::size_t>(end - start);
        if (position == bytes.size()) {
            break;
        }
        const auto character = nextUtf8(bytes, position);
        if (!character) {
            return std::nullopt;
        }
        appendCharacter(text, *character);
    }
    return text;
}

std::optional<std::u16string> decodeUtf16(std::string_view bytes, CFStringEncoding encoding,
                                          ByteOrderMark mark) {
    if (bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    bool bigEndian = isBigEndian(encoding);
    if (mark == ByteOrderMark::kSign && encoding == kCFStringEncodingUTF16) {
        const bool bigMark = bytes.starts_with("\xFE\xFF");
        if (bigMark || bytes.starts_with("\xFF\xFE")) {
            bigEndian = bigMark;
            bytes.remove_prefix(2);
        }
    }
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto first = static_cast<unsigned char>(bytes[2 * i]);
        const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
        text[i] = static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}

std::string utf8Of(char32_t character) {
    const auto tail = [&](int shift) { return static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80) {
        return {static_cast<char>(character)};
    }
    if (character < 0x800) {
        return {static_cast<char>(0xC0 | (character >> 6)), tail(0)};
    }
    if (character < kFirstSupplementary) {
        return {static_cast<char>(0xE0 | (character >> 12)), tail(6), tail(0)};
    }
    return {static_cast<char>(0xF0 | (character >> 18)), tail(12), tail(6), tail(0)};
}

std::string utf16Of(char16_t unit, bool bigEndian) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    return bigEndian ? std::string{high, low} : std::string{low, high};
}

/// A character of a text with the count of units it takes; half a pair stands alone and is not encodable.
struct Character {
    char32_t code;
    std::size_t units;
};

Character characterAt(std::u16string_view text, std::size_t index) {
    const char16_t first = text[index];
    if (isHighSurrogate(first) && index + 1 < text.size() && isLowSurrogate(text[index + 1])) {
        const char32_t high = first - 0xD800U;
        const char32_t low = text[index + 1] - 0xDC00U;
        return {kFirstSupplementary + (high << 10 | low), 2};
    }
    return {first, 1};
}

/// The bytes of one character; empty when the encoding lacks it.
std::string bytesOf(Character character, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8) {
        return isSurrogate(character.code) ? std::string{} : utf8Of(character.code);
    }
    const auto byte = byteOfCharacter(character.code, encoding);
    return byte ? std::string{static_cast<char>(*byte)} : std::string{};
}

/// Appends the run of ASCII at the start of a text, which all encodings but UTF-16 share, as far as the
/// capacity allows; returns its length.
std::size_t appendAscii(std::u16string_view text, std::size_t capacity, std::string& bytes) {
    text = text.substr(0, capacity - bytes.size());
    const auto end = std::find_if(text.begin(), text.end(), [](char16_t unit) { return unit >= 0x80; });
    std::transform(text.begin(), end, std::back_inserter(bytes),
                   [](char16_t unit) { return static_cast<char>(unit); });
    return static_cast<std::size_t>(end - text.begin());
}

Encoded encodeUtf16(std::u16string_view text, const EncodeOptions& options) {
    const bool bigEndian = isBigEndian(options.encoding);
    Encoded result;
    if (options.mark == ByteOrderMark::kSign && options.encoding == kCFStringEncodingUTF16) {
        if (options.capacity < 2) {
            return result;
        }
        result.bytes = utf16Of(kMark, bigEndian);
    }
    for (const char16_t unit : text) {
        if (options.capacity - result.bytes.size() < 2) {
            break;
        }
        result.bytes += utf16Of(unit, bigEndian);
        ++result.units;
    }
    return result;
}

}  // namespace

std::optional<std::u16string> decode(std::string_view bytes, CFStringEncoding encoding, ByteOrderMark mark) {
    if (encoding == kCFStringEncodingUTF8) {
        return decodeUtf8(bytes);
    }
    if (isUtf16(encoding)) {
        return decodeUtf16(bytes, encoding, mark);
    }
    if (!isSingleByte(encoding)) {
        return std::nullopt;
    }
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [&](char byte) { return unitOfByte(static_cast<unsigned char>(byte), encoding); });
    return text;
}

Encoded encode(std::u16string_view text, const EncodeOptions& options) {
    if (isUtf16(options.encoding)) {
        return encodeUtf16(text, options);
    }
    Encoded result;
    if (options.encoding != kCFStringEncodingUTF8 && !isSingleByte(options.encoding)) {
        return result;
    }
    while (result.units < text.size()) {
        result.units += appendAscii(text.substr(result.units), options.capacity, result.bytes);
        if (result.units == text.size()) {
            break;
        }
        Character character = characterAt(text, result.units);
        std::string bytes = bytesOf(character, options.encoding);
        if (bytes.empty()) {
            if (options.lossByte == 0) {
                break;
            }
            bytes.assign(1, static_cast<char>(options.lossByte));
            // The real framework goes through ASCII unit by unit, so a pair costs two loss bytes there.
            if (options.encoding == kCFStringEncodingASCII) {
                character.units = 1;
            }
        }
        if (options.capacity - result.bytes.size() < bytes.size()) {
            break;
        }
        result.bytes += bytes;
        result.units += character.units;
    }
    return result;
}

std::optional<std::string> encodeName(std::u16string_view text) {
    Encoded name = encode(text, {});
    if (name.units != text.size() || name.bytes.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return std::move(name.bytes);
}

}  // namespace rovescio::platform
