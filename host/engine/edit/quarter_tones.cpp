// Walks the selection for notes between the semitones.
#include "engine/edit/quarter_tones.h"

#include <algorithm>
#include <utility>

#include "engine/edit/consequences.h"
#include "engine/model/note_state.h"

namespace rovescio::engine {

namespace {

constexpr int kSemitone = 100;

bool isInside(const EREGION& region, short measure, std::int32_t elapsed) {
    return (measure > region.start.measure || elapsed >= region.start.position) &&
           (measure < region.end.measure || elapsed <= region.end.position);
}

bool settle(const KeySignature& key, ENOTE& note, Fractions fractions) {
    const int cents = centsOf(note);
    if (fractions == Fractions::mirrored) {
        if (cents == 0) return false;
        --note.alteration;
        setCents(note, kSemitone - cents);
        return true;
    }
    const int inKey = key.letterCents(floorMod(key.spell(note).step, 7));
    if (note.alteration != 0 || cents == inKey) return false;
    setCents(note, inKey);
    return true;
}

void settleFrame(const Document& document, Consequences& consequences, const QuarterTones& quarterTones,
                 const FrameAddress& address) {
    const Fractions become = quarterTones.change.become;
    const KeySignature& key = document.staffMeasure(address.staff, address.measure).key;
    const auto isWanted = [&](const StoredEntry& entry) {
        return isInside(*quarterTones.region, address.measure, entry.elapsed) &&
               entryState(entry).unpitched == 0 &&
               std::ranges::any_of(entry.notes(), [&](ENOTE note) { return settle(key, note, become); });
    };
    // An inversion marks every frame that it works on.
    if (become == Fractions::mirrored && !consequences.wasMarked(address)) return;
    if (std::ranges::none_of(document.entries(address), isWanted)) return;
    for (StoredEntry& entry : consequences.edits().editable(address)) {
        if (!isWanted(entry)) continue;
        for (ENOTE& note : entry.notes()) settle(key, note, become);
        std::ranges::stable_sort(entry.notes(), isLower);
        // Signs that were taken away come back only where they are needed.
        entry.reserved13 |= become == Fractions::dropped ? kCheckAccidentals : kDecideAccidentals;
    }
}

}  // namespace

void settleQuarterTones(const Document& document, Consequences& consequences,
                        const QuarterTones& quarterTones) {
    const Fractions become = quarterTones.change.become;
    if (become == Fractions::kept || !quarterTones.region) return;
    const EREGION& region = *quarterTones.region;
    for (const short staff :
         numbers(std::max<short>(region.start.slot, 1), std::min(region.end.slot, document.staffCount()))) {
        for (const short measure : numbers(std::max<short>(region.start.measure, 1),
                                           std::min(region.end.measure, document.measureCount()))) {
            // An inversion leaves other keys alone.
            const bool reached =
                become == Fractions::dropped || document.staffMeasure(staff, measure).key.isStandard();
            for (short layer = 0; reached && layer < kMaxLayers; ++layer) {
                if (quarterTones.layers[static_cast<std::size_t>(layer)])
                    settleFrame(document, consequences, quarterTones, {staff, measure, layer});
            }
        }
    }
}

}  // namespace rovescio::engine
