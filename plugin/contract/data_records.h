// The data records of a document beside its frames: their tags, keys and layouts, byte for byte.
//
// Everything is little-endian and packed. A record is found by a tag of four characters, the first in the
// most significant byte, and a key whose form depends on the tag. Where a comment gives no unit, the field is
// a plain number.
#pragma once

#include <cstddef>
#include <cstdint>

#include "contract/records.h"

// Given to SX_CreateEData instead of the number that the host is to choose: the incident, for a center shape
// its own number, for records with one to each number that number. The host writes what it chose into the
// key.
//
// Incidents count from 0 without gaps; the host closes them up after a deletion. SX_SaveEData replaces a
// record, or adds the one with the next free incident.
inline constexpr std::uint16_t kAppendNumber = 0xFFFF;

// The number under which a document keeps records of which it has but one set.
inline constexpr std::uint16_t kGlobalNumber = 65534;

#pragma pack(push, 1)

// Key of a detail record, which belongs to two numbers.
struct EDETAILKEY {
    std::uint16_t cmper1;  // 0
    std::uint16_t cmper2;  // 2
    std::uint16_t inci;    // 4
};

// Key of a record that is attached to an entry.
struct EENTRYKEY {
    std::uint32_t entryNumber;  // 0
    std::uint16_t inci;         // 4
};

// A measure, the same for all staves.
struct EDTMeasureSpec2014 {
    std::int16_t width;           // 0: hundredths of a staff space
    std::uint16_t keySignature;   // 2: key signature word
    std::int16_t beats;           // 4: beats in the measure
    std::int16_t beatDuration;    // 6: of one beat, host duration units
    std::int16_t spaceBefore;     // 8: extra space, hundredths of a staff space
    std::int16_t spaceAfter;      // 10: extra space, hundredths of a staff space
    std::uint16_t flags;          // 12: MEASURE_ bits
    std::uint16_t reserved14[8];  // 14: zero
};

// A slur, hairpin or other line. The old layout is the same without the last eight bytes.
struct EDTOldSmartShape {
    std::uint16_t kind;               // 0: SHAPE_ kind
    std::uint32_t flags;              // 2: SHAPE_ bits; the byte at 5 says how the shape is attached
    std::int16_t firstStaff;          // 6: staff (instrument) number
    std::int16_t firstMeasure;        // 8: measure, from 1
    std::int32_t firstEntry;          // 10: entry number, of shapes attached to entries
    std::int32_t firstPosition;       // 14: from the start of the measure, host duration units
    std::int16_t firstHorizontal;     // 18: offset to the right, hundredths of a staff space
    std::int16_t firstVertical;       // 20: offset upward, hundredths of a staff space
    std::uint16_t firstReserved[7];   // 22: the host's
    std::int16_t lastStaff;           // 36: staff (instrument) number
    std::int16_t lastMeasure;         // 38: measure, from 1
    std::int32_t lastEntry;           // 40: entry number, of shapes attached to entries
    std::int32_t lastPosition;        // 44: from the start of the measure, host duration units
    std::int16_t lastHorizontal;      // 48: offset to the right, hundredths of a staff space
    std::int16_t lastVertical;        // 50: offset upward, hundredths of a staff space
    std::uint16_t lastReserved[7];    // 52: the host's
    std::uint16_t text;               // 66: number of the text block along the line, 0 for none
    std::uint16_t hostPrivate68[12];  // 68: the host's
};

// Size of that old layout in bytes.
inline constexpr std::uint32_t kOldSmartShapeSize = 84;

// Marks in a measure that a shape runs through it.
struct MeasureMarkRecord {
    std::uint16_t shapeNumber;   // 0
    std::uint16_t centerNumber;  // 2: center shape of this measure, 0 in the shape's first and last measure
    std::uint16_t reserved4[4];  // 4: zero
};

// The look of a shape in a measure between its first and last.
struct CenterShapeRecord {
    std::uint16_t hostPrivate[11];  // 0: the host's
};

// Marks on an entry that a shape starts or ends there.
struct EntryMarkRecord {
    std::uint16_t shapeNumber;   // 0
    std::uint16_t reserved2[4];  // 2: zero
};

// How the accidental of one note departs from the default; attached to the note's entry.
struct EDTAccidentalMods2012 {
    std::uint16_t noteId;         // 0: id of the note within its entry
    std::int16_t horizontal;      // 2: offset to the right, hundredths of a staff space
    std::int16_t vertical;        // 4: offset upward, hundredths of a staff space
    std::uint16_t character;      // 6: character drawn instead, 0 for the usual one
    std::int16_t font;            // 8: font number, 0 for the usual one
    std::int16_t fontSize;        // 10: percent of the usual size, 0 for the usual one
    std::uint16_t flags;          // 12: the host's
    std::uint16_t reserved14[3];  // 14: zero
};

