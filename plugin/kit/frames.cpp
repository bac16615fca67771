// Frame calls with the counting and cleaning that the kit puts around them.
#include "kit/frames.h"

#include <algorithm>
#include <cstring>

#include "kit/bound.h"

std::int32_t LoadedTGFCounter = 0;
bool CanAddNoteRecordToRests = true;

namespace {

// Renumbers missing ids, and each id that another note still holds, above the largest one.
void makeNoteIdsUnique(EXENTRY& entry, int count) {
    std::int16_t largest = 0;
    for (int i = 0; i < count; ++i) {
        largest = std::max(largest, static_cast<std::int16_t>(entry.notes[i].noteId));
    }
    for (int i = 0; i < count; ++i) {
        const auto id = entry.notes[i].noteId;
        bool taken = id == 0;
        for (int j = 0; j < count && !taken; ++j) taken = j != i && entry.notes[j].noteId == id;
        if (taken) entry.notes[i].noteId = static_cast<std::uint16_t>(++largest);
    }
}

void cleanEntry(EXENTRY& entry) {
    const int count = std::min<int>(entry.noteCount, kMaxNotes);
    if (count > 0) {
        makeNoteIdsUnique(entry, count);
        for (int i = 0; i < count; ++i) {
            ENOTE& note = entry.notes[i];
            note.noteFlags = (note.noteFlags & ~NOTE_IDBITS) | (note.noteId & 31U) << 16;
        }
    }
    const int used = std::max(count, 0);
    std::memset(&entry.notes[used], 0, static_cast<std::size_t>(kMaxNotes - used) * sizeof(ENOTE));
    if (entry.noteCount == 0 && CanAddNoteRecordToRests) {
        entry.noteCount = 1;
        entry.notes[0].noteFlags = NOTE_PLACEHOLDER;
        entry.entryFlags |= ENTRY_RESTFLAG;
    }
}

}  // namespace

void CleanTGF(EXTGF2005a* frame, bool /*unused*/) {
    if (!frame) return;
    for (short i = 0; i < frame->entryCount; ++i) cleanEntry(frame->entries[i]);
}

EXTGF2005a* SX_LoadTGF(std::uint16_t staffList, short slot, short measure, short layer, short mode) {
    ++LoadedTGFCounter;
    return kit::bound::SX_LoadTGF(staffList, slot, measure, layer, mode);
}

short SX_InsertEXENTRY(EXTGF2005a* frame, short index, short count) {
    CleanTGF(frame);
    return kit::bound::SX_InsertEXENTRY(frame, index, count);
}

short SX_DeleteEXENTRY(EXTGF2005a* frame, short index, short count) {
    CleanTGF(frame);
    return kit::bound::SX_DeleteEXENTRY(frame, index, count);
}

short SX_SaveTGF(EXTGF2005a* frame) {
    CleanTGF(frame);
    return kit::bound::SX_SaveTGF(frame);
}

void SX_FreeTGF(EXTGF2005a* frame) {
    --LoadedTGFCounter;
    kit::bound::SX_FreeTGF(frame);
}
