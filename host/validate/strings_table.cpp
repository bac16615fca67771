// The scanner of .strings files.
#include "validate/strings_table.h"

#include <utility>

namespace rovescio::validate {

namespace {

class Scanner {
  public:
    explicit Scanner(std::string_view source) : rest_(source) {}

    // Passes over space and comments; true at the end of the source.
    bool atEnd() {
        for (;;) {
            rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
            if (rest_.starts_with("/*")) {
                skipPast("*/", 2);
            } else if (rest_.starts_with("//")) {
                skipPast("\n", 2);
            } else {
                return rest_.empty();
            }
        }
    }

    bool take(char sign) {
        if (atEnd() || rest_.front() != sign) return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::optional<std::string> quoted() {
        if (!take('"')) return std::nullopt;
        std::size_t length = 0;
        while (length < rest_.size() && rest_[length] != '"') length += rest_[length] == '\\' ? 2 : 1;
        if (length >= rest_.size()) return std::nullopt;
        std::string text(rest_.substr(0, length));
        rest_.remove_prefix(length + 1);
        return text;
    }

  private:
    void skipPast(std::string_view mark, std::size_t from) {
        const std::size_t found = rest_.find(mark, from);
        rest_.remove_prefix(found == std::string_view::npos ? rest_.size() : found + mark.size());
    }

    std::string_view rest_;
};

}  // namespace

std::optional<StringsTable> parseStrings(std::string_view source) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (source.starts_with(kByteOrderMark)) source.remove_prefix(kByteOrderMark.size());
    Scanner scanner(source);
    StringsTable table;
    while (!scanner.atEnd()) {
        std::optional<std::string> key = scanner.quoted();
        if (!key || !scanner.take('=')) return std::nullopt;
        std::optional<std::string> text = scanner.quoted();
        if (!text || !scanner.take(';')) return std::nullopt;
        if (!table.emplace(std::move(*key), std::move(*text)).second) return std::nullopt;
    }
    return table;
}

}  // namespace rovescio::validate
