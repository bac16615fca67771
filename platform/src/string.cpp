// Strings without bytes: constants, making from units, measuring, reading numbers, comparing.
#include <unicode/uchar.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "encodings.h"
#include "string_object.h"

using rovescio::platform::decode;
using rovescio::platform::Kind;
using rovescio::platform::Lifetime;
using rovescio::platform::rejectArgument;
using rovescio::platform::required;

namespace {

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

std::size_t skipSpace(std::u16string_view text, std::size_t position) {
    while (position < text.size() && u_isUWhiteSpace(text[position]) != 0) {
        ++position;
    }
    return position;
}

/// Takes the run of digits at the start of a text away from it and returns it without leading zeros.
std::u16string_view takeNumber(std::u16string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    std::u16string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    digits.remove_prefix(std::min(digits.find_first_not_of(u'0'), digits.size()));
    return digits;
}

/// Takes one character away from the start of a text, folded when letter case does not count.
char32_t takeCharacter(std::u16string_view& text, bool foldCase) {
    char32_t character = text.front();
    std::size_t units = 1;
    if (!foldCase) {
        text.remove_prefix(units);
        return character;
    }
    if (U16_IS_LEAD(character) && text.size() > 1 && U16_IS_TRAIL(text[1])) {
        character = static_cast<char32_t>(U16_GET_SUPPLEMENTARY(character, text[1]));
        units = 2;
    }
    text.remove_prefix(units);
    return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

template <class T>
CFComparisonResult order(const T& first, const T& second) {
    if (first == second) {
        return kCFCompareEqualTo;
    }
    return first < second ? kCFCompareLessThan : kCFCompareGreaterThan;
}

CFComparisonResult compareTexts(std::u16string_view first, std::u16string_view second,
                                CFStringCompareFlags flags) {
    const bool foldCase = (flags & kCFCompareCaseInsensitive) != 0;
    const bool numerically = (flags & kCFCompareNumerically) != 0;
    while (!first.empty() && !second.empty()) {
        CFComparisonResult result = kCFCompareEqualTo;
        if (numerically && isDigit(first.front()) && isDigit(second.front())) {
            // Without leading zeros the longer number is the larger, however many digits it has.
            const std::u16string_view left = takeNumber(first);
            const std::u16string_view right = takeNumber(second);
            result = left.size() == right.size() ? order(left, right) : order(left.size(), right.size());
        } else {
            const char32_t left = takeCharacter(first, foldCase);
            const char32_t right = takeCharacter(second, foldCase);
            result = order(left, right);
        }
        if (result != kCFCompareEqualTo) {
            return result;
        }
    }
    return order(first.size(), second.size());
}

}  // namespace

CFStringRef __CFStringMakeConstantString(const char* literal) {
    required(literal, __func__);
    // Never destroyed, because constants are used until the very end of the process.
    static auto& mutex = *new std::mutex;
    static auto& constants = *new std::unordered_map<std::string_view, std::unique_ptr<const __CFString>>;
    const std::scoped_lock lock(mutex);
    auto& constant = constants[literal];
    if (!constant) {
        const std::string_view bytes = literal;
        auto text = decode(bytes, kCFStringEncodingUTF8);
        if (!text) {
            text = decode(bytes, kCFStringEncodingMacRoman);
        }
        constant = std::make_unique<const __CFString>(*text, Lifetime::kForever);
    }
    return constant.get();
}

CFTypeID CFStringGetTypeID() {
    return static_cast<CFTypeID>(Kind::kString);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef /*allocator*/, const UniChar* units, CFIndex count) {
    if (count < 0 || (units == nullptr && count > 0)) {
        rejectArgument(__func__);
    }
    return new __CFString(std::u16string(units, units + count));
}

CFStringRef CFStringCreateCopy(CFAllocatorRef /*allocator*/, CFStringRef string) {
    required(string, __func__).retain();
    return string;
}

CFIndex CFStringGetLength(CFStringRef string) {
    return static_cast<CFIndex>(required(string, __func__).text.size());
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
    const std::u16string& text = required(string, __func__).text;
    if (index < 0 || static_cast<std::size_t>(index) >= text.size()) {
        rejectArgument(__func__);
    }
    return text[static_cast<std::size_t>(index)];
}

SInt32 CFStringGetIntValue(CFStringRef string) {
    const std::u16string& text = required(string, __func__).text;
    std::size_t position = skipSpace(text, 0);
    const bool hasSign = position < text.size() && (text[position] == u'-' || text[position] == u'+');
    const bool isNegative = hasSign && text[position] == u'-';
    position = skipSpace(text, hasSign ? position + 1 : position);
    constexpr SInt64 kLargest = std::numeric_limits<SInt32>::max();
    SInt64 value = 0;
    while (position < text.size() && isDigit(text[position])) {
        // One above the largest is kept apart, because it is the smallest negative number.
        value = std::min(value * 10 + (text[position] - u'0'), kLargest + 1);
        ++position;
    }
    return static_cast<SInt32>(isNegative ? -value : std::min(value, kLargest));
}

CFComparisonResult CFStringCompare(CFStringRef first, CFStringRef second, CFStringCompareFlags flags) {
    return compareTexts(required(first, __func__).text, required(second, __func__).text, flags);
}
