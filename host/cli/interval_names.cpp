// Interval names in words and in letters.
#include "cli/interval_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/edit_distance.h"
#include "cli/messages.h"

namespace rovescio::cli {

namespace {

using dialogs::Transposition;

// A quality as the semitones it lies from the perfect, or from the major interval.
struct Quality {
    std::string_view letters;
    std::string_view word;
    std::optional<int> fromPerfect;
    std::optional<int> fromMajor;
};

constexpr std::array<Quality, 7> kQualities = {{{"P", "perfect", 0, std::nullopt},
                                                {"M", "major", std::nullopt, 0},
                                                {"m", "minor", std::nullopt, -1},
                                                {"A", "augmented", 1, 1},
                                                {"d", "diminished", -1, -2},
                                                {"AA", "doubly augmented", 2, 2},
                                                {"dd", "doubly diminished", -2, -3}}};

constexpr std::array<std::string_view, 15> kOrdinals = {
    "unison", "second", "third",    "fourth",  "fifth",      "sixth",      "seventh",  "octave",
    "ninth",  "tenth",  "eleventh", "twelfth", "thirteenth", "fourteenth", "fifteenth"};

constexpr std::array<std::string_view, 6> kCounts = {"a", "one", "two", "three", "four", "five"};

// The largest interval number: a step further and no instrument plays both notes.
constexpr int kLargestNumber = 71;

bool isPerfectNumber(int number) {
    const int simple = (number - 1) % 7;
    return simple == 0 || simple == 3 || simple == 4;
}

// The alteration of an interval; none when the number has no such quality.
std::optional<int> alterationOf(const Quality& quality, int number) {
    return isPerfectNumber(number) ? quality.fromPerfect : quality.fromMajor;
}

// "third", "3rd" or "3" as 3.
std::optional<int> parseNumber(std::string_view word) {
    const auto* named = std::find(kOrdinals.begin(), kOrdinals.end(), word);
    if (named != kOrdinals.end()) return static_cast<int>(named - kOrdinals.begin()) + 1;
    if (word == "prime") return 1;
    std::size_t digits = 0;
    int number = 0;
    while (digits < word.size() && digits < 3 &&
           std::isdigit(static_cast<unsigned char>(word[digits])) != 0) {
        number = 10 * number + (word[digits++] - '0');
    }
    const std::string_view suffix = word.substr(digits);
    const bool suffixKnown =
        suffix.empty() || suffix == "st" || suffix == "nd" || suffix == "rd" || suffix == "th";
    if (digits == 0 || !suffixKnown || number < 1 || number > kLargestNumber) return std::nullopt;
    return number;
}

// Intervals that have a name of their own.
struct NamedInterval {
    std::string_view name;
    int number;
    int alteration;
};

constexpr std::array<NamedInterval, 12> kNamedIntervals = {{{"tritone", 4, 1},
                                                            {"semitone", 2, -1},
                                                            {"half tone", 2, -1},
                                                            {"half step", 2, -1},
                                                            {"halftone", 2, -1},
                                                            {"halfstep", 2, -1},
                                                            {"tone", 2, 0},
                                                            {"whole tone", 2, 0},
                                                            {"whole step", 2, 0},
                                                            {"wholetone", 2, 0},
                                                            {"wholestep", 2, 0},
                                                            {"ditone", 3, 0}}};

// A count of octaves: "2" or "two".
std::optional<int> parseCount(std::string_view word) {
    const auto* named = std::find(kCounts.begin(), kCounts.end(), word);
    if (named != kCounts.end()) return std::max(1, static_cast<int>(named - kCounts.begin()));
    if (word.size() == 1 && word[0] >= '1' && word[0] <= '9') return word[0] - '0';
    return std::nullopt;
}

// The octave counts as seven steps where the pop-up of intervals lists it so, else as an octave more.
Transposition chromatic(int number, int alteration) {
    Transposition result;
    result.steps = (number - 1) % 7;
    result.octaves = (number - 1) / 7;
    result.alteration = alteration;
    if (result.steps == 0 && result.octaves > 0 && alteration <= 0) {
        result.steps = 7;
        --result.octaves;
    }
    return result;
}

// "m3", "P5", "+M2", "-m3", "m-3".
std::optional<Transposition> parseLetters(std::string_view text) {
    bool down = false;
    bool hasSign = false;
    const auto takeSign = [&] {
        if (hasSign || text.empty() || (text[0] != '+' && text[0] != '-')) return;
        down = text[0] == '-';
        hasSign = true;
        text.remove_prefix(1);
    };
    takeSign();
    const std::size_t letters = std::min(text.find_first_of("+-0123456789"), text.size());
    const auto* quality = std::find_if(kQualities.begin(), kQualities.end(), [&](const Quality& known) {
        return known.letters == text.substr(0, letters);
    });
    if (quality == kQualities.end()) return std::nullopt;
    text.remove_prefix(letters);
    takeSign();
    if (text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
    const std::optional<int> number = parseNumber(text);
    if (!number) return std::nullopt;
    const std::optional<int> alteration = alterationOf(*quality, *number);
    if (!alteration) return std::nullopt;
    Transposition result = chromatic(*number, *alteration);
    result.down = down;
    return result;
}

// Lower-case words; a hyphen between letters separates words too.
std::vector<std::string> wordsOf(const std::string& text) {
    std::string spaced;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool inWord = i > 0 && i + 1 < text.size() &&
                            std::isalpha(static_cast<unsigned char>(text[i - 1])) != 0 &&
                            std::isalpha(static_cast<unsigned char>(text[i + 1])) != 0;
        const bool separates =
            text[i] == ',' || text[i] == '_' || text[i] == '.' || (text[i] == '-' && inWord);
        spaced += separates ? ' ' : text[i];
    }
    std::istringstream stream(spaced);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

std::string lowered(std::string word) {
    std::transform(word.begin(), word.end(), word.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return word;
}

// Reads the words after the direction.
class WordReader {
  public:
    explicit WordReader(std::vector<std::string> words) : words_(std::move(words)) {}

    std::optional<Transposition> read() {
        if (const std::optional<int> octaves = readOctaves()) {
            if (atEnd()) return chromatic(7 * *octaves + 1, 0);
            if (!accept("and") && !accept("plus")) return std::nullopt;
            std::optional<Transposition> rest = readInterval();
            if (rest) rest->octaves += *octaves;
            return rest;
        }
        return readInterval();
    }

  private:
    [[nodiscard]] bool atEnd() const { return next_ == words_.size(); }
    [[nodiscard]] std::string word(std::size_t ahead = 0) const {
        return next_ + ahead < words_.size() ? lowered(words_[next_ + ahead]) : std::string();
    }
    bool accept(std::string_view expected) {
        if (word() != expected) return false;
        ++next_;
        return true;
    }
    void skipArticle() {
        if (!accept("a")) accept("an");
    }

    // "two octaves", "an octave" when more follows.
    std::optional<int> readOctaves() {
        std::size_t used = 1;
        std::optional<int> count;
        if (word() == "octave" && !word(1).empty()) {
            count = 1;
        } else if (word(1) == "octave" || word(1) == "octaves") {
            count = word() == "an" ? 1 : parseCount(word());
            used = 2;
        }
        if (count) next_ += used;
        return count;
    }

    const Quality* readQuality() {
        const bool twice = accept("doubly") || accept("double");
        for (const Quality& quality : kQualities) {
            const bool isDouble = quality.letters.size() == 2;
            if (isDouble != twice) continue;
            const std::string_view name =
                twice ? quality.word.substr(quality.word.find(' ') + 1) : quality.word;
            const std::string given = word();
            if (given == name || (given.size() >= 3 && given.size() <= 4 && name.starts_with(given))) {
                ++next_;
                return &quality;
            }
        }
        return nullptr;
    }

    std::optional<Transposition> readNamed() {
        std::string rest = word();
        for (std::size_t ahead = 1; next_ + ahead < words_.size(); ++ahead) rest += " " + word(ahead);
        const auto* named = std::ranges::find(kNamedIntervals, rest, &NamedInterval::name);
        if (named == kNamedIntervals.end()) return std::nullopt;
        next_ = words_.size();
        return chromatic(named->number, named->alteration);
    }

    // "min3" and "aug4" as two words; single letters are read by themselves.
    void splitDigits() {
        std::string& last = words_.back();
        const std::size_t digits = last.find_first_of("0123456789");
        constexpr std::size_t kShortestWord = 3;
        if (digits == std::string::npos || digits < kShortestWord) return;
        std::string number = last.substr(digits);
        last.resize(digits);
        words_.push_back(std::move(number));
    }

    std::optional<Transposition> readInterval() {
        skipArticle();
        if (!atEnd() && next_ + 1 == words_.size()) {
            splitDigits();
        }
        if (std::optional<Transposition> named = readNamed()) return named;
        if (!atEnd() && next_ + 1 == words_.size()) {
            if (std::optional<Transposition> letters = parseLetters(words_[next_])) return letters;
        }
        const Quality* quality = readQuality();
        const std::optional<int> number = parseNumber(word());
        if (!number || next_ + 1 != words_.size()) return std::nullopt;
        // Without a quality a fourth, fifth or octave is the perfect one; a third could be two things.
        if (quality == nullptr) quality = kQualities.data();
        const std::optional<int> alteration = alterationOf(*quality, *number);
        if (!alteration) return std::nullopt;
        return chromatic(*number, *alteration);
    }

    std::vector<std::string> words_;
    std::size_t next_ = 0;
};

std::string nearestName(const std::string& name) {
    // Names of one size look alike: with more than a slip of the pen another interval is as likely meant.
    constexpr std::size_t kSlip = 2;
    std::string nearest;
    bool isAlone = false;
    std::size_t nearestDistance = kSlip + 1;
    const std::string wanted = lowered(name);
    for (const std::string_view direction : {"", "up ", "down "}) {
        for (int number = 1; number <= static_cast<int>(kOrdinals.size()); ++number) {
            for (const Quality& quality : kQualities) {
                const std::optional<int> alteration = alterationOf(quality, number);
                if (!alteration || (number == 1 && *alteration < 0)) continue;
                std::string candidate(direction);
                candidate.append(quality.word)
                    .append(" ")
                    .append(kOrdinals[static_cast<std::size_t>(number - 1)]);
                const std::size_t distance = editDistance(wanted, candidate);
                if (distance < nearestDistance) {
                    nearest = candidate;
                    nearestDistance = distance;
                    isAlone = true;
                } else if (distance == nearestDistance) {
                    isAlone = false;
                }
            }
        }
    }
    return isAlone ? nearest : std::string();
}

engine::Problem unknownInterval(const std::string& name) {
    engine::Problem problem = problemWith("\"" + name + "\" is not a known interval", "");
    const std::string nearest = nearestName(name);
    if (!nearest.empty()) problem.message += "; did you mean \"" + nearest + "\"";
    problem.remedy =
        "Write up or down, a quality (perfect, major, minor, augmented, diminished, doubly augmented, doubly "
        "diminished) and a number (unison to fifteenth), a tone, semitone or tritone, or letters (P M m A d "
        "AA dd) and digits: "
        "\"up minor third\", \"down P5\", \"m-3\", \"two octaves and a major second\"";
    return problem;
}

}  // namespace

engine::Result<Transposition> parseInterval(const std::string& name) {
    std::vector<std::string> words = wordsOf(name);
    std::optional<bool> down;
    const auto isDirection = [&](const std::string& word) {
        return lowered(word) == "up" || lowered(word) == "down";
    };
    if (!words.empty() && isDirection(words.front())) {
        down = lowered(words.front()) == "down";
        words.erase(words.begin());
    } else if (!words.empty() && isDirection(words.back())) {
        down = lowered(words.back()) == "down";
        words.pop_back();
    }
    std::optional<Transposition> result = WordReader(words).read();
    if (!result) return unknownInterval(name);
    // "down m-3" says it twice; "up m-3" contradicts itself.
    if (down == false && result->down) return unknownInterval(name);
    if (down) result->down = *down;
    if (result->steps == 0 && result->octaves == 0 && result->alteration < 0) {
        return problemWith("\"" + name + "\": a unison cannot be diminished",
                           "Write an augmented unison in the other direction");
    }
    return *result;
}

Transposition bySemitones(int semitones, Transposition::Spelling spelling) {
    Transposition result;
    result.kind = Transposition::Kind::semitones;
    result.down = semitones < 0;
    result.semitones = std::abs(semitones) % 12;
    result.octaves = std::abs(semitones) / 12;
    result.spelling = spelling;
    return result;
}

Transposition bySteps(int steps) {
    Transposition result;
    result.kind = Transposition::Kind::diatonic;
    result.down = steps < 0;
    result.steps = std::abs(steps);
    return result;
}

Transposition withOctaves(Transposition interval, int octaves) {
    if (octaves >= 0) {
        interval.octaves += octaves;
        return interval;
    }
    constexpr int kMajor[] = {0, 2, 4, 5, 7, 9, 11, 12};  // semitones of major and perfect intervals
    const bool down = interval.down;
    const int added = interval.octaves + octaves;
    const int steps = interval.steps + 7 * added;
    if (interval.kind == Transposition::Kind::diatonic) return bySteps(down ? -steps : steps);
    if (interval.kind == Transposition::Kind::semitones) {
        const int semitones = interval.semitones + 12 * added;
        return bySemitones(down ? -semitones : semitones, interval.spelling);
    }
    const int semitones = kMajor[interval.steps] + interval.alteration + 12 * added;
    const bool turns = steps < 0 || (steps == 0 && semitones < 0);
    const int distance = std::abs(steps);
    const int size = turns ? -semitones : semitones;
    Transposition result = chromatic(distance + 1, size - kMajor[distance % 7] - 12 * (distance / 7));
    result.down = down != turns;
    return result;
}

Transposition byOctaves(int octaves) {
    Transposition result;
    result.down = octaves < 0;
    result.octaves = std::abs(octaves);
    return result;
}

}  // namespace rovescio::cli
