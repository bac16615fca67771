// Reversal of the entries of one layer, pair by pair.
#include "retrograde/reverser.h"

#include <algorithm>
#include <utility>

void ReverseTieFlags(EXENTRY* entry) {
    const int count = std::min<int>(entry->noteCount, kMaxNotes);
    for (int i = 0; i < count; ++i) {
        ENOTE& note = entry->notes[i];
        const std::uint32_t old = note.noteFlags;
        note.noteFlags = old & ~NOTE_TIES;
        if (old & NOTE_TIE_START) note.noteFlags |= NOTE_TIE_END;
        if (old & NOTE_TIE_END) note.noteFlags |= NOTE_TIE_START;
    }
}

Reverser::Reverser(const EREGION* region, short slot, short layer)
    : region_(*region), slot_(slot), layer_(layer) {
    front_.measure = region_.start.measure;
    back_.measure = region_.end.measure;
    loadFrames();
    if (!failed_) placeCursors();
}

Reverser::~Reverser() {
    for (kit::LoadedFrame& frame : frames_) {
        if (frame) SX_SaveTGF(frame.get());
        frame.reset();
    }
}

void Reverser::loadFrames() {
    const int measures = back_.measure - front_.measure + 1;
    if (measures < 1) {
        failed_ = true;
        return;
    }
    frames_.resize(static_cast<std::size_t>(measures));
    for (int m = front_.measure; m <= back_.measure; ++m) {
        const auto measure = static_cast<short>(m);
        kit::LoadedFrame& frame = frameOf(m);
        frame = kit::loadFrame(region_.start.staffList, slot_, measure, layer_);
        if (!frame) {
            failed_ = true;
            return;
        }
        if (frame->entryCount < 1) fillEmptyMeasure(*frame, measure);
    }
}

void Reverser::fillEmptyMeasure(EXTGF2005a& frame, short measure) const {
    if (!SX_InsertEXENTRY(&frame, 0, 1)) return;
    EXENTRY& rest = frame.entries[0];
    rest.duration = SX_GetMeasureDuration(SX_SlotToInst(slot_, region_.start.staffList), measure);
    rest.entryFlags = ENTRY_VALID | ENTRY_RESTFLAG;
}

// Both cursors start one step outside the selected entries.
void Reverser::placeCursors() {
    const int last = entryCount(front_.measure) - 1;
    front_.index = -1;
    while (front_.index < last &&
           entryAt({front_.measure, front_.index + 1}).elapsed < region_.start.position) {
        ++front_.index;
    }
    back_.index = entryCount(back_.measure);
    while (back_.index > 0 && entryAt({back_.measure, back_.index - 1}).elapsed > region_.end.position) {
        --back_.index;
    }
}

short Reverser::NextEntry() {
    if (failed_) return 0;
    advanceFront();
    if (!stepBack()) return 0;
    return std::pair(front_.measure, front_.index) < std::pair(back_.measure, back_.index);
}

// A measure that could not be filled has nothing to exchange and is passed over, here and on the way back.
void Reverser::advanceFront() {
    if (front_.index < entryCount(front_.measure) - 1) {
        ++front_.index;
        return;
    }
    front_.index = 0;
    do {
        ++front_.measure;
    } while (front_.measure < back_.measure && entryCount(front_.measure) == 0);
}

// False when there is no entry before this one.
bool Reverser::stepBack() {
    if (back_.index > 0) {
        --back_.index;
        return true;
    }
    do {
        --back_.measure;
        if (back_.measure < region_.start.measure) return false;
    } while (entryCount(back_.measure) == 0);
    back_.index = entryCount(back_.measure) - 1;
    return true;
}

void Reverser::ReverseEntries() {
    EXENTRY& front = entryAt(front_);
    EXENTRY& back = entryAt(back_);
    std::swap(front, back);
    ReverseTieFlags(&front);
    ReverseTieFlags(&back);
}

kit::LoadedFrame& Reverser::frameOf(int measure) {
    return frames_[static_cast<std::size_t>(measure - region_.start.measure)];
}

int Reverser::entryCount(int measure) {
    return measure > region_.end.measure ? 0 : frameOf(measure)->entryCount;
}

EXENTRY& Reverser::entryAt(const Cursor& cursor) {
    return frameOf(cursor.measure)->entries[cursor.index];
}
