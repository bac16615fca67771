// The check of a selection, before a retrograde, for what cannot be reversed, and its repair.
#pragma once

#include <cstdint>

#include "kit/mass_edit.h"

// What the check finds, as a set of bits.
inline constexpr std::uint16_t kNoRegion = 2;          // nothing is selected
inline constexpr std::uint16_t kSecondVoices = 4;      // a second voice inside a layer; can be deleted
inline constexpr std::uint16_t kUnsuitableFrames = 8;  // a frame that cannot be reversed at all
inline constexpr std::uint16_t kSmartShapes = 0x100;   // shapes hang on entries; can be deleted
inline constexpr std::uint16_t kEveryProblem = kSecondVoices | kUnsuitableFrames | kSmartShapes;

// Checks the music selected now, in shown and hidden layers alike, and returns what it found; a check that
// has found every problem stops. With `fix` it deletes what can be deleted and returns what is left. 0 when
// the user cancelled.
std::uint16_t VerifyRetrogradeSelection(CProgress* progress, short fix);
