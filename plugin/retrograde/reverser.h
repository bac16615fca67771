// Reverses the order of the entries of one staff slot and layer over the measures of a region.
#pragma once

#include <vector>

#include "kit/frames.h"

// Ties that started at the entry's notes end there, and the other way round.
void ReverseTieFlags(EXENTRY* entry);

// Reverses step by step: while NextEntry() says that there is a pair, ReverseEntries() exchanges it. The
// entries of the region count as one list across barlines, so measures may end over- or underfilled.
//
// A measure without entries gets a whole-measure rest that takes part. All frames are held from construction
// on and saved at the end, however far the reversal came. When one does not load, or when the region ends
// before it starts, the object has failed: it offers no pair.
class Reverser {
  public:
    Reverser(const EREGION* region, short slot, short layer);
    ~Reverser();
    Reverser(const Reverser&) = delete;
    Reverser& operator=(const Reverser&) = delete;

    // Moves on to the next pair, from the outside inward; zero when there is none left.
    short NextEntry();
    // Exchanges the two entries of the pair, ties reversed.
    void ReverseEntries();

    [[nodiscard]] bool failed() const { return failed_; }

  private:
    // A place in the list of entries: index inside the frame of a measure.
    struct Cursor {
        int measure = 0;
        int index = 0;
    };

    void loadFrames();
    void fillEmptyMeasure(EXTGF2005a& frame, short measure) const;
    void placeCursors();
    void advanceFront();
    bool stepBack();
    [[nodiscard]] kit::LoadedFrame& frameOf(int measure);
    [[nodiscard]] int entryCount(int measure);
    [[nodiscard]] EXENTRY& entryAt(const Cursor& cursor);

    Cursor front_;
    Cursor back_;
    EREGION region_;
    short slot_;
    short layer_;
    bool failed_ = false;
    std::vector<kit::LoadedFrame> frames_;  // by measure from the region's first; may be null
};
