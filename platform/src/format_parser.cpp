// Reading of conversions: position, flags, width, precision, length, letter.
#include "format_parser.h"

#include <algorithm>
#include <array>
#include <utility>

namespace rovescio::platform {

namespace {

// Keep what a format can demand within reason: no real one comes near these bounds.
constexpr int kWidestField = 32767;
constexpr std::size_t kMostArguments = 256;

constexpr std::array<std::string_view, 10> kLengths = {"", "hh", "h", "l", "ll", "q", "L", "z", "t", "j"};
constexpr std::string_view kIntegerLetters = "diouxX";
constexpr std::string_view kFloatingLetters = "aAeEfFgG";
constexpr std::string_view kPointerLetters = "@sSp";
constexpr std::string_view kCharacterLetters = "cC";

bool isOneOf(std::string_view letters, char letter) {
    return letters.find(letter) != std::string_view::npos;
}

bool isKnown(const Conversion& conversion) {
    const char letter = conversion.letter;
    return letter != '\0' &&
           std::find(kLengths.begin(), kLengths.end(), conversion.lengthLetters) != kLengths.end() &&
           (isOneOf(kIntegerLetters, letter) || isOneOf(kFloatingLetters, letter) ||
            isOneOf(kPointerLetters, letter) || isOneOf(kCharacterLetters, letter));
}

ArgumentType argumentType(const Conversion& conversion) {
    const std::string& length = conversion.lengthLetters;
    if (isOneOf(kPointerLetters, conversion.letter)) {
        return ArgumentType::kPointer;
    }
    if (isOneOf(kFloatingLetters, conversion.letter)) {
        return length == "L" ? ArgumentType::kLongDouble : ArgumentType::kDouble;
    }
    if (isOneOf(kCharacterLetters, conversion.letter) || length.empty() || length.front() == 'h') {
        return ArgumentType::kInt;
    }
    return length == "l" || length == "z" || length == "t" ? ArgumentType::kLong : ArgumentType::kLongLong;
}

class Parser {
  public:
    explicit Parser(std::u16string_view format) : rest_(format) {}

    ParsedFormat run() {
        while (!rest_.empty()) {
            const std::size_t percent = std::min(rest_.find(u'%'), rest_.size());
            plain_ += rest_.substr(0, percent);
            rest_.remove_prefix(percent);
            if (!rest_.empty()) {
                rest_.remove_prefix(1);
                readConversion();
            }
        }
        flushPlain();
        return std::move(result_);
    }

  private:
    /// The next unit as a letter; 0 at the end and for units outside ASCII.
    [[nodiscard]] char peek() const {
        return rest_.empty() || rest_.front() > 0x7F ? '\0' : static_cast<char>(rest_.front());
    }

    bool take(char letter) {
        if (peek() != letter || rest_.empty()) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    std::string takeWhile(std::string_view letters) {
        std::string taken;
        while (peek() != '\0' && isOneOf(letters, peek())) {
            taken.push_back(peek());
            rest_.remove_prefix(1);
        }
        return taken;
    }

    int takeNumber() {
        int value = 0;
        for (const char digit : takeWhile("0123456789")) {
            value = std::min(value * 10 + (digit - '0'), kWidestField);
        }
        return value;
    }

    /// Reads `n$` and returns the index n - 1; leaves other text, such as a width, alone.
    std::optional<std::size_t> takePosition() {
        const std::u16string_view start = rest_;
        const int position = takeNumber();
        if (position > 0 && take('$')) {
            return static_cast<std::size_t>(position) - 1;
        }
        rest_ = start;
        return std::nullopt;
    }

    std::optional<std::size_t> claim(std::optional<std::size_t> position, ArgumentType type) {
        const std::size_t index = position ? *position : next_++;
        if (index >= kMostArguments) {
            return std::nullopt;
        }
        auto& arguments = result_.arguments;
        arguments.resize(std::max(arguments.size(), index + 1), ArgumentType::kUnused);
        arguments[index] = type;
        return index;
    }

    Measure takeMeasure() {
        if (!take('*')) {
            return {.isArgument = false, .value = takeNumber()};
        }
        const auto index = claim(takePosition(), ArgumentType::kInt);
        return {.isArgument = index.has_value(), .value = static_cast<int>(index.value_or(0))};
    }

    void readConversion() {
        if (take('%')) {
            plain_.push_back(u'%');
            return;
        }
        Conversion conversion;
        const auto position = takePosition();
        conversion.flags = takeWhile("-+ #0'");
        if (peek() == '*' || (peek() >= '1' && peek() <= '9')) {
            conversion.width = takeMeasure();
        }
        if (take('.')) {
            conversion.precision = takeMeasure();
        }
        conversion.lengthLetters = takeWhile("hlqLztj");
        if (rest_.empty()) {
            return;
        }
        conversion.letter = peek();
        conversion.type = argumentType(conversion);
        const auto index = isKnown(conversion) ? claim(position, conversion.type) : std::nullopt;
        if (!index) {
            plain_.push_back(rest_.front());
            rest_.remove_prefix(1);
            return;
        }
        rest_.remove_prefix(1);
        conversion.argument = *index;
        flushPlain();
        result_.pieces.emplace_back(std::move(conversion));
    }

    void flushPlain() {
        if (!plain_.empty()) {
            result_.pieces.emplace_back(std::exchange(plain_, {}));
        }
    }

    std::u16string_view rest_;
    std::u16string plain_;
    std::size_t next_ = 0;
    ParsedFormat result_;
};

}  // namespace

ParsedFormat parseFormat(std::u16string_view format) {
    return Parser(format).run();
}

}  // namespace rovescio::platform
