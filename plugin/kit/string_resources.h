// The plug-in's localised texts, fetched by 32-bit string ids.
//
// An id holds a table number in its upper half and an index in its lower one, both signed. The texts live in
// the plug-in bundle's Localizable.strings under the key "table,index" ("index" alone for table 0). A text
// that is missing there is delivered as its key.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

constexpr std::uint32_t makeStringId(short table, short index) {
    return static_cast<std::uint32_t>(static_cast<std::uint16_t>(table)) << 16 |
           static_cast<std::uint16_t>(index);
}

// Menu texts: the index is the command's, counted from 1.
inline constexpr short kMenuTextTable = 20128;

// Second and third text of the extension descriptor.
inline constexpr std::uint32_t kCommandNameText = makeStringId(20129, 1);
inline constexpr std::uint32_t kCommandHelpText = makeStringId(20129, 2);

// Alerts and questions
inline constexpr std::uint32_t kRetrogradeFailedText = makeStringId(20134, 1);
inline constexpr std::uint32_t kNoSelectionText = makeStringId(20134, 2);
inline constexpr std::uint32_t kRepairQuestionText = makeStringId(20134, 12);
inline constexpr std::uint32_t kNothingChosenText = makeStringId(20134, 13);

// Fragments of the retrograde report, at most 63 units each; kNoSelectionText is one of them too.
inline constexpr std::uint32_t kSecondVoiceText = makeStringId(20134, 3);
inline constexpr std::uint32_t kSmartShapesText = makeStringId(20134, 9);
inline constexpr std::uint32_t kNoProblemsText = makeStringId(20134, 10);
inline constexpr std::uint32_t kUnsuitableFrameText = makeStringId(20134, 11);

// Format of the first and last measure of the selection, two integers.
inline constexpr std::uint32_t kMeasureRangeFormat = makeStringId(20139, 1);

// The caller releases the string. Alerts when the whole strings file is missing. Ends the process when the
// plug-in is not inside a bundle.
CFStringRef CopyPlugInStringResource(std::uint32_t id);

// Puts the text, cut to capacity - 1 units, and a terminator into the buffer and returns the buffer; null,
// with nothing written, for capacity 0.
char16_t* PlugIn_GetStringResource(std::uint32_t id, char16_t* buffer, std::uint16_t capacity);

// The same in the application's 8-bit encoding, where the rest of the buffer is filled with zeros. A text
// that takes more than 255 bytes, or that the encoding lacks, is delivered empty.
char* PlugIn_GetStringResource(std::uint32_t id, char* buffer, std::uint16_t capacity);

// Length in bytes of the 8-bit text that it puts into the buffer.
std::int16_t LoadIndString(std::uint16_t table, std::uint16_t index, char* buffer, std::uint16_t capacity);

// Texts by decimal id: the thousands are the table number, whole (21005 is table 21000), the rest is the
// index; below 1000 the table is 20000. The text is cut to 1023 units and stays until the same function's
// next call.
const char* GetResourceCString(std::uint32_t decimalId);
const char16_t* GetResourceCString_UTF16(std::uint32_t decimalId);
