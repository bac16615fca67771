// Attributes of a part's staves: divisions, keys, clefs, times and the number
// of staves.
#include <limits>
#include <optional>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/part_reader.h"

namespace rovescio::musicxml {

// Makes sure that the part has as many staves. A staff that appears late was
// there, silent, from the start.
bool PartReader::needStaves(int count, std::size_t offset) {
    const auto wanted = std::max(static_cast<std::size_t>(std::max(count, 1)), staves_.size());
    constexpr std::size_t kMostStaves = std::numeric_limits<short>::max();
    const bool isWide = wanted > kMostStaves;
    if (isWide || wanted * static_cast<std::size_t>(measureCount_) > kMaxCells) {
        journal_.fail("the part \"" + name_ + "\" has more than " +
                          (isWide ? std::to_string(kMostStaves) + " staves"
                                  : std::to_string(kMaxCells) + " measures on all of its staves together"),
                      offset, "Split the score, or correct the staff numbers.");
        return false;
    }
    while (staves_.size() < wanted) {
        StaffReading staff;
        staff.key = staves_.front().key;
        staff.measureKey = staves_.front().measureKey;
        staff.keyPosition = staves_.front().keyPosition;
        staff.time = staves_.front().time;
        staff.measures = staves_.front().measures;
        for (engine::StaffMeasure& measure : staff.measures) measure.changesInside = false;
        staves_.push_back(std::move(staff));
    }
    return true;
}

bool PartReader::numberedStaves(const xml::Element& element, StaffRange& range) {
    const std::optional<int> number = parseInteger(element.attribute("number"));
    range = {0, staves_.size()};
    if (!number || *number < 1) return true;
    // An element may name a staff before the number of staves is given.
    if (!needStaves(*number, element.offset())) return false;
    range.last = static_cast<std::size_t>(*number);
    range.first = range.last - 1;
    return true;
}

bool PartReader::readDivisions(const xml::Element& element) {
    const std::size_t offset = element.offset();
    const std::string_view text = element.text();
    const std::optional<Decimal> divisions = parseDecimal(text);
    if (divisions && clock_.setDivisions(*divisions)) return true;
    journal_.fail("the divisions of a quarter note, \"" + std::string(text.substr(0, 40)) +
                      "\", are not a usable positive number",
                  offset, "Set <divisions> to the number of durations that make a quarter note.");
    return false;
}

bool PartReader::applyKey(const xml::Element& element) {
    StaffRange range;
    engine::KeySignature key;
    if (!numberedStaves(element, range) || !readKey(element, key, journal_)) return false;
    const std::int32_t position = clock_.now();
    for (std::size_t index = range.first; index < range.last; ++index) {
        StaffReading& staff = staves_[index];
        if (position == 0) {
            staff.measureKey = key;
        } else if (!(staff.key == key)) {
            changes_.push_back({index, position, true, key});
        }
        // After a <backup> an earlier key does not replace the one that stands
        // later in the measure.
        if (position >= staff.keyPosition) {
            staff.key = key;
            staff.keyPosition = position;
        }
    }
    return true;
}

bool PartReader::applyClef(const xml::Element& element) {
    StaffRange range;
    if (!numberedStaves(element, range)) return false;
    // Unlike keys and times, a clef without a number is that of the first staff.
    if (range.last - range.first > 1) range = {0, 1};
    const Clef clef = readClef(element);
    const std::int32_t position = clock_.now();
    for (std::size_t index = range.first; index < range.last; ++index) {
        StaffReading& staff = staves_[index];
        const bool first = !staff.pitchedClef && !staff.percussionClef;
        (clef.pitched ? staff.pitchedClef : staff.percussionClef) = true;
        if (!first && staff.clef == clef) continue;
        staff.clef = clef;
        clefs_.push_back({static_cast<short>(index + 1), measureCount_, position, clef});
        if (position > 0) changes_.push_back({index, position, false, {}});
    }
    return true;
}

bool PartReader::applyTime(const xml::Element& element) {
    StaffRange range;
    if (!numberedStaves(element, range)) return false;
    const TimeSignature time = readTime(element, journal_);
    for (std::size_t index = range.first; index < range.last; ++index) staves_[index].time = time;
    if (range.first == 0) performance_.addTime(measureCount_, time);
    return true;
}

bool PartReader::applyTransposition(const xml::Element& element) {
    StaffRange range;
    if (!numberedStaves(element, range)) return false;
    performance_.readTransposition(element, measureCount_, clock_, range.first, range.last);
    return true;
}

bool PartReader::readAttributes(const xml::Element& element) {
    for (const xml::Element child : element) {
        bool fine = true;
        switch (child.name()) {
            case tag("divisions"):
                fine = readDivisions(child);
                break;
            case tag("key"):
                fine = applyKey(child);
                break;
            case tag("time"):
                fine = applyTime(child);
                break;
            case tag("staves"): {
                const std::size_t offset = child.offset();
                fine = needStaves(parseInteger(child.text()).value_or(1), offset);
                break;
            }
            case tag("clef"):
                fine = applyClef(child);
                break;
            case tag("transpose"):
                fine = applyTransposition(child);
                break;
            default:
                break;
        }
        if (!fine) return false;
    }
    return true;
}

}  // namespace rovescio::musicxml
