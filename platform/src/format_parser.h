// Splits a format text into plain runs and conversions, and numbers the arguments that they take.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace rovescio::platform {

/// How a variable argument has to be fetched.
enum class ArgumentType { kUnused, kInt, kLong, kLongLong, kDouble, kLongDouble, kPointer };

/// A width or a precision: written in the format, or taken from an argument.
struct Measure {
    bool isArgument = false;
    int value = 0;  ///< the number itself, or the zero-based index of the argument
};

struct Conversion {
    char letter = 0;            ///< as written: d, x, @, ...
    std::string flags;          ///< of "-+ #0'", as written
    std::string lengthLetters;  ///< hh, h, l, ll, q, L, z, t or j; empty for none
    ArgumentType type = ArgumentType::kUnused;
    std::optional<Measure> width;
    std::optional<Measure> precision;
    std::size_t argument = 0;  ///< zero-based index
};

using FormatPiece = std::variant<std::u16string, Conversion>;

struct ParsedFormat {
    std::vector<FormatPiece> pieces;
    std::vector<ArgumentType> arguments;  ///< in the order in which they were passed
};

/// Unknown conversions become plain text without their per cent sign; one cut off by the end is dropped.
ParsedFormat parseFormat(std::u16string_view format);

}  // namespace rovescio::platform
