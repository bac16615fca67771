// Numbers and booleans: making them from variables of any width and reading them back.
#include "number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

using rovescio::platform::Kind;
using rovescio::platform::rejectArgument;
using rovescio::platform::required;

namespace {

/// The variable types of the interface distinguished by what they hold; kinds of one width share a row.
enum class Storage { kInt8, kInt16, kInt32, kInt64, kFloat, kDouble, kUnknown };

Storage storageOf(CFNumberType type) {
    switch (type) {
        case kCFNumberSInt8Type:
        case kCFNumberCharType:
            return Storage::kInt8;
        case kCFNumberSInt16Type:
        case kCFNumberShortType:
            return Storage::kInt16;
        case kCFNumberSInt32Type:
        case kCFNumberIntType:
            return Storage::kInt32;
        case kCFNumberLongType:
        case kCFNumberCFIndexType:
            return sizeof(long) == sizeof(SInt64) ? Storage::kInt64 : Storage::kInt32;
        case kCFNumberSInt64Type:
        case kCFNumberLongLongType:
            return Storage::kInt64;
        case kCFNumberFloat32Type:
        case kCFNumberFloatType:
            return Storage::kFloat;
        case kCFNumberFloat64Type:
        case kCFNumberDoubleType:
            return Storage::kDouble;
    }
    return Storage::kUnknown;
}

template <class T>
T readAs(const void* source) {
    T value;
    std::memcpy(&value, source, sizeof value);
    return value;
}

/// Cuts a floating value to the 64-bit integers, whose upper bound is not itself a double.
SInt64 truncated(double value) {
    constexpr double kBound = 9223372036854775808.0;
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= kBound) {
        return std::numeric_limits<SInt64>::max();
    }
    return value < -kBound ? std::numeric_limits<SInt64>::min() : static_cast<SInt64>(value);
}

template <class T>
bool storeInteger(const __CFNumber& number, void* target) {
    const double* floating = std::get_if<double>(&number.value);
    const SInt64 whole = floating != nullptr ? truncated(*floating) : std::get<SInt64>(number.value);
    const T narrowed = static_cast<T>(whole);
    std::memcpy(target, &narrowed, sizeof narrowed);
    const bool exact = floating == nullptr || static_cast<double>(whole) == *floating;
    return exact && static_cast<SInt64>(narrowed) == whole;
}

template <class T>
bool storeFloating(const __CFNumber& number, void* target) {
    const double* floating = std::get_if<double>(&number.value);
    const T narrowed =
        floating != nullptr ? static_cast<T>(*floating) : static_cast<T>(std::get<SInt64>(number.value));
    std::memcpy(target, &narrowed, sizeof narrowed);
    if (floating != nullptr) {
        return static_cast<double>(narrowed) == *floating || std::isnan(*floating);
    }
    return truncated(static_cast<double>(narrowed)) == std::get<SInt64>(number.value);
}

const __CFBoolean gTrue{true};
const __CFBoolean gFalse{false};

}  // namespace

const CFBooleanRef kCFBooleanTrue = &gTrue;
const CFBooleanRef kCFBooleanFalse = &gFalse;

bool __CFNumber::equals(const Object& other) const {
    const auto& second = static_cast<const __CFNumber&>(other).value;
    if (value.index() == second.index()) {
        return value == second;
    }
    const SInt64 whole = std::get<SInt64>(value.index() == 0 ? value : second);
    const double floating = std::get<double>(value.index() == 0 ? second : value);
    return static_cast<double>(whole) == floating && truncated(floating) == whole;
}

std::u16string __CFNumber::description() const {
    std::array<char, 32> digits{};
    const auto end = std::visit(
        [&](auto content) {
            return std::to_chars(digits.data(), digits.data() + digits.size(), content).ptr;
        },
        value);
    return {digits.data(), end};
}

CFTypeID CFNumberGetTypeID() {
    return static_cast<CFTypeID>(Kind::kNumber);
}

CFNumberRef CFNumberCreate(CFAllocatorRef /*allocator*/, CFNumberType type, const void* value) {
    if (value == nullptr) {
        rejectArgument(__func__);
    }
    switch (storageOf(type)) {
        case Storage::kInt8:
            return new __CFNumber(SInt64{readAs<SInt8>(value)});
        case Storage::kInt16:
            return new __CFNumber(SInt64{readAs<SInt16>(value)});
        case Storage::kInt32:
            return new __CFNumber(SInt64{readAs<SInt32>(value)});
        case Storage::kInt64:
            return new __CFNumber(readAs<SInt64>(value));
        case Storage::kFloat:
            return new __CFNumber(double{readAs<float>(value)});
        case Storage::kDouble:
            return new __CFNumber(readAs<double>(value));
        case Storage::kUnknown:
            break;
    }
    return nullptr;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    const __CFNumber& source = required(number, __func__);
    if (value == nullptr) {
        rejectArgument(__func__);
    }
    bool exact = false;
    switch (storageOf(type)) {
        case Storage::kInt8:
            exact = storeInteger<SInt8>(source, value);
            break;
        case Storage::kInt16:
            exact = storeInteger<SInt16>(source, value);
            break;
        case Storage::kInt32:
            exact = storeInteger<SInt32>(source, value);
            break;
        case Storage::kInt64:
            exact = storeInteger<SInt64>(source, value);
            break;
        case Storage::kFloat:
            exact = storeFloating<float>(source, value);
            break;
        case Storage::kDouble:
            exact = storeFloating<double>(source, value);
            break;
        case Storage::kUnknown:
            break;
    }
    return static_cast<Boolean>(exact);
}

CFTypeID CFBooleanGetTypeID() {
    return static_cast<CFTypeID>(Kind::kBoolean);
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return static_cast<Boolean>(required(boolean, __func__).value);
}
