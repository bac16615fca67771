// Marks and hairpins joined into one line.
#include "playback/loudness.h"

#include <algorithm>
#include <cmath>

namespace rovescio::playback {

namespace {

constexpr double kMezzoForte = 80;
// What a hairpin adds or takes away when no mark says where it leads.
constexpr double kOneGrade = 16;
// A mark that comes at most this much after a hairpin, in quarters, is where it leads.
constexpr double kGoalDistance = 1;
constexpr double kLowest = 1;
constexpr double kHighest = 127;

// The last element that begins at or before a time; null before the first.
template <class Element>
const Element* lastAt(const std::vector<Element>& elements, double time) {
    const auto after =
        std::upper_bound(elements.begin(), elements.end(), time,
                         [](double wanted, const Element& element) { return wanted < element.start; });
    return after == elements.begin() ? nullptr : &*std::prev(after);
}

}  // namespace

double Loudness::Ramp::level(double time) const {
    return time >= end ? to : from + (to - from) * (time - start) / (end - start);
}

Loudness::Loudness(const engine::PartPerformance& part, const TimeLine& timeLine) {
    const auto byStart = [](const Ramp& left, const Ramp& right) { return left.start < right.start; };
    for (const engine::LoudnessMark& mark : part.loudness) {
        const double time = quarters(timeLine.at(mark.place));
        const auto ramp = [&](int level) { return Ramp{time, time, double(level), double(level)}; };
        if (mark.level) ramps_.push_back(ramp(*mark.level));
        if (mark.accent) accents_.push_back(ramp(*mark.accent));
    }
    std::stable_sort(ramps_.begin(), ramps_.end(), byStart);
    std::stable_sort(accents_.begin(), accents_.end(), byStart);
    std::vector<Ramp> hairpins;
    for (const engine::Hairpin& hairpin : part.hairpins) {
        const double step = hairpin.rising ? kOneGrade : -kOneGrade;
        hairpins.push_back(
            {quarters(timeLine.at(hairpin.start)), quarters(timeLine.at(hairpin.end)), 0, step});
    }
    std::stable_sort(hairpins.begin(), hairpins.end(), byStart);
    for (const Ramp& hairpin : hairpins) addHairpin(hairpin.start, hairpin.end, hairpin.to > 0);
}

// From the level in force to that of the mark that ends or cuts the hairpin.
void Loudness::addHairpin(double start, double end, bool rising) {
    const Ramp* before = lastAt(ramps_, start);
    Ramp ramp{start, end, before ? before->level(start) : kMezzoForte, 0};
    const auto next = std::upper_bound(ramps_.begin(), ramps_.end(), start,
                                       [](double wanted, const Ramp& other) { return wanted < other.start; });
    const bool isGoal = next != ramps_.end() && next->start <= end + kGoalDistance &&
                        (rising ? next->from > ramp.from : next->from < ramp.from);
    ramp.to =
        isGoal ? next->from : std::clamp(ramp.from + (rising ? kOneGrade : -kOneGrade), kLowest, kHighest);
    if (next != ramps_.end()) ramp.end = std::min(ramp.end, next->start);
    if (ramp.end > ramp.start) ramps_.insert(next, ramp);
}

int Loudness::at(const engine::Fraction& exact) const {
    const double time = quarters(exact);
    const Ramp* accent = lastAt(accents_, time);
    if (accent && accent->start == time) return static_cast<int>(accent->to);
    const Ramp* ramp = lastAt(ramps_, time);
    return static_cast<int>(std::lround(ramp ? ramp->level(time) : kMezzoForte));
}

}  // namespace rovescio::playback
