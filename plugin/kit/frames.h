// Frames of entries: the cleaning pass and the lifetime of a loaded frame.
#pragma once

#include <memory>

#include "kit/host_api.h"

// Whether cleaning gives an entry without notes a placeholder note.
extern bool CanAddNoteRecordToRests;

// Makes a frame fit for the host: note ids unique and copied into the flags, unused note slots zero, rests
// with a placeholder note. Runs before every insert, delete and save; the flag is not read.
void CleanTGF(EXTGF2005a* frame, bool unused = false);

namespace kit {

struct FreeFrame {
    void operator()(EXTGF2005a* frame) const { SX_FreeTGF(frame); }
};

// A frame from its load to its free; null when the host has no such frame.
using LoadedFrame = std::unique_ptr<EXTGF2005a, FreeFrame>;

inline LoadedFrame loadFrame(std::uint16_t staffList, short slot, short measure, short layer) {
    return LoadedFrame(SX_LoadTGF(staffList, slot, measure, layer, 0));
}

}  // namespace kit
