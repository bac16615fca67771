// Reading of rows.
#include "cli/row_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "cli/messages.h"
#include "cli/pitch_names.h"

namespace rovescio::cli {

namespace {

using engine::SpelledPitch;
using run::kRowLength;
using run::Row;

constexpr int kSemitonesOfOctave = 12;

// The names that the numbers stand for.
constexpr std::array<const char*, kRowLength> kNames = {"C",  "C#", "D",  "Eb", "E",  "F",
                                                        "F#", "G",  "Ab", "A",  "Bb", "B"};

std::vector<std::string> wordsOf(const std::string& text) {
    constexpr std::string_view kBetween = " ,;\t\n";
    std::vector<std::string> words;
    for (std::size_t begin = text.find_first_not_of(kBetween); begin != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(kBetween, begin), text.size());
        words.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(kBetween, end);
    }
    return words;
}

// The pitch of a number or name, in the octave of middle C.
std::optional<SpelledPitch> pitchOf(const std::string& word) {
    std::string name = word;
    if (word.find_first_not_of("0123456789") == std::string::npos) {
        const bool known = word.size() <= 2 && std::stoul(word) < kRowLength;
        if (!known) return std::nullopt;
        name = kNames[std::stoul(word)];
    }
    const engine::Result<SpelledPitch> pitch = parsePitch(name + "4");
    return pitch ? std::optional(pitch.value()) : std::nullopt;
}

engine::Problem badRow(const std::string& what) {
    return problemWith("--row-forms: " + what,
                       "Give each of the twelve notes once, as numbers 0 (C) to 11 or as names, such as "
                       "\"0 11 3 4 8 7 9 5 6 1 2 10\" or \"C B Eb E Ab G A F F# C# D Bb\"");
}

}  // namespace

engine::Result<Row> parseRow(const std::string& text) {
    Row row{};
    std::array<std::string, kRowLength> seen;
    const std::vector<std::string> words = wordsOf(text);
    for (std::size_t i = 0; i < words.size() && i < row.size(); ++i) {
        const std::optional<SpelledPitch> pitch = pitchOf(words[i]);
        if (!pitch) return badRow("\"" + words[i] + "\" is not a pitch class");
        std::string& earlier =
            seen[static_cast<std::size_t>(engine::floorMod(engine::semitones(*pitch), kSemitonesOfOctave))];
        if (!earlier.empty()) {
            return badRow(earlier == words[i]
                              ? "\"" + words[i] + "\" comes twice"
                              : "\"" + earlier + "\" and \"" + words[i] + "\" are the same note");
        }
        earlier = words[i];
        row[i] = *pitch;
    }
    if (words.size() != row.size()) {
        return badRow("a row has 12 notes, not " + std::to_string(words.size()));
    }
    return row;
}

}  // namespace rovescio::cli
