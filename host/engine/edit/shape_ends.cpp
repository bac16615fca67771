// Deletes entry marks whose entry is gone.
#include "engine/edit/shape_ends.h"

#include <set>

namespace rovescio::engine {

void dropMarksOfDeleted(const Document& document, MassEdits& edits, std::span<const FrameAddress> frames) {
    if (!document.hasShapes()) return;
    std::set<std::uint32_t> gone;
    for (const FrameAddress& address : frames) {
        for (const StoredEntry& entry : edits.before(address)) {
            if (document.hasShapes(entry.entryNumber)) gone.insert(+entry.entryNumber);
        }
    }
    // An entry may have moved to another frame.
    for (const FrameAddress& address : frames) {
        for (const StoredEntry& entry : document.entries(address)) gone.erase(+entry.entryNumber);
    }
    for (const std::uint32_t number : gone) edits.changeRecords({kEntryMarkTag, number, 0}, {});
}

}  // namespace rovescio::engine
