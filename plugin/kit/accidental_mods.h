// The accidental modifications of notes: records attached to the note's entry, found by the note's id.
#pragma once

#include "kit/data_records.h"

// Stands for any note of the entry.
inline constexpr std::uint16_t kAnyNote = 0xFFFF;

// Each finds the first record of the entry that belongs to the note and gives its incident; false when none
// of the first thousand does or the host fails. Loading may change the record even so.
bool sx_loadaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId, EDTAccidentalMods2012* record,
                          std::uint16_t& incident);
bool sx_deleteaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId);

// Replace the record that belongs to the note, or append one to those of the entry. What the host gets is
// made out to the note; for any note it stays made out as it is.
bool sx_saveaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId,
                          const EDTAccidentalMods2012* record, std::uint16_t& incident);
bool sx_addaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId, const EDTAccidentalMods2012* record,
                         std::uint16_t& incident);
