// The marks of each staff, looked up by their place.
#include "playback/transpositions.h"

#include <algorithm>
#include <iterator>

namespace rovescio::playback {

namespace {

bool isBefore(const engine::ScorePlace& left, const engine::ScorePlace& right) {
    return left.measure < right.measure || (left.measure == right.measure && left.position < right.position);
}

}  // namespace

Transpositions::Transpositions(const engine::PartPerformance& part) {
    for (const engine::TranspositionMark& mark : part.transpositions) marks_[mark.staff].push_back(mark);
    for (auto& [staff, marks] : marks_) {
        std::ranges::stable_sort(marks, isBefore, &engine::TranspositionMark::place);
    }
}

int Transpositions::at(short staff, const engine::ScorePlace& place) const {
    const auto marks = marks_.find(staff);
    if (marks == marks_.end()) return 0;
    const auto after =
        std::ranges::upper_bound(marks->second, place, isBefore, &engine::TranspositionMark::place);
    return after == marks->second.begin() ? 0 : std::prev(after)->semitones;
}

}  // namespace rovescio::playback
