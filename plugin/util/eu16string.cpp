// A growable UTF-16 string whose positions count from 1.
#include "util/eu16string.h"

#include <Carbon/Carbon.h>

#include <algorithm>

#include "util/platform_string.h"

namespace {

std::u16string decode(const char* text, CFStringEncoding encoding) {
    if (text == nullptr) return {};
    const PlatformOwned<CFStringRef> decoded(CFStringCreateWithCString(kCFAllocatorDefault, text, encoding));
    return decoded ? platformUnits(decoded.get()) : std::u16string();
}

std::u16string unitsOfCodePoint(std::uint32_t codePoint) {
    constexpr std::uint32_t kFirstSupplementary = 0x10000;
    constexpr std::uint32_t kLastCodePoint = 0x10FFFF;
    constexpr std::uint32_t kHighSurrogates = 0xD800;
    constexpr std::uint32_t kLowSurrogates = 0xDC00;
    if (codePoint == 0) return {};
    if (codePoint < kFirstSupplementary || codePoint > kLastCodePoint) {
        return {static_cast<char16_t>(codePoint)};
    }
    return {static_cast<char16_t>(((codePoint - kFirstSupplementary) >> 10) + kHighSurrogates),
            static_cast<char16_t>((codePoint & 0x3FF) | kLowSurrogates)};
}

}  // namespace

eu16string::eu16string(const char* text) : units_(decode(text, GetApplicationTextEncoding())) {}

eu16string::eu16string(const unsigned char* text)
    : units_(decode(reinterpret_cast<const char*>(text), kCFStringEncodingUTF8)) {}

eu16string::eu16string(std::uint32_t codePoint) : units_(unitsOfCodePoint(codePoint)) {}

eu16string::eu16string(char character) {
    const char text[] = {character, '\0'};
    units_ = decode(text, GetApplicationTextEncoding());
}

void eu16string::GetStdString(std::string& out) const {
    out.clear();
    const auto text = makePlatformString(units_);
    if (!text) return;
    const CFStringEncoding encoding = GetApplicationTextEncoding();
    const CFRange whole = CFRangeMake(0, static_cast<CFIndex>(units_.size()));
    CFIndex size = 0;
    CFStringGetBytes(text.get(), whole, encoding, '?', false, nullptr, 0, &size);
    out.resize(static_cast<std::size_t>(size));
    CFStringGetBytes(text.get(), whole, encoding, '?', false, reinterpret_cast<UInt8*>(out.data()), size,
                     &size);
}

int eu16string::AnsiPos(const eu16string& text) const {
    // Searching an empty string for an empty text would find it.
    if (units_.empty()) return 0;
    const std::size_t position = units_.find(text.units_);
    return position == std::u16string::npos ? 0 : static_cast<int>(position) + 1;
}

eu16string& eu16string::AnsiDelete(int index, int count) {
    if (holds(index) && count > 0) {
        units_.erase(static_cast<std::size_t>(index) - 1, static_cast<std::size_t>(count));
    }
    return *this;
}

eu16string eu16string::AnsiSubString(int start, int count) const {
    const int first = std::max(start, 1);
    if (!holds(first) || count < 1) return {};
    return eu16string(units_.substr(static_cast<std::size_t>(first) - 1, static_cast<std::size_t>(count)));
}

void eu16string::AnsiSetLength(int length) {
    const auto kept = static_cast<std::size_t>(std::max(length, 0));
    if (kept < units_.size()) units_.resize(kept);
}

char16_t eu16string::AnsiCharAtIndex(int index) const {
    return holds(index) ? units_[static_cast<std::size_t>(index) - 1] : u' ';
}

char16_t& eu16string::AnsiCharAtIndex(int index) {
    return units_[holds(index) ? static_cast<std::size_t>(index) - 1 : 0];
}

bool eu16string::holds(int index) const {
    return index >= 1 && static_cast<std::size_t>(index) <= units_.size();
}
