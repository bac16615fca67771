// Tells the formats of property lists apart and reads XML and binary ones through the property-list library.
#include "property_list.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

#include "encodings.h"
#include "number.h"
#include "old_style_parser.h"
#include "property_list_guard.h"
#include "string_object.h"

namespace rovescio::platform {

namespace {

struct FreeTree {
    void operator()(void* tree) const { plist_free(tree); }
};
using Tree = std::unique_ptr<void, FreeTree>;

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

Owned<const Object> stringObject(plist_t node) {
    std::uint64_t count = 0;
    const char* bytes = plist_get_string_ptr(node, &count);
    auto text = bytes != nullptr ? decode({bytes, count}, kCFStringEncodingUTF8) : std::nullopt;
    return Owned<const Object>(text ? new __CFString(*std::move(text)) : nullptr);
}

Owned<const Object> objectOf(plist_t node) {
    switch (plist_get_node_type(node)) {
        case PLIST_STRING:
            return stringObject(node);
        case PLIST_UINT: {
            std::uint64_t value = 0;
            plist_get_uint_val(node, &value);
            // The library keeps negative numbers in the same unsigned word.
            return Owned<const Object>(new __CFNumber(static_cast<SInt64>(value)));
        }
        case PLIST_REAL: {
            double value = 0;
            plist_get_real_val(node, &value);
            return Owned<const Object>(new __CFNumber(value));
        }
        case PLIST_BOOLEAN: {
            std::uint8_t value = 0;
            plist_get_bool_val(node, &value);
            return Owned<const Object>(value != 0 ? kCFBooleanTrue : kCFBooleanFalse);
        }
        default:
            return nullptr;
    }
}

Dictionary pairsOf(plist_t root) {
    Dictionary dictionary;
    if (plist_get_node_type(root) != PLIST_DICT) {
        return dictionary;
    }
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(root, &position);
    const std::unique_ptr<void, decltype(&std::free)> iterator(position, &std::free);
    while (true) {
        char* keyBytes = nullptr;
        plist_t node = nullptr;
        plist_dict_next_item(root, position, &keyBytes, &node);
        const Text key(keyBytes);
        if (node == nullptr) {
            return dictionary;
        }
        auto name = key ? decode(key.get(), kCFStringEncodingUTF8) : std::nullopt;
        if (auto value = objectOf(node); name && value) {
            dictionary.insert_or_assign(*std::move(name), std::move(value));
        }
    }
}

using Reader = void (*)(const char*, std::uint32_t, plist_t*);

Dictionary readWith(Reader reader, std::string_view bytes) {
    plist_t root = nullptr;
    reader(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    const Tree tree(root);
    return root != nullptr ? pairsOf(root) : Dictionary{};
}

bool isMarkedUtf16(std::string_view bytes) {
    return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE");
}

bool looksLikeXml(std::u16string_view text) {
    const std::size_t start = text.find_first_not_of(u" \t\r\n");
    return start != std::u16string_view::npos && text[start] == u'<';
}

}  // namespace

Dictionary parsePropertyList(std::string_view bytes) {
    if (bytes.starts_with("bplist")) {
        return isHarmlessBinary(bytes) ? readWith(plist_from_bin, bytes) : Dictionary{};
    }
    const bool isUtf16 = isMarkedUtf16(bytes);
    const auto text = isUtf16 ? decode(bytes, kCFStringEncodingUTF16, ByteOrderMark::kSign)
                              : decode(bytes, kCFStringEncodingUTF8);
    if (!text) {
        return {};
    }
    if (!looksLikeXml(*text)) {
        return parseOldStyle(*text);
    }
    // The library reads XML in UTF-8 only.
    const std::string converted = isUtf16 ? encode(*text, {.encoding = kCFStringEncodingUTF8}).bytes : "";
    const std::string_view xml = isUtf16 ? converted : bytes.substr(bytes.find('<'));
    return isHarmlessXml(xml) ? readWith(plist_from_xml, xml) : Dictionary{};
}

}  // namespace rovescio::platform
