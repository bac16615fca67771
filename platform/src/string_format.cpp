// Formatting of strings: fetches the arguments in the order they were passed, then writes piece by piece.
#include <algorithm>
#include <clocale>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "encodings.h"
#include "format_parser.h"
#include "string_object.h"

using namespace rovescio::platform;

namespace {

// The alternatives stand in the order of ArgumentType.
using Argument = std::variant<std::monostate, int, long, long long, double, long double, const void*>;

/// Sets the calling thread's locale to "C", so that a decimal point stays a point whatever the program set.
class PlainLocale {
  public:
    PlainLocale() : previous_(uselocale(plain())) {}
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;
    ~PlainLocale() { uselocale(previous_); }

  private:
    static locale_t plain() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t previous_;
};

/// Fetches one argument and moves the list on.
Argument nextArgument(va_list* list, ArgumentType type) {
    // The analyser loses sight of the list's start in the caller.
    // NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
    switch (type) {
        case ArgumentType::kInt:
            return va_arg(*list, int);
        case ArgumentType::kLong:
            return va_arg(*list, long);
        case ArgumentType::kLongLong:
            return va_arg(*list, long long);
        case ArgumentType::kDouble:
            return va_arg(*list, double);
        case ArgumentType::kLongDouble:
            return va_arg(*list, long double);
        case ArgumentType::kPointer:
            return va_arg(*list, const void*);
        case ArgumentType::kUnused:
            break;
    }
    // A position that no conversion names is taken for a word, the most common case.
    return va_arg(*list, long);
    // NOLINTEND(clang-analyzer-valist.Uninitialized)
}

std::u16string decodeCText(std::string_view bytes) {
    auto text = decode(bytes, CFStringGetSystemEncoding());
    return text ? *std::move(text) : *decode(bytes, kCFStringEncodingMacRoman);
}

/// Count of units before the terminating 0, or `most` where there need not be one.
template <class Unit>
std::size_t terminatedLength(const Unit* units, std::size_t most) {
    std::size_t count = 0;
    while (count < most && units[count] != 0) {
        ++count;
    }
    return count;
}

class Formatter {
  public:
    explicit Formatter(std::vector<Argument> arguments) : arguments_(std::move(arguments)) {}

    [[nodiscard]] std::u16string write(const Conversion& conversion) const {
        switch (conversion.letter) {
            case '@':
                return describe(conversion);
            case 's':
            case 'S':
                return padded(conversion, text(conversion));
            case 'c':
            case 'C':
                return padded(conversion, character(conversion));
            case 'p':
                return padded(conversion, address(conversion));
            default:
                return number(conversion);
        }
    }

  private:
    template <class T>
    [[nodiscard]] T argument(std::size_t index) const {
        // One argument may be named twice with different types; the later type was the one fetched.
        const T* value = std::get_if<T>(&arguments_[index]);
        return value != nullptr ? *value : T{};
    }

    [[nodiscard]] std::optional<int> resolve(const std::optional<Measure>& measure) const {
        constexpr int kWidest = 32767;
        if (!measure) {
            return std::nullopt;
        }
        const int value =
            measure->isArgument ? argument<int>(static_cast<std::size_t>(measure->value)) : measure->value;
        return std::clamp(value, -kWidest, kWidest);
    }

    [[nodiscard]] std::u16string describe(const Conversion& conversion) const {
        const auto* object = static_cast<const Object*>(argument<const void*>(conversion.argument));
        return object != nullptr ? object->description() : u"(null)";
    }

    [[nodiscard]] std::u16string text(const Conversion& conversion) const {
        const void* pointer = argument<const void*>(conversion.argument);
        if (pointer == nullptr) {
            return u"(null)";
        }
        const auto precision = resolve(conversion.precision);
        const std::size_t most = precision && *precision >= 0 ? static_cast<std::size_t>(*precision)
                                                              : std::numeric_limits<std::size_t>::max();
        if (conversion.letter == 's') {
            const auto* bytes = static_cast<const char*>(pointer);
            return decodeCText({bytes, terminatedLength(bytes, most)});
        }
        const auto* units = static_cast<const UniChar*>(pointer);
        return {units, units + terminatedLength(units, most)};
    }

