// The settings of the main dialog, which outlive it.
#pragma once

#include <cstdint>

#include "transform/transpose_dialog.h"

// Entries of the inversion pop-up.
inline constexpr short kNoInversion = 1;
inline constexpr short kDiatonicInversion = 2;
inline constexpr short kChromaticInversion = 3;
inline constexpr short kChordsUpward = 4;
inline constexpr short kChordsDownward = 5;

// First entry of the note-flag pop-up: leave the flags alone.
inline constexpr short kNoOption = 1;

struct SUItemsRecord {
    std::int16_t retrograde = 0;          // 1: reverse the selection
    std::uint32_t retrogradeOptions = 3;  // bits: 1 mirror key signatures, 2 mirror measure spacing
    std::int16_t inversionKind = kNoInversion;
    std::int16_t mirrorAxisStep = 0;        // axis of inversion: diatonic steps from middle C
    std::int16_t mirrorAxisAlteration = 0;  // axis of inversion: -1 flat, 0 natural, 1 sharp
    std::int16_t mirrorCheck = 0;           // 1: simple spelling after a chromatic inversion
    std::int16_t optionKind = kNoOption;    // 2 to 6: a note-flag option
    std::int16_t removeTies = 0;            // 1: remove ties
    STStruct transpose;
};

// The one settings record; kept as long as the plug-in stays loaded, never written to disk.
extern SUItemsRecord SUItems;
