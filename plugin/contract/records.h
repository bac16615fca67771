// The packed records that cross the border between the plug-in and its host, byte for byte.
//
// Everything is little-endian and packed. Plug-in and host share this header and the list of host
// functions, and nothing else: together they are the contract.
#pragma once

#include <cstddef>
#include <cstdint>

// Passed as the last argument of every host call and reported as the kit's own version: the host reads from
// it which record layouts the caller was built against.
inline constexpr std::uint32_t kKitVersion = 0x19500000;

// Notes that one entry can hold.
inline constexpr int kMaxNotes = 12;

// Opaque, pointer-sized handles of the host.
using SXWindow = void*;
using SXMassEdit = void*;
using SXHandle = void*;

// Dialog messages.
inline constexpr std::uint16_t kDialogInit = 272;
inline constexpr std::uint16_t kDialogCommand = 273;

// Upper half of a command's parameter when the selected entry of a pop-up changed.
inline constexpr std::uint32_t kPopupChanged = 0x0202;

// Kinds of control value.
inline constexpr short kPopupValue = 0;
inline constexpr short kCheckValue = 1;
inline constexpr short kNumberValue = 3;

// Alert styles, and the answer that means yes.
inline constexpr std::uint16_t kAlertWarning = 48;
inline constexpr std::uint16_t kAlertYesNo = 4;
inline constexpr short kAnswerYes = 6;

// A dialog procedure answers non-zero when it handled the message. It takes the dialog, the message, the
// item, the message parameter (for a command: notification in the upper half) and the user data of SX_Dialog.
using SXDialogProc = int (*)(SXWindow dialog, std::uint16_t message, short item, std::uint32_t parameter,
                             void* userData);

#pragma pack(push, 1)

// A point in the score.
struct EMUSICPOINT {
    std::uint16_t staffList;  // 0: staff list against which slots are counted
    std::int16_t slot;        // 2: staff slot in that list, from 1
    std::int16_t measure;     // 4: measure, from 1
    std::int32_t position;    // 6: elapsed duration from the start of the measure, host duration units
};

// A selected stretch of music; both ends belong to it. Of `end`, the staff list is carried but never read.
struct EREGION {
    EMUSICPOINT start;  // 0
    EMUSICPOINT end;    // 10
};

// One note of an entry.
struct ENOTE {
    std::int16_t displacement;  // 0: diatonic steps from the tonic of the key in force, 7 to the octave
    std::int16_t alteration;    // 2: semitones from the spelling that the key gives that degree
    std::uint16_t noteId;       // 4: unique within the entry, from 1
    std::uint32_t noteFlags;    // 6: NOTE_ bits
};

// A note, chord or rest.
struct EXENTRY {
    std::uint32_t entryNumber;    // 0: number in the document
    std::int32_t duration;        // 4: note value, host duration units
    std::uint32_t entryFlags;     // 8: ENTRY_ bits
    std::uint8_t updateFlags;     // 12: ENTRY_CHANGED, ENTRY_HAS_SHAPES
    std::uint8_t reserved13;      // 13: the host's
    std::int16_t noteCount;       // 14: notes in use, 0 to 12
    ENOTE notes[kMaxNotes];       // 16: unused slots are zero after cleaning
    std::int32_t elapsed;         // 136: position from the start of the measure, host duration units
    std::uint8_t hostPrivate[6];  // 140: the host's
};

// The entries of one measure on one staff slot in one layer; owned by the host.
struct EXTGF2005a {
    std::uint8_t header0[10];  // 0: the host's
    std::int16_t headerWord;   // 10: non-zero when the frame is unsuitable for reversal
    std::uint8_t header12[2];  // 12: the host's
    EXENTRY* entries;          // 14: contiguous array
    std::int16_t entryCount;   // 22: number of entries
};

// Key of most data records: the record's number and an incident number.
struct EDATAKEY {
    std::uint16_t cmper;  // 0
    std::uint16_t inci;   // 2
};

// A record of the staff list that playback reads.
struct EDTPlaybackStaff {
    std::int16_t staff;          // 0: the staff (instrument) number
    std::int16_t reserved2[11];  // 2: zero
};

#pragma pack(pop)

// EXENTRY::entryFlags
inline constexpr std::uint32_t ENTRY_VALID = 0x80000000;          // set on every entry in use
inline constexpr std::uint32_t ENTRY_NOTE = 0x40000000;           // a note or chord; clear for a rest
inline constexpr std::uint32_t ENTRY_STARTS_VOICE2 = 0x20000000;  // a second voice of the layer starts here
inline constexpr std::uint32_t ENTRY_VOICE2 = 0x10000000;         // belongs to the second voice of the layer
inline constexpr std::uint32_t ENTRY_RESTFLAG = 0x01000000;       // a rest made by the plug-in or by cleaning

// EXENTRY::updateFlags
inline constexpr std::uint8_t ENTRY_CHANGED = 0x04;     // the entry's notes were altered
inline constexpr std::uint8_t ENTRY_HAS_SHAPES = 0x20;  // the entry carries smart shapes

// ENOTE::noteFlags
inline constexpr std::uint32_t NOTE_PLACEHOLDER = 0x80000000;  // stands in for the note of a rest
inline constexpr std::uint32_t NOTE_TIE_START = 0x40000000;    // a tie leaves the note
inline constexpr std::uint32_t NOTE_TIE_END = 0x20000000;      // a tie arrives at the note
inline constexpr std::uint32_t NOTE_TIES = NOTE_TIE_START | NOTE_TIE_END;
inline constexpr std::uint32_t NOTE_FLAG24 = 0x01000000;  // the note shows an accidental
inline constexpr std::uint32_t NOTE_IDBITS = 0x001F0000;  // copy of noteId & 31
inline constexpr std::uint32_t NOTE_FLAG1 =
    0x00000002;  // showing or hiding the accidental was decided by hand

// Key signature words below this limit are signed fifths in the low byte and a mode in the high byte.
inline constexpr std::uint16_t kNonStandardKey = 0x4000;

static_assert(sizeof(EMUSICPOINT) == 10 && sizeof(EREGION) == 20 && offsetof(EREGION, end) == 10);
static_assert(offsetof(EMUSICPOINT, slot) == 2 && offsetof(EMUSICPOINT, measure) == 4 &&
              offsetof(EMUSICPOINT, position) == 6);
static_assert(sizeof(ENOTE) == 10 && offsetof(ENOTE, alteration) == 2 && offsetof(ENOTE, noteId) == 4 &&
              offsetof(ENOTE, noteFlags) == 6);
static_assert(sizeof(EXENTRY) == 146 && offsetof(EXENTRY, duration) == 4 &&
              offsetof(EXENTRY, entryFlags) == 8 && offsetof(EXENTRY, updateFlags) == 12 &&
              offsetof(EXENTRY, noteCount) == 14 && offsetof(EXENTRY, notes) == 16 &&
              offsetof(EXENTRY, elapsed) == 136 && offsetof(EXENTRY, hostPrivate) == 140);
static_assert(offsetof(EXTGF2005a, headerWord) == 10 && offsetof(EXTGF2005a, entries) == 14 &&
              offsetof(EXTGF2005a, entryCount) == 14 + sizeof(void*) &&
              sizeof(EXTGF2005a) == 16 + sizeof(void*));
static_assert(sizeof(EDATAKEY) == 4 && offsetof(EDATAKEY, inci) == 2);
static_assert(sizeof(EDTPlaybackStaff) == 24);
