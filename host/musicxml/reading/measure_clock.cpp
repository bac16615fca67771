// Arithmetic of exact positions, with every product kept inside 64 bits.
#include "musicxml/reading/measure_clock.h"

#include <algorithm>
#include <numeric>

namespace rovescio::musicxml {

namespace {

constexpr std::int64_t kMaxDivisions = std::int64_t{1} << 30;
constexpr std::int64_t kMaxUnit = std::int64_t{1} << 36;
// Longest stretch in quarters, far beyond any music; its duration units still
// fit 32 bits.
constexpr std::int64_t kMaxQuarters = 1 << 20;

}  // namespace

// Makes the unit a multiple of `factor`; what is already counted is scaled with
// it.
bool MeasureClock::refine(std::int64_t factor) {
    const std::int64_t scale = factor / std::gcd(unit_, factor);
    if (scale > kMaxUnit / unit_) return false;
    unit_ *= scale;
    now_ *= scale;
    end_ *= scale;
    return true;
}

bool MeasureClock::setDivisions(const Decimal& divisions) {
    if (divisions.value < 1 || divisions.value > kMaxDivisions || !refine(divisions.value)) return false;
    divisions_ = divisions;
    return true;
}

void MeasureClock::reset() {
    unit_ = divisions_.value;
    now_ = 0;
    end_ = 0;
}

MeasureClock::Span MeasureClock::span(const Decimal& duration) {
    if (duration.value < 0 || !refine(divisions_.value * duration.scale)) return {};
    const std::int64_t perDivision = unit_ / divisions_.value * divisions_.scale / duration.scale;
    if (perDivision > 0 && duration.value > kMaxQuarters * unit_ / perDivision) return {};
    return {duration.value * perDivision, true};
}

MeasureClock::Span MeasureClock::span(std::int32_t units, int actual, int normal) {
    const engine::Fraction quarters =
        engine::Fraction(units).times(normal, actual).times(1, engine::kQuarter);
    if (!quarters.isSound() || !refine(quarters.denominator())) return {};
    const std::int64_t perPart = unit_ / quarters.denominator();
    if (quarters.numerator() > kMaxQuarters * quarters.denominator()) return {};
    return {quarters.numerator() * perPart, true};
}

bool MeasureClock::forward(const Span& span) {
    if (span.ticks > kMaxQuarters * unit_ - now_) return false;
    now_ += span.ticks;
    end_ = std::max(end_, now_);
    return true;
}

bool MeasureClock::back(const Span& span) {
    const bool inside = span.ticks <= now_;
    now_ = inside ? now_ - span.ticks : 0;
    return inside;
}

bool MeasureClock::equals(const Span& span, std::int32_t units, int actual, int normal) const {
    // Both sides are divided by their common parts first: ticks / unit == units *
    // normal / (1024 * actual).
    const std::int64_t common = std::gcd(span.ticks, unit_);
    const std::int64_t over = std::int64_t{units} * normal;
    const std::int64_t under = std::int64_t{engine::kQuarter} * actual;
    const std::int64_t shared = std::gcd(over, under);
    if (common == 0 || shared == 0) return false;
    return span.ticks / common == over / shared && unit_ / common == under / shared;
}

std::int32_t MeasureClock::toUnits(std::int64_t ticks) const {
    return static_cast<std::int32_t>(ticks / unit_ * engine::kQuarter +
                                     ticks % unit_ * engine::kQuarter / unit_);
}

engine::Fraction MeasureClock::exact(std::int64_t ticks) const {
    const std::int64_t whole = ticks / unit_ * engine::kQuarter;
    const std::int64_t rest = ticks % unit_ * engine::kQuarter;
    const engine::Fraction units(whole + rest / unit_);
    return rest % unit_ == 0 ? units : units + engine::Fraction(rest % unit_, unit_);
}

}  // namespace rovescio::musicxml
