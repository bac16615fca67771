// Key signature words of the host as inversion reads them.
#pragma once

#include <cstdint>

namespace pitch {

// A major or minor key.
class Key {
  public:
    // The keys that can be inverted in; words at or above this have other modes or no standard scale.
    static bool isMajorOrMinor(short keySignature) {
        return static_cast<std::uint16_t>(keySignature) < 0x200;
    }
    explicit Key(short keySignature)
        : fifths_((keySignature & 0xFF) - (keySignature & 0x80 ? 0x100 : 0)),
          minor_(keySignature >> 8 == 1) {}

    // Sharps, or flats when negative.
    [[nodiscard]] int fifths() const { return fifths_; }
    [[nodiscard]] bool isMinor() const { return minor_; }
    // The tonic's place in diatonic steps from middle C: sharp majors have it at or above, flat ones at or
    // below.
    [[nodiscard]] int tonicPlace() const {
        const int major = 4 * fifths_ % 7;
        if (!minor_) return major;
        return major < 2 ? major + 5 : major - 2;
    }

  private:
    int fifths_;
    bool minor_;
};

}  // namespace pitch
