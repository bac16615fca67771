// Lines on standard error and standard output.
#include "cli/messages.h"

#include <array>
#include <cstddef>
#include <iostream>
#include <utility>

#include "run/operations.h"

namespace rovescio::cli {

namespace {

// The bytes of the character at the front of a text in UTF-8 and its code; no bytes when there is none.
std::pair<std::size_t, char32_t> frontCharacter(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80) return {1, byte(0)};
    constexpr std::array<char32_t, 5> kLowest = {0, 0, 0x80, 0x800, 0x10000};  // by length
    const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC0 || byte(0) > 0xF4 || length > text.size()) return {0, 0};
    char32_t code = byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {0, 0};
        code = code << 6 | (byte(i) & 0x3FU);
    }
    return code < kLowest[length] ? std::pair<std::size_t, char32_t>() : std::pair(length, code);
}

bool isBlank(char32_t code) {
    return (code >= '\t' && code <= '\r') || code == 0x2028 || code == 0x2029;
}

// Control characters, and those that change the direction of the text after them.
bool isControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x202A && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

}  // namespace

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto [length, code] = frontCharacter(text);
        if (isBlank(code)) {
            result += ' ';
        } else if (length == 0 || isControl(code)) {
            result += '?';
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

void say(const std::string& text) {
    // One write for the whole line, so that lines of processes that run side by side do not mix.
    std::cerr << ("rovescio: " + printable(text) + "\n") << std::flush;
}

void say(const engine::Problem& problem) {
    engine::Problem shown = problem;
    for (const std::string_view operation : run::kOperations) {
        const std::string name = "{" + std::string(operation) + "}";
        for (std::size_t at = 0; (at = shown.remedy.find(name, at)) != std::string::npos;) {
            shown.remedy.replace(at, name.size(), "--" + std::string(operation));
        }
    }
    say(shown.text());
}

bool show(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) std::cout << printable(line) << '\n';
    if (std::cout.flush()) return true;
    say("standard output cannot be written. Look at the program or file that it goes to");
    return false;
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace rovescio::cli
