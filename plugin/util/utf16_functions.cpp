// The C string functions for terminated arrays of UTF-16 code units.
#include "util/utf16_functions.h"

#include <algorithm>
#include <cstdarg>
#include <limits>
#include <string_view>

#include "util/platform_string.h"

std::size_t sx_strlen(const char16_t* text) {
    return std::u16string_view(text).size();
}

const char16_t* sx_strchr(const char16_t* text, char16_t unit) {
    while (*text != unit) {
        if (*text == 0) return nullptr;
        ++text;
    }
    return text;
}

int sx_strcmp(const char16_t* left, const char16_t* right) {
    return sx_strncmp(left, right, std::numeric_limits<std::size_t>::max());
}

int sx_strncmp(const char16_t* left, const char16_t* right, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (left[i] != right[i]) return left[i] < right[i] ? -1 : 1;
        if (left[i] == 0) break;
    }
    return 0;
}

const char16_t* sx_strstr(const char16_t* haystack, const char16_t* needle) {
    const std::size_t position = std::u16string_view(haystack).find(needle);
    return position == std::u16string_view::npos ? nullptr : haystack + position;
}

char16_t* sx_strncpy(char16_t* target, const char16_t* source, std::size_t count) {
    std::size_t i = 0;
    for (; i < count && source[i] != 0; ++i) target[i] = source[i];
    std::fill(target + i, target + count, u'\0');
    return target;
}

char16_t sx_strcpy(char16_t* target, const char16_t* source) {
    while ((*target = *source) != 0) {
        ++target;
        ++source;
    }
    return *target;
}

char16_t* sx_strcpy(char16_t* target, std::size_t /*capacity*/, const char16_t* source) {
    sx_strcpy(target, source);
    return target;
}

char16_t* sx_strcat(char16_t* target, std::size_t /*capacity*/, const char16_t* source) {
    sx_strcpy(target + sx_strlen(target), source);
    return target;
}

int sx_sprintf(char16_t* target, std::size_t capacity, const char16_t* format, ...) {
    if (capacity == 0) return 0;
    CFIndex written = 0;
    if (const auto formatString = makePlatformString(format)) {
        std::va_list arguments;
        va_start(arguments, format);
        const PlatformOwned<CFStringRef> text(CFStringCreateWithFormatAndArguments(
            kCFAllocatorDefault, nullptr, formatString.get(), arguments));
        va_end(arguments);
        if (text) {
            written = std::min(CFStringGetLength(text.get()), static_cast<CFIndex>(capacity - 1));
            copyPlatformUnits(text.get(), written, target);
        }
    }
    target[written] = 0;
    return static_cast<int>(written);
}
