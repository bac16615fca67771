// The transposition settings and the dialogs that edit them.
#pragma once

#include <cstdint>

#include "contract/records.h"

// Kinds of transposition, in the order of the pop-up menus.
inline constexpr short kNoTransposition = 1;
inline constexpr short kDiatonicTransposition = 2;
inline constexpr short kChromaticTransposition = 3;
inline constexpr short kSemitoneTransposition = 4;

// The transposition settings. They live as long as the plug-in is loaded; the pop-up handlers write into them
// as the user works, so that only steps, alteration and octaves wait for OK.
struct STStruct {
    std::int16_t kind = kNoTransposition;
    std::int16_t semitoneItem = 1;   // pop-up entry: semitones plus 1
    std::int16_t chromaticItem = 1;  // pop-up entry, 1 to 27
    std::int16_t diatonicItem = 1;   // pop-up entry, 1 to 9
    std::int16_t direction = 1;      // 1 up, 2 down
    std::int16_t spellingItem = 1;   // 1 sharps, 2 flats
    std::int16_t steps = 0;          // result: diatonic steps, negative downward
    std::int16_t alteration = 0;  // result: semitones beyond the major or perfect interval, likewise signed
    std::int16_t octaves = 0;     // result: whole octaves, likewise signed
    std::int16_t chromaticSteps = 0;  // chosen by the chromatic pop-up
    std::int16_t chromaticAlteration = 0;
    std::int16_t diatonicSteps = 0;  // chosen by the diatonic pop-up
    std::int16_t semitoneSteps = 0;  // chosen by the semitone and spelling pop-ups
    std::int16_t semitoneAlteration = 0;
};
static_assert(sizeof(STStruct) == 28);

// Runs the transposition dialog over the main dialog. Returns 0.
short TransposeDialog(SXWindow parent, STStruct* settings);

int TransposeDialogProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t parameter,
                        void* data) noexcept;

// Takes the semitone and spelling pop-ups into the settings.
void DoSTSemitonesPopup(SXWindow dialog, STStruct* settings);

// Shows the controls that belong to the kind of transposition and hides the others.
void STAdjustTransposePopups(SXWindow dialog, const STStruct* settings);

// Asks for an interval that the pop-ups do not list; without `alteration` for a step count alone. Both come
// back as they were when the user cancels.
void OtherTransposeDialog(SXWindow parent, std::int16_t* steps, std::int16_t* alteration);
