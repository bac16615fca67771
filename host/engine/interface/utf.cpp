// UTF-16 and UTF-8 by way of platform strings.
#include "engine/interface/utf.h"

namespace rovescio::engine {

std::string toUtf8(CFStringRef text) {
    const CFRange all = CFRangeMake(0, CFStringGetLength(text));
    CFIndex size = 0;
    CFStringGetBytes(text, all, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
    std::string result(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(text, all, kCFStringEncodingUTF8, '?', false, reinterpret_cast<UInt8*>(result.data()),
                     size, nullptr);
    return result;
}

std::string toUtf8(std::u16string_view text) {
    CFStringRef string =
        CFStringCreateWithCharacters(kCFAllocatorDefault, reinterpret_cast<const UniChar*>(text.data()),
                                     static_cast<CFIndex>(text.size()));
    std::string result = toUtf8(string);
    CFRelease(string);
    return result;
}

CFStringRef toPlatformString(const std::string& utf8) {
    return CFStringCreateWithCString(kCFAllocatorDefault, utf8.c_str(), kCFStringEncodingUTF8);
}

}  // namespace rovescio::engine
