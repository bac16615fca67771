// The usual rule of stem directions, applied before and after a change.
#include "musicxml/writing/stem_edits.h"

#include <algorithm>
#include <string>

namespace rovescio::musicxml {

namespace {

constexpr std::string_view kUp = "up";
constexpr std::string_view kDown = "down";

// The direction for notes between two distances from the middle line; empty
// when both directions will do.
std::string_view usualDirection(int low, int high) {
    if (high == -low) return {};
    return high > -low ? kDown : kUp;
}

}  // namespace

void StemEdits::clear() {
    chords_.clear();
    stems_.clear();
}

void StemEdits::beginChord(const Clef& clef, bool movable) {
    Chord& chord = chords_.emplace_back();
    chord.middle = clef.middleStep;
    chord.movable = movable && clef.hasStemRule;
    chord.firstStem = chord.stemEnd = stems_.size();
}

void StemEdits::addNote(const NoteParts& note, int oldStep, int newStep, bool moved) {
    Chord& chord = chords_.back();
    oldStep -= chord.middle;
    newStep -= chord.middle;
    if (chord.noteCount++ == 0) {
        chord.oldLow = chord.oldHigh = oldStep;
        chord.newLow = chord.newHigh = newStep;
    }
    chord.oldLow = std::min(chord.oldLow, oldStep);
    chord.oldHigh = std::max(chord.oldHigh, oldStep);
    chord.newLow = std::min(chord.newLow, newStep);
    chord.newHigh = std::max(chord.newHigh, newStep);
    chord.moved |= moved;
    if (note.beam != Beam::none) chord.beam = note.beam;
    if (note.stem != 0) stems_.push_back(note.stem);
    chord.stemEnd = stems_.size();
    // Where the stem of a note that moved ends is wrong, whichever way the stem
    // goes.
    if (moved && note.stem != 0) edits_.removeAttribute(note.stem, "default-y");
}

// One chord, or the chords under one beam, share a direction.
void StemEdits::settle(std::size_t first, std::size_t end) {
    const auto begin = chords_.begin() + static_cast<std::ptrdiff_t>(first);
    const auto last = chords_.begin() + static_cast<std::ptrdiff_t>(end);
    if (!std::any_of(begin, last, [](const Chord& chord) { return chord.moved; })) return;
    if (!std::all_of(begin, last,
                     [](const Chord& chord) { return chord.movable && chord.stemEnd > chord.firstStem; })) {
        return;
    }
    const auto lowest = [&](int Chord::*low) {
        return (*std::min_element(begin, last,
                                  [&](const Chord& a, const Chord& b) { return a.*low < b.*low; })).*
               low;
    };
    const auto highest = [&](int Chord::*high) {
        return (*std::max_element(begin, last,
                                  [&](const Chord& a, const Chord& b) { return a.*high < b.*high; })).*
               high;
    };
    const std::string_view before = usualDirection(lowest(&Chord::oldLow), highest(&Chord::oldHigh));
    const std::string_view now = usualDirection(lowest(&Chord::newLow), highest(&Chord::newHigh));
    const std::size_t firstStem = chords_[first].firstStem;
    const std::size_t stemEnd = chords_[end - 1].stemEnd;
    const std::string written = edits_.text(stems_[firstStem]);
    if (written != kUp && written != kDown) return;
    for (std::size_t i = firstStem; i < stemEnd; ++i) {
        if (!edits_.says(stems_[i], written)) return;
    }
    if (now.empty() || now == written || (!before.empty() && before != written)) return;
    for (std::size_t i = firstStem; i < stemEnd; ++i) edits_.setText(stems_[i], now);
    // The stated end of a flipped stem is wrong too; moved notes lost theirs
    // already.
    for (auto chord = begin; chord != last; ++chord) {
        if (chord->moved) continue;
        for (std::size_t i = chord->firstStem; i < chord->stemEnd; ++i)
            edits_.removeAttribute(stems_[i], "default-y");
    }
}

void StemEdits::apply() {
    std::size_t first = 0;
    while (first < chords_.size()) {
        std::size_t end = first + 1;
        if (chords_[first].beam == Beam::begin) {
            while (end < chords_.size() && chords_[end].beam == Beam::inside) ++end;
            // A beam that goes on in another measure or staff is not whole here; its
            // stems stay.
            const bool whole = end < chords_.size() && chords_[end].beam == Beam::end;
            if (whole) ++end;
            if (whole) settle(first, end);
        } else if (chords_[first].beam == Beam::none) {
            settle(first, end);
        }
        first = end;
    }
}

}  // namespace rovescio::musicxml
