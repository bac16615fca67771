// Key signature words, tonic places and key-relative spelling.
#include "engine/model/key_signature.h"

namespace rovescio::engine {

namespace {

// Semitones of the natural letters C to B above C.
constexpr std::array<int, 7> kLetterHeights = {0, 2, 4, 5, 7, 9, 11};

// Place of each letter (C to B) in the order of sharps F C G D A E B.
constexpr std::array<int, 7> kOrderOfSharps = {1, 3, 5, 0, 2, 4, 6};

}  // namespace

int semitones(const SpelledPitch& pitch) {
    return 12 * floorDiv(pitch.step, 7) + kLetterHeights[static_cast<std::size_t>(floorMod(pitch.step, 7))] +
           pitch.alter;
}

KeySignature KeySignature::standard(int fifths, bool minor) {
    KeySignature key;
    key.word_ = static_cast<std::uint16_t>((minor ? 0x100 : 0) | (fifths & 0xFF));
    for (std::size_t letter = 0; letter < 7; ++letter) {
        key.alters_[letter] = static_cast<std::int8_t>(floorDiv(fifths - kOrderOfSharps[letter] + 6, 7));
    }
    return key;
}

KeySignature KeySignature::nonStandard(const std::array<std::int8_t, 7>& alters,
                                       const std::array<std::int8_t, 7>& cents) {
    KeySignature key;
    key.word_ = kNonStandardKey;
    key.alters_ = alters;
    key.cents_ = cents;
    return key;
}

int KeySignature::tonicPlace() const {
    if (!isStandard()) return 0;
    const int fifths = (word_ & 0xFF) - (word_ & 0x80 ? 0x100 : 0);
    const int major = (4 * fifths) % 7;  // the sign of the fifths decides on which side of middle C it lies
    if ((word_ >> 8) == 0) return major;
    return major < 2 ? major + 5 : major - 2;
}

void KeySignature::store(const SpelledPitch& pitch, ENOTE& note) const {
    note.displacement = static_cast<std::int16_t>(pitch.step - tonicPlace());
    note.alteration = static_cast<std::int16_t>(pitch.alter - letterAlter(floorMod(pitch.step, 7)));
}

SpelledPitch KeySignature::spell(const ENOTE& note) const {
    const int step = note.displacement + tonicPlace();
    return {step, note.alteration + letterAlter(floorMod(step, 7))};
}

}  // namespace rovescio::engine
