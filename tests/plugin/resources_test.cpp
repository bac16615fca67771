// The plug-in's texts and dialogs: complete in every language, and as the platform reads them.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <string>

#include "strings_file.h"
#include "util/platform_string.h"

namespace {

using Keys = std::set<std::string>;

Keys keysOf(const Texts& texts) {
    Keys keys;
    for (const auto& [key, text] : texts) keys.insert(key);
    return keys;
}

PlatformOwned<CFStringRef> fromUtf8(const std::string& text) {
    return PlatformOwned<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8));
}

CFIndex unitsIn(const std::string& text) {
    return CFStringGetLength(fromUtf8(text).get());
}

std::string toUtf8(CFStringRef text) {
    std::string bytes(2048, '\0');
    EXPECT_TRUE(
        CFStringGetCString(text, bytes.data(), static_cast<CFIndex>(bytes.size()), kCFStringEncodingUTF8));
    return bytes.c_str();
}

TEST(Resources, NoMenuHasATextTwice) {
    for (const auto& language : kLanguages) {
        std::set<std::string> seen;
        for (const auto& [key, text] : readStringsFile(language, "Dialogs")) {
            const bool isEntry = std::count(key.begin(), key.end(), '.') == 2;
            const std::string menu = key.substr(0, key.rfind('.'));
            EXPECT_TRUE(!isEntry || seen.insert(menu + text).second) << "twice: " << language << key << text;
        }
    }
}

TEST(Resources, EveryLanguageHasEveryTextAndItFits) {
    const Keys expected = {"20128,1", "20129,1",  "20129,2",  "20134,1",  "20134,2",  "20134,3",
                           "20134,9", "20134,10", "20134,11", "20134,12", "20134,13", "20139,1"};
    for (const auto& language : kLanguages) {
        const Texts texts = readStringsFile(language, "Localizable");
        ASSERT_EQ(keysOf(texts), expected) << language;
        for (const char* key : {"20128,1", "20129,1", "20129,2"})
            EXPECT_LE(unitsIn(texts.at(key)), 127) << key;
        for (const char* key : {"20134,2", "20134,3", "20134,9", "20134,10", "20134,11"})
            EXPECT_LE(unitsIn(texts.at(key)), 63) << language << " " << key;
        const PlatformOwned<CFStringRef> range(CFStringCreateWithFormat(
            kCFAllocatorDefault, nullptr, fromUtf8(texts.at("20139,1")).get(), 32766, 32767));
        EXPECT_TRUE(std::regex_match(toUtf8(range.get()), std::regex("[^%]*32766[^%]*32767[^%]*")))
            << language;
        EXPECT_LE(CFStringGetLength(range.get()), 63) << language;
    }
}

}  // namespace
