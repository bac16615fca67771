// The encoding of 8-bit text, from the locale, and the keyboard, which cannot be read here.
#include <Carbon/Carbon.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>

namespace {

/// The codeset part of the first locale variable that is set: `UTF-8` of `de_AT.UTF-8@euro`.
std::string localeCodeset() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value == nullptr || *value == '\0') {
            continue;
        }
        const std::string locale = value;
        const std::size_t dot = locale.find('.');
        if (dot == std::string::npos) {
            return {};
        }
        return locale.substr(dot + 1, locale.find('@', dot) - dot - 1);
    }
    return {};
}

}  // namespace

CFStringEncoding CFStringGetSystemEncoding() {
    std::string codeset = localeCodeset();
    std::erase(codeset, '-');
    std::transform(codeset.begin(), codeset.end(), codeset.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
    return codeset == "utf8" ? kCFStringEncodingUTF8 : kCFStringEncodingMacRoman;
}

TextEncoding GetApplicationTextEncoding() {
    return CFStringGetSystemEncoding();
}

void GetKeys(KeyMap keys) {
    std::fill_n(keys, std::size(KeyMapByteArray{}) / sizeof(BigEndianUInt32), BigEndianUInt32{0});
}
