// Pitch names in letters, signs and words.
#include "cli/pitch_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "cli/messages.h"

namespace rovescio::cli {

namespace {

constexpr std::string_view kLetters = "CDEFGAB";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kSeparators = " -_";
constexpr int kMiddleOctave = 4;

constexpr std::array<std::pair<std::string_view, int>, 10> kAccidentals = {{{"", 0},
                                                                            {"natural", 0},
                                                                            {"♮", 0},
                                                                            {"#", 1},
                                                                            {"♯", 1},
                                                                            {"sharp", 1},
                                                                            {"b", -1},
                                                                            {"♭", -1},
                                                                            {"flat", -1},
                                                                            {"n", 0}}};

std::string_view withoutSeparators(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kSeparators);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSeparators) - first + 1);
}

engine::Problem unknownPitch(const std::string& name) {
    return problemWith("\"" + name + "\" is not a known pitch",
                       "Write a letter A to G, a sharp or flat if there is one, and an octave from 0 to 9 "
                       "(C4 is middle C): \"E4\", \"Bb3\", \"F#5\", \"B-flat 3\", \"C sharp 4\"");
}

}  // namespace

engine::Result<engine::SpelledPitch> parsePitch(const std::string& name) {
    std::string lowered = name;
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    const std::string_view text = withoutSeparators(lowered);
    const std::size_t digits = std::min(text.find_first_of(kDigits), text.size());
    if (digits < 1 || digits == text.size()) return unknownPitch(name);

    const std::size_t letter =
        kLetters.find(static_cast<char>(std::toupper(static_cast<unsigned char>(text[0]))));
    const std::string_view middle = text.substr(1, digits - 1);
    const std::string_view sign = withoutSeparators(middle);
    const auto* accidental =
        std::find_if(kAccidentals.begin(), kAccidentals.end(),
                     [&](const std::pair<std::string_view, int>& known) { return known.first == sign; });
    const std::string_view octave = text.substr(digits);
    if (letter == std::string_view::npos || accidental == kAccidentals.end() ||
        octave.find_first_not_of(kDigits) != std::string_view::npos) {
        return unknownPitch(name);
    }
    // A hyphen in front of the number joins it to a word, as in B-flat-3, and is else a minus, as in C-1.
    const bool spelledOut = sign == "sharp" || sign == "flat" || sign == "natural";
    if (octave.size() > 1 || (middle.ends_with('-') && !spelledOut)) {
        return problemWith("\"" + name + "\" lies outside the octaves 0 to 9",
                           "Octaves count from C; C4 is middle C");
    }
    return engine::SpelledPitch{static_cast<int>(letter) + 7 * (octave[0] - '0' - kMiddleOctave),
                                accidental->second};
}

std::string pitchName(const engine::SpelledPitch& pitch) {
    std::string name(1, kLetters[static_cast<std::size_t>(engine::floorMod(pitch.step, 7))]);
    name.append(static_cast<std::size_t>(std::abs(pitch.alter)), pitch.alter < 0 ? 'b' : '#');
    return name + std::to_string(engine::floorDiv(pitch.step, 7) + kMiddleOctave);
}

}  // namespace rovescio::cli
