// Preference records whose fields the host keeps scattered over sub-records.
//
// They are packed and have the layouts of older documents. Where a comment gives no unit, a field is 1 for
// yes and 0 for no; h stands for hundredths and t for ten-thousandths of a staff space.
#pragma once

#include <cstdint>

#pragma pack(push, 1)

// How notes are drawn.
struct EDT2005Prefs {
    std::int16_t noteSpacing;                // after a quarter note, h
    std::int16_t beamThickness, stemLength;  // h
    std::int16_t showRests;
    std::int16_t tieStyle;                             // 0 outer, 1 inner
    std::int32_t maximumBeamHeight, maximumBeamSlope;  // t
};

// Distances around signs, h.
struct EDTDistancePrefs {
    std::int16_t beforeClef, afterClef, beforeKey, afterKey, beforeTime, afterTime;
    std::int16_t beforeMusic, afterMusic, betweenAccidentals, betweenDots;
};

// How parts are taken out of a score.
struct EDTExtractPrefs {
    std::int16_t measuresPerSystem;  // 0 for as many as fit
    std::int16_t joinRests;
    std::int16_t shortestJoinedRest;  // measures
    std::int16_t respaceMusic;
    std::int32_t pageWidth, pageHeight;  // t
};

// Settings of the document that belong nowhere else.
struct EDTMiscDocPrefs {
    std::int16_t pickupBeats;  // 0 for a full first measure
    std::int16_t showCourtesyClefs, showCourtesyKeys, showCourtesyTimes;
    std::int16_t numberMeasures;
    std::int16_t dateFormat;   // 0 short, 1 long
    std::int32_t editingTime;  // seconds
};

// The shape of the brace, h.
struct EDTPianoBracePrefs {
    std::int16_t tipThickness, tipWidth, outerBody, innerBody, width, centreThickness;
};

// Pages of the score.
struct EDTPageFormatPrefsScore {
    std::int32_t pageHeight, pageWidth;                             // t
    std::int16_t pagePercent, systemPercent;                        // of the usual size
    std::int16_t marginTop, marginLeft, marginBottom, marginRight;  // h
    std::int16_t sameMargins;                                       // on left and right pages
};

// Playback.
struct EDTPlaybackPrefs {
    std::int16_t tempo;     // quarter notes a minute
    std::int16_t velocity;  // of a note without a dynamic, 0 to 127
    std::int16_t swing;     // percent
    std::int16_t playRepeats;
    std::int32_t startTime;  // milliseconds of silence before the first note
};

// Repeat barlines and endings, h.
struct EDTRepeatPrefs {
    std::int16_t thickLine, thinLine, lineSpacing, dotSpacing, endingHeight, endingHook;
    std::int16_t showWings;
};

// Sizes.
struct EDTSizePrefs {
    std::int16_t graceNotes, cueNotes, midMeasureClefs;  // percent of the usual size
    std::int16_t staffLineThickness;                     // h
    std::int32_t staffSpace;                             // ten-thousandths of a millimetre
};

// Slurs, hairpins and lines.
struct EDTSmartShapePrefs {
    std::int16_t hairpinOpening, lineThickness, dashLength;  // h
    std::int16_t slurThickness;                              // at the middle, h
    std::int16_t avoidNotes;
    std::int16_t slurStyle;   // 0 full, 1 dashed
    std::int32_t slurHeight;  // at most, t
};

#pragma pack(pop)
