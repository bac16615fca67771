// The base types of the CoreFoundation subset: integers, references, ranges, retain and release.
//
// A function with Create or Copy in its name hands its caller a reference to be given back with CFRelease;
// one with Get in its name hands out a borrowed reference. Passing NULL where an object is required ends
// the process, as it does with the real framework.
#pragma once

#include <cstdarg>
#include <cstdint>

#define CF_EXPORT extern "C" __attribute__((visibility("default")))
#define CF_INLINE static inline

using UInt8 = unsigned char;
using SInt8 = signed char;
using UInt16 = std::uint16_t;
using SInt16 = std::int16_t;
using UInt32 = std::uint32_t;
using SInt32 = std::int32_t;
using UInt64 = std::uint64_t;
using SInt64 = std::int64_t;
using Float32 = float;
using Float64 = double;

/// One unit of UTF-16.
using UniChar = UInt16;
using UTF32Char = UInt32;
using Boolean = unsigned char;
using OSStatus = SInt32;

/// Length-prefixed text of at most 255 bytes: the first byte is the count of the bytes that follow it.
using StringPtr = unsigned char*;
using ConstStringPtr = const unsigned char*;
using Str255 = unsigned char[256];
using ConstStr255Param = const unsigned char*;

using CFTypeID = unsigned long;
using CFOptionFlags = unsigned long;
using CFHashCode = unsigned long;
using CFIndex = signed long;

/// Any object of the subset.
using CFTypeRef = const void*;

using CFStringRef = const struct __CFString*;
using CFNumberRef = const struct __CFNumber*;
using CFBooleanRef = const struct __CFBoolean*;

/// Types that occur in signatures only: the subset has no such objects, so callers pass NULL.
using CFDictionaryRef = const struct __CFDictionary*;
using CFAllocatorRef = const struct __CFAllocator*;

/// The allocator argument is accepted and ignored: every object lives on the ordinary heap.
#define kCFAllocatorDefault (static_cast<CFAllocatorRef>(nullptr))

enum CFComparisonResult : CFIndex {
    kCFCompareLessThan = -1,
    kCFCompareEqualTo = 0,
    kCFCompareGreaterThan = 1
};

/// What searches return instead of an index when there is none.
constexpr CFIndex kCFNotFound = -1;

/// A run of `length` units that starts at the zero-based index `location`.
struct CFRange {
    CFIndex location;
    CFIndex length;
};

CF_INLINE CFRange CFRangeMake(CFIndex location, CFIndex length) {
    return CFRange{location, length};
}

/// Takes one more reference to the object and returns it. Thread-safe.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);

/// Gives one reference back; the last one destroys the object. Thread-safe.
CF_EXPORT void CFRelease(CFTypeRef object);

/// Tells the kind of an object, to be compared with CFStringGetTypeID() and its like.
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

/// True when both objects are of one kind and have equal content (bundles: when they are the same bundle).
CF_EXPORT Boolean CFEqual(CFTypeRef first, CFTypeRef second);
