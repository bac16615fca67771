// The table of note-flag options and its application.
#include "shell/note_options.h"

#include <array>

#include "kit/region_walk.h"

namespace {

constexpr short kFirstOption = 2;

struct Option {
    std::uint32_t clear;  // note flags taken away first
    std::uint32_t set;    // then set
    bool clearsAlteration;
    bool marksEntry;
};

constexpr std::array<Option, 5> kOptions = {{
    {0, NOTE_FLAG24, false, true},
    {0, NOTE_FLAG24 | NOTE_FLAG1, false, false},
    {NOTE_FLAG24, NOTE_FLAG1, false, false},
    {NOTE_FLAG1, NOTE_FLAG24, false, true},
    {NOTE_FLAG24 | NOTE_FLAG1, 0, true, false},
}};

Option optionNumbered(short option) {
    const auto index = static_cast<std::size_t>(option - kFirstOption);
    return option >= kFirstOption && index < kOptions.size() ? kOptions[index] : Option{};
}

}  // namespace

short DoSUOptions(EREGION* region, short option, short removeTies, CProgress* progress) {
    const Option chosen = optionNumbered(option);
    const auto walk = kit::walkBySlot(*region, *progress, [&](EXENTRY& entry) {
        for (short i = 0; i < entry.noteCount; ++i) {
            ENOTE& note = entry.notes[i];
            note.noteFlags = (note.noteFlags & ~chosen.clear) | chosen.set;
            if (chosen.clearsAlteration) note.alteration = 0;
            if (removeTies) note.noteFlags &= ~NOTE_TIES;
        }
        if (chosen.marksEntry) entry.updateFlags |= ENTRY_CHANGED;
    });
    return walk.changed();
}
