// Numbers and truth values of the CoreFoundation subset, as property lists hold them.
#pragma once

#include <CoreFoundation/CFBase.h>

/// The type of the variable that a number is made from or read into.
enum CFNumberType : CFIndex {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14
};

CF_EXPORT CFTypeID CFNumberGetTypeID();

/// Makes a number from the variable at `value`, which has the given type.
/// @return NULL for a type that is not in the list above.
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);

/// Stores the number, converted, in the variable at `value`.
/// @return false when the conversion loses something (range or fraction) or the type is not in the list.
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

CF_EXPORT const CFBooleanRef kCFBooleanTrue;
CF_EXPORT const CFBooleanRef kCFBooleanFalse;
CF_EXPORT CFTypeID CFBooleanGetTypeID();
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef boolean);
