// Reads the parts of XML that occur in several places: names, comments, instructions, references and quoted
// values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "xml/characters.h"
#include "xml/tree.h"

namespace rovescio::xml {

// Text as it may be shown in a sentence: shortened.
std::string shown(std::string_view text);

// A character or predefined reference at the start of text that begins with '&'.
struct Reference {
    std::size_t length = 0;  // including the ';'; 0 when there is no meaningful one
    std::uint32_t character = 0;
};
Reference referenceAt(std::string_view text);

// Its functions take a place in the text and return the place after what they read, or null after a fault.
// The characters of the text are known to be legal.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : begin_(text.data()), end_(text.data() + text.size()) {}

    [[nodiscard]] const char* begin() const { return begin_; }
    [[nodiscard]] const char* end() const { return end_; }
    [[nodiscard]] const ParseFault& fault() const { return fault_; }
    [[nodiscard]] bool startsWith(const char* p, std::string_view literal) const {
        return std::string_view(p, static_cast<std::size_t>(end_ - p)).starts_with(literal);
    }

    // Keeps the fault and returns null.
    const char* fail(ParseFault::Kind kind, const char* place, std::string description);
    const char* malformed(const char* place, std::string description) {
        return fail(ParseFault::Kind::malformed, place, std::move(description));
    }
    // The text is over before the thing named is.
    const char* truncated(std::string_view thing);

    // Starts after "<!--".
    const char* comment(const char* p);
    // Starts after "<?".
    const char* instruction(const char* p);
    // From the '&'.
    const char* reference(const char* p);
    // White space, comments and instructions.
    const char* miscellany(const char* p);
    // From the opening quote of an attribute's value.
    const char* attributeValue(const char* p);
    // A name that must be there, for the thing named.
    const char* name(const char* p, std::string_view thing);
    // White space that must be there, inside the thing named.
    const char* space(const char* p, std::string_view thing);
    // Characters that must be there, inside the thing named.
    const char* expect(const char* p, std::string_view literal, std::string_view thing);

  private:
    const char* begin_;
    const char* end_;
    ParseFault fault_;
};

}  // namespace rovescio::xml
