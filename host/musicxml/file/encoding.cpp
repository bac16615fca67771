// Detection and conversion of encodings.
#include "musicxml/file/encoding.h"

#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <string_view>

#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";

// The encoding that the XML declaration names, in upper case; empty when it
// names none.
std::string declaredEncoding(std::string_view bytes) {
    if (!bytes.starts_with("<?xml")) return {};
    const std::string_view declaration = bytes.substr(0, bytes.substr(0, 1000).find("?>"));
    const std::size_t word = declaration.find("encoding");
    if (word == std::string_view::npos) return {};
    const std::size_t open = declaration.find_first_of("\"'", word);
    if (open == std::string_view::npos) return {};
    const std::size_t close = declaration.find(declaration[open], open + 1);
    if (close == std::string_view::npos) return {};
    std::string name(trimmed(declaration.substr(open + 1, close - open - 1)));
    for (char& c : name) {
        const auto byte = static_cast<unsigned char>(c);
        // Anything else could be an option of the converter instead of a name.
        if (std::isalnum(byte) == 0 && c != '-' && c != '_' && c != '.' && c != ':') return "?";
        c = static_cast<char>(std::toupper(byte));
    }
    return name;
}

Encoding detect(std::string_view bytes) {
    using namespace std::string_view_literals;
    if (bytes.starts_with(kUtf8Mark)) return {};
    if (bytes.starts_with(kUtf16LittleMark)) return {"UTF-16LE", std::string(kUtf16LittleMark)};
    if (bytes.starts_with(kUtf16BigMark)) return {"UTF-16BE", std::string(kUtf16BigMark)};
    if (bytes.starts_with("<\0"sv)) return {"UTF-16LE", {}};
    if (bytes.starts_with("\0<"sv)) return {"UTF-16BE", {}};
    const std::string name = declaredEncoding(bytes);
    // A declaration that can be read byte by byte is not in UTF-16, whatever it
    // says.
    if (name.empty() || name == "UTF-8" || name == "UTF8" || name == "US-ASCII" ||
        name.starts_with("UTF-16") || name.starts_with("UTF-32")) {
        return {};
    }
    return {name, {}};
}

class Converter {
  public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (isOpen()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // iconv marks failure with a handle of all ones.
    [[nodiscard]] bool isOpen() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

    // Converts everything; false when some bytes have no meaning in the one or
    // the other encoding.
    bool convert(std::string_view in, std::string& out) {
        char* source = const_cast<char*>(in.data());
        std::size_t left = in.size();
        char buffer[1 << 14];
        while (left > 0) {
            char* target = buffer;
            std::size_t room = sizeof buffer;
            const std::size_t result = iconv(handle_, &source, &left, &target, &room);
            out.append(buffer, sizeof buffer - room);
            if (result == static_cast<std::size_t>(-1) && room == sizeof buffer) return false;
        }
        return true;
    }

  private:
    iconv_t handle_;
};

}  // namespace

engine::Result<DecodedText> decodeText(Bytes bytes, const std::string& file) {
    DecodedText decoded;
    decoded.encoding = detect(bytes.view());
    if (decoded.encoding.isUtf8()) {
        decoded.text = std::move(bytes);
        return decoded;
    }
    Converter converter("UTF-8", decoded.encoding.name.c_str());
    if (!converter.isOpen()) {
        return engine::Problem{"the encoding \"" + decoded.encoding.name + "\" is unknown",
                               file,
                               1,
                               {},
                               "Export the score again as UTF-8."};
    }
    const std::string_view body = bytes.view().substr(decoded.encoding.byteOrderMark.size());
    std::string text;
    if (!converter.convert(body, text)) {
        const auto line = 1 + std::count(text.begin(), text.end(), '\n');
        return engine::Problem{
            "the file is not in the encoding " + decoded.encoding.name + " that it declares",
            file,
            static_cast<int>(line),
            {},
            "Export the score again as UTF-8."};
    }
    // Encodings with several ways to write the same text cannot promise that the rest of the file stays.
    const engine::Result<std::string> again = encodeText(text, decoded.encoding, file);
    if (!again || again.value() != bytes.view()) {
        return engine::Problem{
            "the encoding " + decoded.encoding.name + " does not allow the file to be written back unchanged",
            file,
            1,
            {},
            "Export the score again as UTF-8."};
    }
    decoded.text = std::move(text);
    return decoded;
}

engine::Result<std::string> encodeText(std::string text, const Encoding& encoding, const std::string& file) {
    if (encoding.isUtf8()) return text;
    std::string bytes = encoding.byteOrderMark;
    Converter converter(encoding.name.c_str(), "UTF-8");
    if (!converter.isOpen() || !converter.convert(text, bytes)) {
        return engine::Problem{"the score cannot be written in the encoding " + encoding.name,
                               file,
                               0,
                               {},
                               "Export the original score again as UTF-8."};
    }
    return bytes;
}

}  // namespace rovescio::musicxml
