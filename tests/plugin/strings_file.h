// Reads the plug-in's .strings files by their own strict form: one quoted pair a line, comments between.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <string>

inline const std::string kLanguages[] = {"en", "de", "fr", "it", "es", "ja"};

using Texts = std::map<std::string, std::string>;

// The pairs of a file in plugin/resources; reports lines of another form, empty texts and repeated keys.
inline Texts readStringsFile(const std::string& language, const std::string& table) {
    static const std::regex pair(R"re("([0-9.,]+)" = "([^"\\]+)";)re");
    static const std::regex noPair(R"(|/\* .* \*/)");
    const std::string path = ROVESCIO_RESOURCES "/" + language + ".lproj/" + table + ".strings";
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    Texts texts;
    std::smatch match;
    for (std::string line; std::getline(file, line);) {
        if (std::regex_match(line, noPair)) continue;
        EXPECT_TRUE(std::regex_match(line, match, pair) && texts.emplace(match[1], match[2]).second)
            << path << ": " << line;
    }
    return texts;
}
