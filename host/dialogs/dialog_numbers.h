// The numbers of the plug-in's dialogs and of the items in them, as its resources describe them.
#pragma once

namespace rovescio::dialogs {

namespace main_dialog {
inline constexpr short kNumber = 20130;
inline constexpr short kApply = 1;
inline constexpr short kClose = 2;
inline constexpr short kPlay = 3;
inline constexpr short kInversion = 4;
inline constexpr short kAxisSettings = 5;
inline constexpr short kTransposition = 6;
inline constexpr short kTranspositionSettings = 7;
inline constexpr short kAccidentals = 8;
inline constexpr short kRetrograde = 9;
inline constexpr short kRetrogradeSettings = 10;
inline constexpr short kRemoveTies = 11;
inline constexpr short kCheck = 12;

// The first entry of the pop-ups chooses nothing.
inline constexpr int kNone = 1;
inline constexpr int kFirstChoice = 2;
}  // namespace main_dialog

namespace axis_dialog {
inline constexpr short kNumber = 20140;
inline constexpr short kOk = 1;
inline constexpr short kPitch = 3;
inline constexpr short kListen = 4;
inline constexpr short kOctave = 5;
inline constexpr short kSimplify = 6;

// The pop-up lists each letter flat, natural and sharp.
inline constexpr int kCNatural = 2;
inline constexpr int kEntriesOfLetter = 3;
// Octave numbers count as in "C4", the host's name of middle C.
inline constexpr int kMiddleOctave = 4;
}  // namespace axis_dialog

namespace transposition_dialog {
inline constexpr short kNumber = 20150;
inline constexpr short kOk = 1;
inline constexpr short kKind = 3;
inline constexpr short kSemitones = 4;
inline constexpr short kDiatonicInterval = 5;
inline constexpr short kChromaticInterval = 6;
inline constexpr short kDirection = 7;
inline constexpr short kSpelling = 8;
inline constexpr short kOctaves = 9;

inline constexpr int kKindDiatonic = 2;
inline constexpr int kKindChromatic = 3;
inline constexpr int kKindSemitones = 4;
inline constexpr int kDiatonicOther = 9;
inline constexpr int kChromaticOther = 27;
}  // namespace transposition_dialog

namespace other_interval_dialog {
inline constexpr short kNumber = 20180;
inline constexpr short kOk = 1;
inline constexpr short kSteps = 4;
inline constexpr short kAlteration = 6;
}  // namespace other_interval_dialog

namespace retrograde_dialog {
inline constexpr short kNumber = 20190;
inline constexpr short kOk = 1;
inline constexpr short kMirrorKeys = 3;
inline constexpr short kMirrorSpacing = 4;
}  // namespace retrograde_dialog

namespace report_dialog {
inline constexpr short kNumber = 20230;
inline constexpr short kClose = 1;
inline constexpr short kMeasures = 2;
inline constexpr short kReport = 3;
inline constexpr short kRepair = 7;
}  // namespace report_dialog

}  // namespace rovescio::dialogs
