// Border between the plug-in's UTF-16 units and the platform's string objects.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

struct PlatformRelease {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

// Owner of a platform object that a Create or Copy function returned; may hold none.
template <typename Ref>
using PlatformOwned = std::unique_ptr<std::remove_pointer_t<Ref>, PlatformRelease>;

// The platform's unit and char16_t are both unsigned and 16 bits wide, but distinct types.
static_assert(sizeof(UniChar) == sizeof(char16_t) && std::is_unsigned_v<UniChar>);

// Null when the platform makes no string of the units.
inline PlatformOwned<CFStringRef> makePlatformString(std::u16string_view units) {
    return PlatformOwned<CFStringRef>(
        CFStringCreateWithCharacters(kCFAllocatorDefault, reinterpret_cast<const UniChar*>(units.data()),
                                     static_cast<CFIndex>(units.size())));
}

// Copies the first `count` units, of which the string has that many.
inline void copyPlatformUnits(CFStringRef string, CFIndex count, char16_t* target) {
    CFStringGetCharacters(string, CFRangeMake(0, count), reinterpret_cast<UniChar*>(target));
}

inline std::u16string platformUnits(CFStringRef string) {
    std::u16string units(static_cast<std::size_t>(CFStringGetLength(string)), u'\0');
    copyPlatformUnits(string, static_cast<CFIndex>(units.size()), units.data());
    return units;
}
