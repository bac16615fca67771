// Conversion between UTF-16 and the byte encodings that the subset knows.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace rovescio::platform {

/// What to do with a UTF-16 byte order mark: part of the text, or a sign of the byte order around it.
enum class ByteOrderMark { kText, kSign };

/// Decodes bytes; nothing when they are malformed or the encoding is unknown.
std::optional<std::u16string> decode(std::string_view bytes, CFStringEncoding encoding,
                                     ByteOrderMark mark = ByteOrderMark::kText);

struct EncodeOptions {
    CFStringEncoding encoding = kCFStringEncodingUTF8;
    UInt8 lossByte = 0;  ///< stands in for what the encoding lacks; 0: stop there
    ByteOrderMark mark = ByteOrderMark::kText;
    std::size_t capacity = std::numeric_limits<std::size_t>::max();  ///< the most bytes to produce
};

struct Encoded {
    std::string bytes;
    std::size_t units = 0;  ///< count of UTF-16 units converted; fewer than given when it had to stop
};

/// Encodes as much of a text as possible, whole characters only. An unknown encoding converts nothing.
Encoded encode(std::u16string_view text, const EncodeOptions& options);

/// UTF-8 bytes of a text for names of files and symbols; nothing when it has a 0 or half a surrogate pair.
std::optional<std::string> encodeName(std::u16string_view text);

}  // namespace rovescio::platform