// One staff of the score.
struct EDTStaffSpec {
    std::uint16_t fullName;       // 0: number of a text block, 0 for none
    std::uint16_t shortName;      // 2: number of a text block, 0 for none
    std::uint16_t clef;           // 4: clef at the start
    std::int16_t lines;           // 6: staff lines
    std::int16_t transposeSteps;  // 8: diatonic steps from written to sounding
    std::int16_t transposeKeys;   // 10: fifths from the score's key to the written one
    std::uint16_t flags;          // 12: the host's
    std::uint16_t reserved14[5];  // 14: zero
};

// A bracketed group of staves.
struct EDTGroupSpec {
    std::int16_t firstStaff;      // 0: staff (instrument) number
    std::int16_t lastStaff;       // 2: staff (instrument) number
    std::uint16_t bracket;        // 4: kind of bracket, 0 for none
    std::uint16_t fullName;       // 6: number of a text block, 0 for none
    std::uint16_t shortName;      // 8: number of a text block, 0 for none
    std::uint16_t flags;          // 10: the host's
    std::uint16_t reserved12[6];  // 12: zero
};

// How a raw text is laid out.
struct EDTTextBlock {
    std::uint16_t rawText;        // 0: number of the raw text
    std::int16_t width;           // 2: hundredths of a staff space, 0 for as wide as the text
    std::int16_t height;          // 4: hundredths of a staff space, 0 for as high as the text
    std::int16_t lineSpacing;     // 6: percent
    std::uint16_t justification;  // 8: 0 left, 1 centre, 2 right, 3 full
    std::uint16_t flags;          // 10: the host's
    std::uint16_t reserved12[6];  // 12: zero
};

// An expression that texts and shapes of the score refer to.
struct EDTTextExpression {
    std::uint16_t textBlock;      // 0: number of the text block
    std::uint16_t category;       // 2: dynamics, tempo and so on
    std::int16_t playbackKind;    // 4: what it does in playback, 0 for nothing
    std::int16_t playbackValue;   // 6: by how much
    std::uint16_t flags;          // 8: the host's
    std::uint16_t reserved10[3];  // 10: zero
};

// A text on pages.
struct EDTPageText {
    std::uint16_t textBlock;  // 0: number of the text block
    std::int16_t horizontal;  // 2: from the margin, hundredths of a staff space
    std::int16_t vertical;    // 4: from the margin, hundredths of a staff space
    std::int16_t firstPage;   // 6: from 1
    std::int16_t lastPage;    // 8: 0 for the last page of the score
    std::uint16_t alignment;  // 10: margin and edge that the offsets start from
};

// A text that hangs on a measure of a staff.
struct EDTMeasureText {
    std::uint16_t textBlock;  // 0: number of the text block
    std::int16_t horizontal;  // 2: from the start of the measure, hundredths of a staff space
    std::int16_t vertical;    // 4: from the top staff line upward, hundredths of a staff space
    std::uint16_t flags;      // 6: the host's
};

// How the notehead of one note departs from the default; attached to the note's entry.
struct EDTNoteheadMod {
    std::uint16_t noteId;      // 0: id of the note within its entry
    std::uint16_t character;   // 2: character drawn instead, 0 for the usual one
    std::int16_t font;         // 4: font number, 0 for the usual one
    std::int16_t fontSize;     // 6: percent of the usual size, 0 for the usual one
    std::int16_t horizontal;   // 8: offset to the right, hundredths of a staff space
    std::uint16_t reserved10;  // 10: zero
};

// The frets of a plucked instrument.
struct EDTFretInstrument25_3 {
    std::uint16_t frets;            // 0: number of frets
    std::uint16_t strings;          // 2: number of strings in use
    std::uint16_t pitches[24];      // 4: open strings as MIDI notes, from the highest
    char16_t name[64];              // 52: terminated
    std::uint16_t hostPrivate[36];  // 180: the host's
};

#pragma pack(pop)

// EDTMeasureSpec2014::flags
inline constexpr std::uint16_t MEASURE_SPACING_MODE = 0x00C0;  // how the measure is spaced

// EDTOldSmartShape::kind
inline constexpr std::uint16_t SHAPE_SLUR = 1;
inline constexpr std::uint16_t SHAPE_CRESCENDO = 2;
inline constexpr std::uint16_t SHAPE_DIMINUENDO = 3;
inline constexpr std::uint16_t SHAPE_LINE = 4;

// EDTOldSmartShape::flags
inline constexpr std::uint32_t SHAPE_ON_ENTRIES = 0x40000000;  // its ends are attached to entries

