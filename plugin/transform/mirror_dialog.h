// The mirror-inversion dialog, which edits the axis note of inversions.
#pragma once

#include <cstdint>

#include "contract/records.h"

// The axis as the dialog edits it.
struct MirrorAxis {
    std::int16_t axis = 0;              // diatonic steps from middle C
    std::int16_t axisAlteration = 0;    // -1 flat, 0 natural, 1 sharp
    std::int16_t simplifySpelling = 0;  // 1: respell double accidentals and enharmonic white keys
    std::int16_t middleCOctave = 4;     // the octave number that the host's note names give middle C
};
static_assert(sizeof(MirrorAxis) == 8);

// Runs the dialog over the main dialog; a cancelled one leaves the axis as it was. The host is asked for its
// octave numbers.
void editMirrorAxis(SXWindow parent, MirrorAxis& axis);

int MirrorInversionDialogProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t parameter,
                              void* data) noexcept;
