// Key signature words and the spelling of notes relative to a key, as the document stores them.
#pragma once

#include <array>
#include <cstdint>

#include "contract/records.h"

namespace rovescio::engine {

// A written pitch, independent of any key.
struct SpelledPitch {
    int step = 0;   // diatonic steps from middle C: 0 is C4, 7 is C5, -1 is B3
    int alter = 0;  // semitones from the natural note: +1 sharp, -1 flat

    friend bool operator==(const SpelledPitch&, const SpelledPitch&) = default;
};

// Floor division and its remainder, which is never negative for a positive divisor.
constexpr int floorDiv(int value, int divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}
constexpr int floorMod(int value, int divisor) {
    return value - divisor * floorDiv(value, divisor);
}

// Semitones above middle C (C4 = 0, C5 = 12).
int semitones(const SpelledPitch& pitch);

// A key signature: signed fifths and major or minor, or a signature that the standard scales do not give,
// for which the alteration of each letter is known.
class KeySignature {
  public:
    // A traditional signature; fifths from -128 to 127, negative for flats.
    static KeySignature standard(int fifths, bool minor);
    // A signature off the standard scales, or of a staff without pitches; alters are by letter, C first, in
    // semitones and hundredths (0 to 99) above them.
    static KeySignature nonStandard(const std::array<std::int8_t, 7>& alters = {},
                                    const std::array<std::int8_t, 7>& cents = {});

    // The word that the host interface gives the plug-in.
    [[nodiscard]] std::uint16_t word() const { return word_; }
    [[nodiscard]] bool isStandard() const { return word_ < kNonStandardKey; }
    // The tonic's place in diatonic steps from middle C. Sharp major keys have it at or above, flat ones at
    // or below middle C; keys off the standard scales count from C.
    [[nodiscard]] int tonicPlace() const;
    // Semitones by which the signature alters a letter (0 C to 6 B).
    [[nodiscard]] int letterAlter(int letter) const { return alters_[static_cast<std::size_t>(letter)]; }
    [[nodiscard]] int letterCents(int letter) const { return cents_[static_cast<std::size_t>(letter)]; }

    // Writes a pitch into a note, or reads it from there, relative to this key.
    void store(const SpelledPitch& pitch, ENOTE& note) const;
    [[nodiscard]] SpelledPitch spell(const ENOTE& note) const;

    friend bool operator==(const KeySignature&, const KeySignature&) = default;

  private:
    std::uint16_t word_ = 0;
    std::array<std::int8_t, 7> alters_{};
    std::array<std::int8_t, 7> cents_{};
};

}  // namespace rovescio::engine
