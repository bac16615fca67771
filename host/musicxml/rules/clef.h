// What a clef means for pitches and stems.
#pragma once

namespace rovescio::musicxml {

struct Clef {
    int middleStep = 6;       // diatonic steps from middle C on the middle line of
                              // five; treble by default
    bool pitched = true;      // false for percussion
    bool hasStemRule = true;  // false where stems do not follow the middle line
                              // (tablature, no clef)

    friend bool operator==(const Clef&, const Clef&) = default;
};

}  // namespace rovescio::musicxml
