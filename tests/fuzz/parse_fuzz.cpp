// Parses random texts. Whatever is accepted must be a tree that fits its text, and whatever is refused must
// have a fault that can be shown.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include "xml/tree.h"
#include "xml/tree_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace rovescio::xml;
    static constexpr std::string_view kVocabulary[] = {"note", "pitch", "a", "b"};
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Tree tree(text, kVocabulary);
    std::string_view broken = TreeCheck(tree).broken();
    if (decoded(escaped(text)) != text) broken = "what is escaped is decoded again";
    if (!broken.empty()) {
        std::cerr << "This does not hold: " << broken << '\n';
        std::abort();
    }
    return 0;
}
