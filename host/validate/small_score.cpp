// The small score and comparisons with it.
#include "validate/small_score.h"

#include <array>
#include <initializer_list>
#include <vector>

namespace rovescio::validate {

namespace {

using engine::Document;
using engine::FrameAddress;
using engine::KeySignature;
using engine::kQuarter;
using engine::SpelledPitch;

constexpr short kStaves = 2;
constexpr short kMeasures = 3;
constexpr short kSecondQuarterMeasure = 1;
constexpr short kThirdQuarterMeasure = 2;
constexpr int kFirstNote = -2;  // step of the lowest note of staff 1

// A quarter note or chord upward from a step, or a rest when there are no alterations.
EXENTRY entryAt(int position, const KeySignature& key, int step, std::initializer_list<int> alters) {
    EXENTRY entry{};
    entry.duration = kQuarter;
    entry.elapsed = position * kQuarter;
    entry.entryFlags = ENTRY_VALID | (alters.size() > 0 ? ENTRY_NOTE : 0);
    for (const int alter : alters) {
        ENOTE& note = entry.notes[entry.noteCount++];
        key.store({step, alter}, note);
        note.noteId = static_cast<std::uint16_t>(entry.noteCount);
        note.noteFlags = static_cast<std::uint32_t>(note.noteId) << 16;
        step += 2;
    }
    return entry;
}

void fill(Document& document, short staff, short measure, const KeySignature& key) {
    document.staffMeasure(staff, measure) = {key, 4 * kQuarter, kQuarter, false};
    // Another place in the scale for each measure and staff, and alterations that no key has, so that a wrong
    // step, key or sign shows somewhere.
    const int step = kFirstNote + 3 * measure - 5 * staff;
    std::array entries = {entryAt(0, key, step, {0}), entryAt(1, key, step, {0, -1, 1}),
                          entryAt(2, key, step + 3, {1}), entryAt(3, key, 0, {})};
    if (measure == kThirdQuarterMeasure) entries[3] = entryAt(3, key, step, {0, 0});
    entries[1].notes[0].noteFlags |= NOTE_TIE_END;
    entries[0].notes[0].noteFlags |= NOTE_TIE_START;
    for (EXENTRY& entry : entries) entry.entryNumber = document.nextEntryNumber();
    document.setEntries({staff, measure, 0}, entries);
}

bool isSelected(short measure, std::int32_t elapsed) {
    const EREGION selection = smallSelection();
    if (measure == selection.start.measure) return elapsed >= selection.start.position;
    return measure == selection.end.measure && elapsed <= selection.end.position;
}

std::vector<FrameAddress> allFrames(const Document& document) {
    std::vector<FrameAddress> frames;
    for (const short staff : document.staffNumbers()) {
        for (const short measure : document.measureNumbers()) {
            for (short layer = 0; layer < engine::kMaxLayers; ++layer)
                frames.push_back({staff, measure, layer});
        }
    }
    return frames;
}

std::string textOf(const SpelledPitch& pitch) {
    std::string text(1, "CDEFGAB"[engine::floorMod(pitch.step, 7)]);
    text.append(static_cast<std::size_t>(std::abs(pitch.alter)), pitch.alter < 0 ? 'b' : '#');
    return text + std::to_string(4 + engine::floorDiv(pitch.step, 7));
}

}  // namespace

Document smallScore() {
    Document document;
    for (short staff = 1; staff <= kStaves; ++staff) document.addStaff({"staff " + std::to_string(staff)});
    for (short measure = 1; measure <= kMeasures; ++measure) document.addMeasure({std::to_string(measure)});
    document.layOut();
    for (short measure = 1; measure <= kMeasures; ++measure) {
        fill(document, 1, measure, KeySignature::standard(1, false));
        fill(document, 2, measure, KeySignature::standard(-3, false));
    }
    return document;
}

EREGION smallSelection() {
    EREGION region{};
    region.start = {0, 1, kSecondQuarterMeasure, kQuarter};
    region.end = {0, kStaves, kThirdQuarterMeasure, 2 * kQuarter};
    return region;
}

std::string contentOf(const Document& document) {
    std::string bytes;
    for (const FrameAddress& address : allFrames(document)) {
        bytes += '|';
        for (const engine::StoredEntry& entry : document.entries(address)) {
            bytes.append(reinterpret_cast<const char*>(&entry), entry.bytes());
        }
    }
    return bytes;
}

std::string firstWrongNote(const Document& before, const Document& after, const Expectation& expected) {
    for (const FrameAddress& address : allFrames(before)) {
        const KeySignature& key = before.staffMeasure(address.staff, address.measure).key;
        const std::string place =
            "staff " + std::to_string(address.staff) + ", measure " + std::to_string(address.measure);
        const engine::PackedEntries& entries = after.entries(address);
        if (entries.size() != before.entries(address).size()) return place + " has gained or lost entries";
        auto now = entries.begin();
        for (const engine::StoredEntry& old : before.entries(address)) {
            const engine::StoredEntry& entry = *now++;
            if (entry.noteCount != old.noteCount) return place + " has gained or lost notes";
            for (std::size_t i = 0; i < old.notes().size(); ++i) {
                const SpelledPitch found = key.spell(entry.notes()[i]);
                const SpelledPitch wanted = isSelected(address.measure, old.elapsed)
                                                ? expected(key, old.notes()[i])
                                                : key.spell(old.notes()[i]);
                if (found != wanted) {
                    return place + ": " + textOf(key.spell(old.notes()[i])) + " became " + textOf(found) +
                           ", not " + textOf(wanted);
                }
            }
        }
    }
    return {};
}

}  // namespace rovescio::validate
