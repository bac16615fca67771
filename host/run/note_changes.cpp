// Comparison of notes before and after a run.
#include "run/note_changes.h"

#include <algorithm>

namespace rovescio::run {

namespace {

using engine::Document;
using engine::FrameAddress;
using engine::StoredEntry;

template <class Visit>
void forEachEntry(const Document& document, const Visit& visit) {
    for (const short staff : document.staffNumbers()) {
        for (const short measure : document.measureNumbers()) {
            for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                const FrameAddress address{staff, measure, layer};
                for (const StoredEntry& entry : document.entries(address)) {
                    if ((entry.entryFlags & ENTRY_NOTE) != 0) visit(address, entry);
                }
            }
        }
    }
}

bool isSelected(const Selection& selection, const FrameAddress& address, std::int32_t elapsed) {
    if (!selection.layers[static_cast<std::size_t>(address.layer)]) return false;
    return std::ranges::any_of(selection.regions,
                               [&](const EREGION& region) { return contains(region, address, elapsed); });
}

}  // namespace

NotesBefore::Appearance::Appearance(const ENOTE& note)
    : displacement(note.displacement),
      alteration(note.alteration),
      signs(note.noteFlags & (NOTE_FLAG24 | NOTE_TIES)) {}

NotesBefore::NotesBefore(const Document& document) {
    forEachEntry(document, [&](const FrameAddress&, const StoredEntry& entry) {
        for (const ENOTE& note : entry.notes()) notes_.emplace_back(note.noteId, Appearance(note));
        ends_.push_back(notes_.size());
    });
}

NoteCounts NotesBefore::compare(const Document& document, const Selection& selection, ChangeIn what) const {
    NoteCounts counts;
    std::size_t index = 0;
    forEachEntry(document, [&](const FrameAddress& address, const StoredEntry& entry) {
        if (index >= ends_.size()) {
            counts.sameNotes = false;
            return;
        }
        count(entry, index, isSelected(selection, address, entry.elapsed), what, counts);
        ++index;
    });
    counts.sameNotes = counts.sameNotes && index == ends_.size();
    return counts;
}

void NotesBefore::count(const StoredEntry& entry, std::size_t index, bool selected, ChangeIn what,
                        NoteCounts& counts) const {
    std::size_t known = 0;
    for (const ENOTE& note : entry.notes()) {
        const Appearance now(note);
        const Appearance* before = find(index, note.noteId);
        known += before != nullptr ? 1 : 0;
        const bool moved = before == nullptr || !now.hasPitchOf(*before);
        const bool changed = moved || (what == ChangeIn::pitchAndSigns && now.signs != before->signs);
        counts.selected += selected ? 1 : 0;
        counts.changed += selected && changed ? 1 : 0;
        counts.changedOutside += !selected && moved ? 1 : 0;
    }
    counts.sameNotes = counts.sameNotes && known == ends_[index] - begin(index);
}

// The notes of a chord change places when it is inverted; their numbers stay.
const NotesBefore::Appearance* NotesBefore::find(std::size_t entry, std::uint16_t noteId) const {
    for (std::size_t i = begin(entry); i < ends_[entry]; ++i) {
        if (notes_[i].first == noteId) return &notes_[i].second;
    }
    return nullptr;
}

}  // namespace rovescio::run
