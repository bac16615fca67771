// Character encodings of score files: to UTF-8 for reading, and back for
// writing.
#pragma once

#include <string>

#include "engine/model/problem.h"
#include "musicxml/file/bytes.h"

namespace rovescio::musicxml {

struct Encoding {
    std::string name = "UTF-8";  // as iconv knows it
    std::string byteOrderMark;   // what stands before the text in the file; never
                                 // part of UTF-8 text

    [[nodiscard]] bool isUtf8() const { return name == "UTF-8"; }
};

struct DecodedText {
    Bytes text;  // UTF-8; of a UTF-8 file the very bytes, its byte order
                 // mark included
    Encoding encoding;
};

// Finds out the encoding by byte order mark and XML declaration. The file name
// is for messages.
engine::Result<DecodedText> decodeText(Bytes bytes, const std::string& file);
// The bytes of a file in the given encoding.
engine::Result<std::string> encodeText(std::string text, const Encoding& encoding, const std::string& file);

}  // namespace rovescio::musicxml
