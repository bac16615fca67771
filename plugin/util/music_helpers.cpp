// Arithmetic on note values, and a check of pointers.
#include "util/music_helpers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr double kLn2 = 0.6931471805599453;

constexpr int kGreatestDenominator = 2048;

}  // namespace

int IntLog2(int x) {
    // The addend makes up for rounding, which would leave some powers of two just below their exponent.
    return static_cast<int>(std::log(static_cast<double>(x)) / kLn2 + 1e-8);
}

int DotsBase(int duration) {
    if (duration < 1) return 0;
    // From 2^28 on the addend lifts the numbers just below a power of two onto it.
    const std::uint32_t power = 1U << IntLog2(duration);
    return static_cast<int>(power > static_cast<std::uint32_t>(duration) ? power / 2 : power);
}

int CountDots(int duration) {
    int dots = -1;
    do {
        duration -= DotsBase(duration);
        ++dots;
    } while (duration > 0);
    return dots;
}

int CalcNumDen(int duration, int& numerator, int& denominator) {
    denominator = std::min(DotsBase(duration), kGreatestDenominator);
    while (duration % denominator != 0) denominator /= 2;
    numerator = duration / denominator;
    return numerator;
}

bool ValidPointer(const void* pointer) {
    const auto low = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
    // Null is the pattern of the byte 0.
    return low != (low & 0xFF) * 0x01010101U;
}
