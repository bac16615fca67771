// A parser by descent, with a bound on the depth that hostile nesting can reach.
#include "old_style_parser.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "string_object.h"

namespace rovescio::platform {

namespace {

constexpr int kDeepestNesting = 256;

bool isLineEnd(char16_t unit) {
    return unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029;
}

bool isSpace(char16_t unit) {
    return isLineEnd(unit) || unit == u' ' || unit == u'\t' || unit == 0x0B || unit == 0x0C;
}

bool isBare(char16_t unit) {
    const bool isAlphanumeric =
        (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9');
    return isAlphanumeric ||
           (unit != 0 && std::u16string_view(u"_$/:.-").find(unit) != std::u16string_view::npos);
}

/// The value of a digit in a base of at most 16; nothing for other units.
std::optional<unsigned> digitValue(char16_t unit, unsigned base) {
    unsigned value = base;
    if (unit >= u'0' && unit <= u'9') {
        value = unit - u'0';
    } else if (unit >= u'a' && unit <= u'f') {
        value = unit - u'a' + 10U;
    } else if (unit >= u'A' && unit <= u'F') {
        value = unit - u'A' + 10U;
    }
    return value < base ? std::optional(value) : std::nullopt;
}

class OldStyleParser {
  public:
    explicit OldStyleParser(std::u16string_view text) : rest_(text) {}

    Dictionary run() {
        skipSpace();
        const bool hasBraces = take(u'{');
        bool isWhole = readPairs(&pairs_, 0);
        if (hasBraces) {
            isWhole = isWhole && take(u'}');
            skipSpace();
        }
        return isWhole && rest_.empty() ? std::move(pairs_) : Dictionary{};
    }

  private:
    /// What a value turned out to be: a text, or something sound that a table has no use for.
    struct Value {
        std::optional<std::u16string> text;
    };

    bool take(char16_t unit) {
        if (rest_.empty() || rest_.front() != unit) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    /// Skips space and comments; a comment without an end reaches to the end of the text.
    void skipSpace() {
        while (!rest_.empty()) {
            if (isSpace(rest_.front())) {
                rest_.remove_prefix(1);
            } else if (rest_.starts_with(u"//")) {
                const auto end = std::find_if(rest_.begin(), rest_.end(), isLineEnd);
                rest_.remove_prefix(static_cast<std::size_t>(end - rest_.begin()));
            } else if (rest_.starts_with(u"/*")) {
                const std::size_t end = rest_.find(u"*/", 2);
                rest_.remove_prefix(end == std::u16string_view::npos ? rest_.size() : end + 2);
            } else {
                return;
            }
        }
    }

    /// Reads pairs until a closing brace or the end. `pairs` is NULL where they are only checked.
    bool readPairs(Dictionary* pairs, int depth) {
        skipSpace();
        while (!rest_.empty() && rest_.front() != u'}') {
            auto key = readText();
            if (!key) {
                return false;
            }
            skipSpace();
            Value value{key};
            if (take(u'=')) {
                auto found = readValue(depth);
                if (!found) {
                    return false;
                }
                value = *std::move(found);
                skipSpace();
            }
            if (!take(u';')) {
                return false;
            }
            if (pairs != nullptr) {
                store(*pairs, *std::move(key), std::move(value));
            }
            skipSpace();
        }
        return true;
    }

    static void store(Dictionary& pairs, std::u16string key, Value value) {
        if (value.text) {
            pairs.insert_or_assign(std::move(key),
                                   Owned<const Object>(new __CFString(*std::move(value.text))));
        } else {
            pairs.erase(key);
        }
    }

    std::optional<Value> readValue(int depth) {
        skipSpace();
        if (depth >= kDeepestNesting) {
            return std::nullopt;
        }
        bool isSound = false;
        if (take(u'{')) {
            isSound = readPairs(nullptr, depth + 1) && take(u'}');
        } else if (take(u'(')) {
            isSound = readList(depth + 1);
        } else if (take(u'<')) {
            isSound = readData();
        } else if (auto text = readText()) {
            return Value{std::move(text)};
        }
        return isSound ? std::optional(Value{}) : std::nullopt;
    }

    /// Reads the values of a list up to its closing parenthesis; a comma may stand after the last one.
    bool readList(int depth) {
        skipSpace();
        while (!take(u')')) {
            if (!readValue(depth)) {
                return false;
            }
            skipSpace();
            if (!take(u',') && (rest_.empty() || rest_.front() != u')')) {
                return false;
            }
            skipSpace();
        }
        return true;
    }

    bool readData() {
        std::size_t digits = 0;
        while (!rest_.empty() && (isSpace(rest_.front()) || digitValue(rest_.front(), 16))) {
            digits += isSpace(rest_.front()) ? 0 : 1;
            rest_.remove_prefix(1);
        }
        return take(u'>') && digits % 2 == 0;
    }

    std::optional<std::u16string> readText() {
        if (take(u'"')) {
            return readQuoted(u'"');
        }
        if (take(u'\'')) {
            return readQuoted(u'\'');
        }
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), isBare);
        std::u16string text(rest_.begin(), end);
        rest_.remove_prefix(text.size());
        return text.empty() ? std::nullopt : std::optional(std::move(text));
    }

    std::optional<std::u16string> readQuoted(char16_t quote) {
        std::u16string text;
        while (!rest_.empty()) {
            const char16_t unit = rest_.front();
            rest_.remove_prefix(1);
            if (unit == quote) {
                return text;
            }
            if (unit != u'\\') {
                text.push_back(unit);
            } else if (!rest_.empty()) {
                text.push_back(readEscape());
            }
        }
        return std::nullopt;
    }

    /// Reads what follows a backslash. A letter without a meaning of its own stands for itself.
    char16_t readEscape() {
        if (digitValue(rest_.front(), 8)) {
            return readCode(8, 3);
        }
        const char16_t unit = rest_.front();
        rest_.remove_prefix(1);
        if (unit == u'U') {
            return readCode(16, 4);
        }
        constexpr std::u16string_view kLetters = u"abfnrtv";
        constexpr std::u16string_view kMeanings = u"\a\b\f\n\r\t\v";
        const std::size_t index = kLetters.find(unit);
        return index == std::u16string_view::npos ? unit : kMeanings[index];
    }

    char16_t readCode(unsigned base, int mostDigits) {
        unsigned code = 0;
        for (int i = 0; i < mostDigits && !rest_.empty(); ++i) {
            const auto digit = digitValue(rest_.front(), base);
            if (!digit) {
                break;
            }
            code = code * base + *digit;
            rest_.remove_prefix(1);
        }
        return static_cast<char16_t>(base == 8 ? code & 0xFF : code);
    }

    std::u16string_view rest_;
    Dictionary pairs_;
};

}  // namespace

Dictionary parseOldStyle(std::u16string_view text) {
    return OldStyleParser(text).run();
}

}  // namespace rovescio::platform
