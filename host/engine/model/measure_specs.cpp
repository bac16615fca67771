// Concert keys and their staves.
#include "engine/model/measure_specs.h"

#include <cstdlib>

namespace rovescio::engine {

namespace {

constexpr int kMostFifths = 14;
// A signature of more has a simpler one with other letters.
constexpr int kMostAccidentals = 7;
constexpr int kEnharmonic = 12;

struct Key {
    int fifths = 0;
    bool minor = false;
};

Key keyOf(std::uint16_t word) {
    return {(word & 0xFF) - (word & 0x80 ? 0x100 : 0), (word >> 8) != 0};
}

// The staff that tells the key of the score: the first that does not transpose, else the first of all. 0 when
// no staff has a standard key.
short leadingStaff(const Document& document, short measure) {
    short leading = 0;
    for (const short staff : document.staffNumbers()) {
        if (!document.staffMeasure(staff, measure).key.isStandard()) continue;
        if (document.staff(staff).fifths == 0) return staff;
        if (leading == 0) leading = staff;
    }
    return leading;
}

Key concertKey(const Document& document, short measure, short leading) {
    Key key = keyOf(document.staffMeasure(leading, measure).key.word());
    key.fifths -= document.staff(leading).fifths;
    return key;
}

int simplest(int fifths) {
    if (fifths > kMostAccidentals) return fifths - kEnharmonic;
    if (fifths < -kMostAccidentals) return fifths + kEnharmonic;
    return fifths;
}

}  // namespace

EDTMeasureSpec2014 measureSpec(const Document& document, short measure) {
    EDTMeasureSpec2014 spec{};
    const MeasureLayout& layout = document.measure(measure).layout;
    spec.width = layout.width;
    spec.spaceBefore = layout.spaceBefore;
    spec.spaceAfter = layout.spaceAfter;
    spec.flags = layout.flags;
    const short leading = leadingStaff(document, measure);
    spec.keySignature = kNonStandardKey;
    if (leading != 0) {
        const Key key = concertKey(document, measure, leading);
        spec.keySignature = KeySignature::standard(key.fifths, key.minor).word();
    }
    if (document.staffCount() == 0) return spec;
    const StaffMeasure& time = document.staffMeasure(1, measure);
    spec.beatDuration = static_cast<std::int16_t>(time.beat);
    if (time.beat > 0) spec.beats = static_cast<std::int16_t>(time.duration / time.beat);
    return spec;
}

std::optional<MeasureState> stateWith(const Document& document, short measure,
                                      const EDTMeasureSpec2014& spec) {
    MeasureState state{.layout = {spec.width, spec.spaceBefore, spec.spaceAfter, spec.flags}, .keys = {}};
    state.keys.reserve(static_cast<std::size_t>(document.staffCount()));
    for (const short staff : document.staffNumbers()) {
        state.keys.push_back(document.staffMeasure(staff, measure).key);
    }
    const short leading = leadingStaff(document, measure);
    const std::uint16_t oldWord = measureSpec(document, measure).keySignature;
    // Where either key is off the standard scales there is no distance to keep.
    if (spec.keySignature == oldWord || leading == 0 || spec.keySignature >= kNonStandardKey) return state;
    const Key wanted = keyOf(spec.keySignature);
    if (std::abs(wanted.fifths) > kMostFifths || (spec.keySignature >> 8) > 1) return std::nullopt;
    const Key old = concertKey(document, measure, leading);
    for (KeySignature& key : state.keys) {
        if (!key.isStandard()) continue;
        const Key own = keyOf(key.word());
        const bool minor = own.minor == old.minor ? wanted.minor : own.minor;
        key = KeySignature::standard(simplest(wanted.fifths + own.fifths - old.fifths), minor);
    }
    return state;
}

}  // namespace rovescio::engine
