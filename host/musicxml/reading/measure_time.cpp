// Notes, steps and divisions as a clock sees them.
#include "musicxml/reading/measure_time.h"

#include "musicxml/file/tag_names.h"

namespace rovescio::musicxml {

namespace {

// How far a decimal duration may be from the value that it means: parts of a quarter.
constexpr std::int64_t kNearness = 1000;

bool isNear(const engine::Fraction& one, const engine::Fraction& other) {
    const engine::Fraction limit(engine::kQuarter, kNearness);
    return one.isSound() && other.isSound() && one < other + limit && other < one + limit;
}

Decimal decimalIn(const xml::Element& element) {
    return element.exists() ? parseDecimal(element.text()).value_or(Decimal{}) : Decimal{};
}

}  // namespace

NoteTime timeOf(const NoteReading& note, MeasureClock& clock) {
    NoteTime time;
    time.span = clock.span(note.duration);
    if (!time.span.valid || note.nominal <= 0) return time;
    time.isNominal = clock.equals(time.span, note.nominal, note.actual, note.normal);
    if (time.isNominal || note.duration.scale == 1) return time;
    const engine::Fraction nominal = engine::Fraction(note.nominal).times(note.normal, note.actual);
    if (!isNear(clock.exact(time.span), nominal)) return time;
    if (const auto exact = clock.span(note.nominal, note.actual, note.normal); exact.valid)
        time = {exact, true};
    return time;
}

MeasureTime::MeasureTime(const Decimal& divisions) {
    clock_.setDivisions(divisions);
    clock_.reset();
}

void MeasureTime::pass(const xml::Element& child) {
    switch (child.name()) {
        case tag("note"): {
            NoteReading note;
            Journal journal({}, {});
            if (!readNote(child, note, journal)) break;
            // A chord note that follows no note stands alone.
            const bool joins = note.chord && inChord_;
            inChord_ = true;
            if (joins || note.grace) break;
            clock_.forward(timeOf(note, clock_).span);
            break;
        }
        case tag("backup"):
            inChord_ = false;
            clock_.back(clock_.span(decimalIn(child.child(tag("duration")))));
            break;
        case tag("forward"):
            inChord_ = false;
            clock_.forward(clock_.span(decimalIn(child.child(tag("duration")))));
            break;
        case tag("attributes"):
            clock_.setDivisions(decimalIn(child.child(tag("divisions"))));
            break;
        default:
            break;
    }
}

}  // namespace rovescio::musicxml
