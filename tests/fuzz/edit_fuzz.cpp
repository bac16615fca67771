// Changes a random text at random: what comes before a zero byte is parsed, what comes behind it decides the
// changes. The tree must print as a text with the same elements as a model that changes likewise.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "xml/edited_tree.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace rovescio::xml;
    constexpr int kMostChanges = 40;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string_view text = input.substr(0, input.find('\0'));
    if (!Tree(text, kNames).isSound()) return 0;
    std::string_view choices = input.substr(std::min(size, text.size() + 1));
    EditedTree edited(text, [&](int count) {
        if (choices.empty()) return 0;
        const int choice = static_cast<unsigned char>(choices.front()) % count;
        choices.remove_prefix(1);
        return choice;
    });
    for (int i = 0; i < kMostChanges && !choices.empty(); ++i) edited.change();
    if (const std::string broken = edited.broken(); !broken.empty()) {
        std::cerr << "This does not hold: " << broken << '\n';
        std::abort();
    }
    return 0;
}
