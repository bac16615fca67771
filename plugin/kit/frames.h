// Frames of entries: the cleaning pass and the lifetime of a loaded frame.
#pragma once

#include "kit/host_api.h"

// Whether cleaning gives an entry without notes a placeholder note.
extern bool CanAddNoteRecordToRests;

// Makes a frame fit for the host: note ids unique and copied into the flags, unused note slots zero, rests
// with a placeholder note. Runs before every insert, delete and save; the flag is not read.
void CleanTGF(EXTGF2005a* frame, bool unused = false);

namespace kit {

// A frame from its load to its free. Tests false when the host has no such frame.
class LoadedFrame {
  public:
    LoadedFrame(std::uint16_t staffList, short slot, short measure, short layer)
        : frame_(SX_LoadTGF(staffList, slot, measure, layer, 0)) {}
    ~LoadedFrame() {
        if (frame_) SX_FreeTGF(frame_);
    }
    LoadedFrame(const LoadedFrame&) = delete;
    LoadedFrame& operator=(const LoadedFrame&) = delete;

    explicit operator bool() const { return frame_ != nullptr; }
    EXTGF2005a* operator->() const { return frame_; }
    EXTGF2005a& operator*() const { return *frame_; }

  private:
    EXTGF2005a* frame_;
};

}  // namespace kit