    [[nodiscard]] std::u16string character(const Conversion& conversion) const {
        const int value = argument<int>(conversion.argument);
        if (conversion.letter == 'C') {
            return {static_cast<char16_t>(value)};
        }
        const char byte = static_cast<char>(value);
        return decodeCText({&byte, 1});
    }

    [[nodiscard]] std::u16string address(const Conversion& conversion) const {
        char digits[32];
        const auto value = reinterpret_cast<std::uintptr_t>(argument<const void*>(conversion.argument));
        const int count =
            std::snprintf(digits, sizeof digits, "0x%llx", static_cast<unsigned long long>(value));
        return {digits, digits + count};
    }

    [[nodiscard]] std::u16string padded(const Conversion& conversion, std::u16string content) const {
        const int width = resolve(conversion.width).value_or(0);
        const auto wanted = static_cast<std::size_t>(std::abs(width));
        if (content.size() < wanted) {
            const bool isLeft = width < 0 || conversion.flags.find('-') != std::string::npos;
            content.insert(isLeft ? content.size() : 0, wanted - content.size(), u' ');
        }
        return content;
    }

    /// Numbers are written by the standard library, which knows the flags.
    [[nodiscard]] std::u16string number(const Conversion& conversion) const {
        const Argument& value = arguments_[conversion.argument];
        if (value.index() != static_cast<std::size_t>(conversion.type)) {
            return {};  // another conversion claimed the argument with another type
        }
        switch (conversion.type) {
            case ArgumentType::kInt:
                return printed(conversion, conversion.lengthLetters, std::get<int>(value));
            case ArgumentType::kLong:
                return printed(conversion, "l", std::get<long>(value));
            case ArgumentType::kLongLong:
                return printed(conversion, "ll", std::get<long long>(value));
            case ArgumentType::kLongDouble:
                return printed(conversion, "L", std::get<long double>(value));
            case ArgumentType::kDouble:
                return printed(conversion, "", std::get<double>(value));
            case ArgumentType::kPointer:
            case ArgumentType::kUnused:
                break;
        }
        return {};
    }

    template <class T>
    [[nodiscard]] std::u16string printed(const Conversion& conversion, const std::string& length,
                                         T value) const {
        const std::string pattern = "%" + conversion.flags + "*.*" + length + conversion.letter;
        const int width = resolve(conversion.width).value_or(0);
        // printf takes a negative precision for none.
        const int precision = resolve(conversion.precision).value_or(-1);
        const int count = std::snprintf(nullptr, 0, pattern.c_str(), width, precision, value);
        if (count <= 0) {
            return {};
        }
        std::string digits(static_cast<std::size_t>(count) + 1, '\0');
        (void)std::snprintf(digits.data(), digits.size(), pattern.c_str(), width, precision, value);
        digits.pop_back();
        return {digits.begin(), digits.end()};
    }

    std::vector<Argument> arguments_;
};

}  // namespace

CFStringRef CFStringCreateWithFormatAndArguments(CFAllocatorRef /*allocator*/, CFDictionaryRef /*options*/,
                                                 CFStringRef format, va_list arguments) {
    const ParsedFormat parsed = parseFormat(required(format, __func__).text);
    std::vector<Argument> values;
    values.reserve(parsed.arguments.size());
    // A va_list parameter may have become a pointer; only of a copy can the address be handed on.
    va_list list;
    va_copy(list, arguments);
    for (const ArgumentType type : parsed.arguments) {
        values.push_back(nextArgument(&list, type));
    }
    va_end(list);
    const PlainLocale locale;
    const Formatter formatter(std::move(values));
    std::u16string text;
    for (const FormatPiece& piece : parsed.pieces) {
        const auto* conversion = std::get_if<Conversion>(&piece);
        text += conversion != nullptr ? formatter.write(*conversion) : std::get<std::u16string>(piece);
    }
    return new __CFString(std::move(text));
}

CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef options, CFStringRef format,
                                     ...) {
    va_list arguments;
    va_start(arguments, format);
    CFStringRef string = CFStringCreateWithFormatAndArguments(allocator, options, format, arguments);
    va_end(arguments);
    return string;
}
