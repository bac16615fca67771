// The frames that a plug-in has loaded: their buffers, and checks of what it does with them.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "contract/records.h"
#include "engine/interface/strictness.h"
#include "engine/model/document.h"

namespace rovescio::engine {

class Consequences;

// Frames are copies of the document's entries; saving copies them back through the open mass edit. Freed
// buffers are filled with a pattern and kept for a while, so that a write after free is noticed.
class LoadedFrames {
  public:
    LoadedFrames(Document& document, Consequences& consequences);

    // Null when the document has no such measure, staff or layer. A frame without entries is loaded empty.
    EXTGF2005a* load(const FrameAddress& address);
    // Insert fresh entries (ENTRY_VALID, numbered) or remove some; false when index or count are out of
    // range.
    bool insert(EXTGF2005a* frame, short index, short count);
    bool remove(EXTGF2005a* frame, short index, short count);
    bool save(EXTGF2005a* frame);
    void free(EXTGF2005a* frame);

    // Frames loaded so far, freed or not.
    [[nodiscard]] std::int64_t loads() const { return loads_; }
    // Reports frames still loaded and writes after free.
    void checkBalanced();

  private:
    struct Frame {
        EXTGF2005a record{};  // first, so that the record's place is the frame's
        FrameAddress address;
        std::vector<EXENTRY> entries;
        bool live = false;
    };
    struct Retired {
        std::vector<EXENTRY> entries;
        FrameAddress address;
    };
    // Frames side by side, twice as many each time; they never move.
    struct Group {
        std::unique_ptr<Frame[]> frames;
        std::size_t count = 0;
    };
    void addFrames();
    // The frame, live or not, that a record belongs to; null for a record that is none of these.
    [[nodiscard]] Frame* frameOf(const EXTGF2005a* record) const;
    // The live frame of a record, or null after reporting what is wrong with it.
    Frame* find(EXTGF2005a* record, const char* call, Rule ifFreed);
    static void show(Frame& frame);
    void retire(std::vector<EXENTRY> entries, const FrameAddress& address);
    static void checkUntouched(const Retired& retired);
    // What saving an entry shows.
    struct Change {
        bool marks = false;  // the plug-in marked it as changed
        bool moves = false;  // a pitch is another one
    };
    static Change normalise(EXENTRY& entry, const StoredEntry* old);

    Document& document_;
    Consequences& consequences_;
    std::vector<Group> groups_;
    std::vector<Frame*> idle_;
    std::deque<Retired> retired_;
    std::int64_t loads_ = 0;
};

}  // namespace rovescio::engine
