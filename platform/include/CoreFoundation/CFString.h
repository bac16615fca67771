// Immutable UTF-16 strings of the CoreFoundation subset: making, measuring, converting, comparing.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFStringEncoding = UInt32;

constexpr CFStringEncoding kCFStringEncodingInvalidId = 0xFFFFFFFFU;

/// The encodings that the subset converts from and to; every other value counts as unknown.
enum CFStringBuiltInEncodings : CFStringEncoding {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100
};

using CFStringCompareFlags = CFOptionFlags;
constexpr CFStringCompareFlags kCFCompareCaseInsensitive = 1;

/// Runs of the digits 0 to 9 compare by the number that they write.
constexpr CFStringCompareFlags kCFCompareNumerically = 64;

/// A constant string object for an ASCII or UTF-8 literal; never released, the same object each time.
#define CFSTR(literal) __CFStringMakeConstantString("" literal "")
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* literal);

CF_EXPORT CFTypeID CFStringGetTypeID();

/// The encoding of plain 8-bit text in this process: UTF-8 when the locale says so, else Mac Roman.
CF_EXPORT CFStringEncoding CFStringGetSystemEncoding();

/// Decodes a NUL-terminated text.
/// @return NULL when the bytes are not valid in the encoding, or the encoding is unknown.
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                CFStringEncoding encoding);

/// Decodes a length-prefixed text; otherwise as CFStringCreateWithCString.
CF_EXPORT CFStringRef CFStringCreateWithPascalString(CFAllocatorRef allocator, ConstStr255Param text,
                                                     CFStringEncoding encoding);

/// Decodes `count` bytes. A UTF-8 byte order mark is skipped always, a UTF-16 one when
/// `isExternalRepresentation` is true, and it then decides the order of the bytes.
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                              CFStringEncoding encoding, Boolean isExternalRepresentation);

/// Copies `count` UTF-16 units as they are.
CF_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* units,
                                                   CFIndex count);

/// A string is immutable, so the copy is the same object with one more reference.
CF_EXPORT CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);

/// Formats like printf, with the additions %@ (an object; NULL gives "(null)"), %C (a UTF-16 unit) and %S
/// (a 0-terminated UTF-16 text). Flags, width, precision, `*` and positions (`%2$@`) work as in printf;
/// %@ ignores a width. An unknown conversion loses its per cent sign and takes no argument; %n is unknown.
/// `options` is ignored.
CF_EXPORT CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef options,
                                               CFStringRef format, ...);
CF_EXPORT CFStringRef CFStringCreateWithFormatAndArguments(CFAllocatorRef allocator, CFDictionaryRef options,
                                                           CFStringRef format, va_list arguments);

/// Length in UTF-16 units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);

/// The unit at a zero-based index, which must lie inside the string.
CF_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);

/// Copies the units of a range, which must lie inside the string, into `buffer`; no terminator is added.
CF_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

/// Writes the text and a terminating 0 into a buffer of `size` bytes.
/// @return false, with an empty text in the buffer, when it does not fit or cannot be encoded. A buffer of
///         size 0 is left untouched.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                                     CFStringEncoding encoding);

/// Writes a length byte and the text into a buffer of `size` bytes.
/// @return false when the text has more than 255 bytes or does not fit (the buffer is then untouched), or
///         when it cannot be encoded (the length byte is then 0).
CF_EXPORT Boolean CFStringGetPascalString(CFStringRef string, StringPtr buffer, CFIndex size,
                                          CFStringEncoding encoding);

/// Encodes as much of a range as the encoding has and `capacity` bytes hold.
/// @param lossByte stands in for what the encoding lacks; 0 stops there instead.
/// @param isExternalRepresentation true puts a byte order mark in front of UTF-16.
/// @param buffer may be NULL: the bytes are then only counted, whatever the capacity.
/// @param usedBytes receives the count of bytes; may be NULL.
/// @return the count of UTF-16 units that were converted.
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                                   UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                                   CFIndex capacity, CFIndex* usedBytes);

/// The most bytes that `length` UTF-16 units can take; kCFNotFound for an unknown encoding or an overflow.
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

/// The decimal number at the start of the text after spaces and a sign, held within 32 bits; 0 without one.
CF_EXPORT SInt32 CFStringGetIntValue(CFStringRef string);

/// Compares unit by unit in the order of UTF-16, changed by the flags; flags not named above are ignored.
CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef first, CFStringRef second,
                                             CFStringCompareFlags flags);