// Tags. The first character gives the form of the key: D three words (EDETAILKEY), E an entry number and a
// word (EENTRYKEY), whatever its case; all others two words (EDATAKEY).
inline constexpr std::uint32_t kMeasureSpecTag = 0x534F4D53;     // (measure, 0)
inline constexpr std::uint32_t kSmartShapeTag = 0x4F085378;      // (shape number, 0)
inline constexpr std::uint32_t kOldSmartShapeTag = 0x4F075378;   // (shape number, 0), the old layout
inline constexpr std::uint32_t kMeasureMarkTag = 0x6F744D78;     // (measure, incident)
inline constexpr std::uint32_t kCenterShapeTag = 0x44034378;     // (shape number, center-shape number, 0)
inline constexpr std::uint32_t kEntryMarkTag = 0x65644578;       // (entry number, incident)
inline constexpr std::uint32_t kAccidentalModTag = 0x45024168;   // (entry number, incident)
inline constexpr std::uint32_t kNoteheadModTag = 0x45014E68;     // (entry number, incident)
inline constexpr std::uint32_t kPlaybackStaffTag = 0x534F4975;   // (playback staff list, incident)
inline constexpr std::uint32_t kFretInstrumentTag = 0x4F156649;  // (number, 0)
inline constexpr std::uint32_t kStaffSpecTag = 0x534F5370;       // (staff, 0)
inline constexpr std::uint32_t kGroupSpecTag = 0x534F4770;       // (group number, 0)
inline constexpr std::uint32_t kTextBlockTag = 0x534F5462;       // (text block number, 0)
inline constexpr std::uint32_t kRawTextTag = 0x534F5274;         // (raw text number, 0)
inline constexpr std::uint32_t kTextExpressionTag = 0x534F5478;  // (expression number, 0)
inline constexpr std::uint32_t kPageTextTag = 0x6F745078;        // (page, incident)
inline constexpr std::uint32_t kMeasureTextTag = 0x64744D78;     // (staff, measure, incident)

// The forms of key.
enum class RecordKeyForm : std::uint8_t { other, detail, entry };

constexpr RecordKeyForm recordKeyForm(std::uint32_t tag) {
    const std::uint32_t letter = (tag >> 24) | 0x20;
    return letter == 'd'   ? RecordKeyForm::detail
           : letter == 'e' ? RecordKeyForm::entry
                           : RecordKeyForm::other;
}

static_assert(recordKeyForm(kCenterShapeTag) == RecordKeyForm::detail &&
              recordKeyForm(kMeasureTextTag) == RecordKeyForm::detail &&
              recordKeyForm(kEntryMarkTag) == RecordKeyForm::entry &&
              recordKeyForm(kAccidentalModTag) == RecordKeyForm::entry &&
              recordKeyForm(kMeasureMarkTag) == RecordKeyForm::other &&
              recordKeyForm(kMeasureSpecTag) == RecordKeyForm::other);
static_assert(sizeof(EDETAILKEY) == 6 && offsetof(EDETAILKEY, cmper2) == 2 &&
              offsetof(EDETAILKEY, inci) == 4);
static_assert(sizeof(EENTRYKEY) == 6 && offsetof(EENTRYKEY, inci) == 4);
static_assert(sizeof(EDTMeasureSpec2014) == 30 && offsetof(EDTMeasureSpec2014, keySignature) == 2 &&
              offsetof(EDTMeasureSpec2014, beats) == 4 && offsetof(EDTMeasureSpec2014, beatDuration) == 6 &&
              offsetof(EDTMeasureSpec2014, spaceBefore) == 8 &&
              offsetof(EDTMeasureSpec2014, spaceAfter) == 10 && offsetof(EDTMeasureSpec2014, flags) == 12);
static_assert(sizeof(EDTOldSmartShape) == 92 && offsetof(EDTOldSmartShape, flags) == 2 &&
              offsetof(EDTOldSmartShape, firstMeasure) == 8 && offsetof(EDTOldSmartShape, firstEntry) == 10 &&
              offsetof(EDTOldSmartShape, firstPosition) == 14 &&
              offsetof(EDTOldSmartShape, firstVertical) == 20 &&
              offsetof(EDTOldSmartShape, lastStaff) == 36 && offsetof(EDTOldSmartShape, lastMeasure) == 38 &&
              offsetof(EDTOldSmartShape, lastEntry) == 40 && offsetof(EDTOldSmartShape, lastPosition) == 44 &&
              offsetof(EDTOldSmartShape, lastVertical) == 50 && offsetof(EDTOldSmartShape, text) == 66);
static_assert(sizeof(MeasureMarkRecord) == 12 && offsetof(MeasureMarkRecord, centerNumber) == 2);
static_assert(sizeof(CenterShapeRecord) == 22 && sizeof(EntryMarkRecord) == 10);
static_assert(sizeof(EDTAccidentalMods2012) == 20 && offsetof(EDTAccidentalMods2012, flags) == 12);
static_assert(sizeof(EDTStaffSpec) == 24 && sizeof(EDTGroupSpec) == 24 && sizeof(EDTTextBlock) == 24);
static_assert(sizeof(EDTTextExpression) == 16 && sizeof(EDTPageText) == 12 && sizeof(EDTMeasureText) == 8);
static_assert(sizeof(EDTNoteheadMod) == 12);
static_assert(sizeof(EDTFretInstrument25_3) == 252 && offsetof(EDTFretInstrument25_3, name) == 52 &&
              offsetof(EDTFretInstrument25_3, hostPrivate) == 180);
