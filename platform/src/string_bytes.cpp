// Strings made from bytes in some encoding and written out as bytes again.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "encodings.h"
#include "string_object.h"

using namespace rovescio::platform;

namespace {

CFStringRef createFromBytes(std::string_view bytes, CFStringEncoding encoding,
                            ByteOrderMark mark = ByteOrderMark::kText) {
    auto text = decode(bytes, encoding, mark);
    return text ? new __CFString(*std::move(text)) : nullptr;
}

/// The units of a range that the caller promises to lie inside the string.
std::u16string_view unitsIn(CFStringRef string, CFRange range, const char* function) {
    const std::u16string_view text = required(string, function).text;
    const auto size = static_cast<CFIndex>(text.size());
    if (range.location < 0 || range.length < 0 || range.location > size ||
        range.length > size - range.location) {
        rejectArgument(function);
    }
    return text.substr(static_cast<std::size_t>(range.location), static_cast<std::size_t>(range.length));
}

}  // namespace

CFStringRef CFStringCreateWithCString(CFAllocatorRef /*allocator*/, const char* text,
                                      CFStringEncoding encoding) {
    return createFromBytes(&required(text, __func__), encoding);
}

CFStringRef CFStringCreateWithPascalString(CFAllocatorRef /*allocator*/, ConstStr255Param text,
                                           CFStringEncoding encoding) {
    const std::size_t count = required(text, __func__);
    return createFromBytes({reinterpret_cast<const char*>(text + 1), count}, encoding);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef /*allocator*/, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    if (count < 0 || (bytes == nullptr && count > 0)) {
        rejectArgument(__func__);
    }
    return createFromBytes({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)}, encoding,
                           isExternalRepresentation != 0 ? ByteOrderMark::kSign : ByteOrderMark::kText);
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    const std::u16string_view units = unitsIn(string, range, __func__);
    std::copy(units.begin(), units.end(), buffer);
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
    const std::u16string& text = required(string, __func__).text;
    if (buffer == nullptr || size <= 0) {
        return 0;
    }
    const auto capacity = static_cast<std::size_t>(size) - 1;
    const Encoded encoded = encode(text, {.encoding = encoding, .capacity = capacity});
    const bool isWhole = encoded.units == text.size();
    const std::size_t count = isWhole ? encoded.bytes.size() : 0;
    std::memcpy(buffer, encoded.bytes.data(), count);
    buffer[count] = '\0';
    return static_cast<Boolean>(isWhole);
}

Boolean CFStringGetPascalString(CFStringRef string, StringPtr buffer, CFIndex size,
                                CFStringEncoding encoding) {
    const std::u16string& text = required(string, __func__).text;
    constexpr std::size_t kMostBytes = 255;
    if (buffer == nullptr || size <= 0) {
        return 0;
    }
    const Encoded encoded = encode(text, {.encoding = encoding});
    if (encoded.bytes.size() > std::min(kMostBytes, static_cast<std::size_t>(size) - 1)) {
        return 0;
    }
    if (encoded.units != text.size()) {
        buffer[0] = 0;
        return 0;
    }
    buffer[0] = static_cast<unsigned char>(encoded.bytes.size());
    std::memcpy(buffer + 1, encoded.bytes.data(), encoded.bytes.size());
    return 1;
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternalRepresentation, UInt8* buffer, CFIndex capacity,
                         CFIndex* usedBytes) {
    EncodeOptions options{.encoding = encoding, .lossByte = lossByte};
    options.mark = isExternalRepresentation != 0 ? ByteOrderMark::kSign : ByteOrderMark::kText;
    if (buffer != nullptr) {
        options.capacity = static_cast<std::size_t>(std::max<CFIndex>(capacity, 0));
    }
    const Encoded encoded = encode(unitsIn(string, range, __func__), options);
    if (buffer != nullptr) {
        std::copy(encoded.bytes.begin(), encoded.bytes.end(), buffer);
    }
    if (usedBytes != nullptr) {
        *usedBytes = static_cast<CFIndex>(encoded.bytes.size());
    }
    return static_cast<CFIndex>(encoded.units);
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    CFIndex bytesPerUnit = 1;
    switch (encoding) {
        case kCFStringEncodingUTF8:
            bytesPerUnit = 3;
            break;
        case kCFStringEncodingUTF16:
        case kCFStringEncodingUTF16BE:
        case kCFStringEncodingUTF16LE:
            bytesPerUnit = 2;
            break;
        case kCFStringEncodingMacRoman:
        case kCFStringEncodingWindowsLatin1:
        case kCFStringEncodingISOLatin1:
        case kCFStringEncodingASCII:
            break;
        default:
            return kCFNotFound;
    }
    const bool fits = length >= 0 && length <= std::numeric_limits<CFIndex>::max() / bytesPerUnit;
    return fits ? length * bytesPerUnit : kCFNotFound;
}
