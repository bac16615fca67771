// Exact time: a fraction of duration units.
#pragma once

#include <cstdint>
#include <numeric>

namespace rovescio::engine {

// Values up to 2^31 with denominators up to kMaxDenominator are exact. A sum whose denominator would be
// larger is not sound, nor is anything computed from it; such music cannot be counted.
class Fraction {
  public:
    static constexpr std::int64_t kMaxDenominator = std::int64_t{1} << 30;

    constexpr Fraction() = default;
    constexpr Fraction(std::int64_t whole) : numerator_(whole) {}
    constexpr Fraction(std::int64_t numerator, std::int64_t denominator)
        : numerator_(numerator), denominator_(denominator) {
        reduce();
    }

    [[nodiscard]] constexpr bool isSound() const { return denominator_ != 0; }
    [[nodiscard]] constexpr bool isWhole() const { return denominator_ == 1; }
    [[nodiscard]] constexpr std::int64_t numerator() const { return numerator_; }
    [[nodiscard]] constexpr std::int64_t denominator() const { return denominator_; }
    // Rounded down; of a value that is not negative.
    [[nodiscard]] constexpr std::int32_t floor() const {
        return isSound() ? static_cast<std::int32_t>(numerator_ / denominator_) : 0;
    }

    friend constexpr Fraction operator+(const Fraction& a, const Fraction& b) { return sum(a, b, 1); }
    friend constexpr Fraction operator-(const Fraction& a, const Fraction& b) { return sum(a, b, -1); }
    constexpr Fraction& operator+=(const Fraction& other) { return *this = *this + other; }
    constexpr Fraction& operator-=(const Fraction& other) { return *this = *this - other; }
    // By a small ratio, such as that of a tuplet.
    [[nodiscard]] constexpr Fraction times(std::int64_t numerator, std::int64_t denominator) const {
        if (!isSound()) return *this;
        const std::int64_t crossed = std::gcd(numerator_, denominator);
        const std::int64_t other = std::gcd(numerator, denominator_);
        Fraction result;
        result.numerator_ = numerator_ / crossed * (numerator / other);
        result.denominator_ = denominator_ / other * (denominator / crossed);
        result.reduce();
        result.limit();
        return result;
    }

    friend constexpr bool operator==(const Fraction&, const Fraction&) = default;
    friend constexpr bool operator<(const Fraction& a, const Fraction& b) {
        if (a.denominator_ == b.denominator_) return a.numerator_ < b.numerator_;
        return (a - b).numerator_ < 0;
    }
    friend constexpr bool operator>(const Fraction& a, const Fraction& b) { return b < a; }
    friend constexpr bool operator<=(const Fraction& a, const Fraction& b) { return !(b < a); }
    friend constexpr bool operator>=(const Fraction& a, const Fraction& b) { return !(a < b); }

  private:
    static constexpr Fraction sum(const Fraction& a, const Fraction& b, int sign) {
        Fraction result;
        if (a.denominator_ == 1 && b.denominator_ == 1) {
            result.numerator_ = a.numerator_ + sign * b.numerator_;
            return result;
        }
        result.denominator_ = 0;
        if (!a.isSound() || !b.isSound()) return result;
        const std::int64_t common = std::lcm(a.denominator_, b.denominator_);
        result.denominator_ = common;
        result.numerator_ =
            a.numerator_ * (common / a.denominator_) + sign * b.numerator_ * (common / b.denominator_);
        result.reduce();
        result.limit();
        return result;
    }
    constexpr void reduce() {
        const std::int64_t common = std::gcd(numerator_, denominator_);
        if (common > 1) {
            numerator_ /= common;
            denominator_ /= common;
        }
    }
    constexpr void limit() {
        if (denominator_ > kMaxDenominator) denominator_ = 0;
    }

    std::int64_t numerator_ = 0;
    std::int64_t denominator_ = 1;  // 0: not sound
};

}  // namespace rovescio::engine
