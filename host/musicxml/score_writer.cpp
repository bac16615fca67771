// Walks the changed frames and collects the edits of their notes.
#include "musicxml/score_writer.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/entry_state.h"
#include "musicxml/journal.h"
#include "musicxml/note_edits.h"
#include "musicxml/stem_edits.h"

namespace rovescio::musicxml {

namespace {

using engine::FrameAddress;

class ScoreWriter {
  public:
    ScoreWriter(const std::string& text, const SourceMap& sources, const engine::Document& document,
                Journal& journal)
        : sources_(sources),
          document_(document),
          journal_(journal),
          walk_(text),
          edits_(text),
          stems_(edits_) {}

    bool write();
    TextEdits take() {
        edits_.settleAll();
        return std::move(edits_);
    }

  private:
    const EntrySource* sourceOf(const engine::StoredEntry& entry) const;
    bool hasSameEntries(const FrameAddress& address) const;
    bool hasSameNotes(const engine::StoredEntry& entry, const EntrySource& source) const;
    bool isAlone(const FrameAddress& address) const;
    const Clef& clefAt(const FrameAddress& address, std::int32_t position) const;
    bool writeFrame(const FrameAddress& address);
    bool writeEntry(const engine::StoredEntry& entry, const FrameAddress& address, bool alone);
    void noteMove(const FrameAddress& address);

    const SourceMap& sources_;
    const engine::Document& document_;
    Journal& journal_;
    TextWalk walk_;
    TextEdits edits_;
    StemEdits stems_;
    NoteText note_;
    Clef treble_;
};

// Notes of an entry; a rest may carry a placeholder.
std::span<const ENOTE> notesOf(const engine::StoredEntry& entry) {
    const bool isRest = (entry.entryFlags & ENTRY_NOTE) == 0 ||
                        (entry.noteCount == 1 && (entry.notes()[0].noteFlags & NOTE_PLACEHOLDER) != 0);
    return entry.notes().first(isRest ? 0 : static_cast<std::size_t>(entry.noteCount));
}

const EntrySource* ScoreWriter::sourceOf(const engine::StoredEntry& entry) const {
    const std::size_t index = std::size_t{entry.entryNumber} - 1;
    return index < sources_.entries.size() ? &sources_.entries[index] : nullptr;
}

bool ScoreWriter::hasSameNotes(const engine::StoredEntry& entry, const EntrySource& source) const {
    const std::span<const ENOTE> notes = notesOf(entry);
    if (notes.size() != source.noteCount) return false;
    std::array<bool, kMaxNotes> seen{};
    for (const ENOTE& note : notes) {
        const std::size_t index = std::size_t{note.noteId} - 1;
        if (index >= notes.size() || seen[index]) return false;
        seen[index] = true;
    }
    return true;
}

// Whether a frame has the entries that the text has there: the same ones in the
// same order and time.
bool ScoreWriter::hasSameEntries(const FrameAddress& address) const {
    const engine::PackedEntries& entries = document_.entries(address);
    if (entries.empty()) {
        return std::none_of(sources_.entries.begin(), sources_.entries.end(),
                            [&](const EntrySource& source) { return source.address == address; });
    }
    // Entries of a frame are numbered without gaps, so the first and last tell
    // whether it is whole.
    const std::uint32_t first = entries[0].entryNumber;
    if (first >= 2 && first - 2 < sources_.entries.size() && !sources_.entries[first - 2].endsFrame) {
        return false;
    }
    std::uint32_t number = first;
    for (const engine::StoredEntry& entry : entries) {
        const EntrySource* const source = sourceOf(entry);
        if (source == nullptr || entry.entryNumber != number++ || !(source->address == address) ||
            entry.duration != source->duration || entry.elapsed != source->elapsed ||
            !hasSameNotes(entry, *source)) {
            return false;
        }
    }
    return sources_.entries[number - 2].endsFrame;
}

// Whether the frame's voice has its staff for itself in the measure.
bool ScoreWriter::isAlone(const FrameAddress& address) const {
    FrameAddress other = address;
    for (other.layer = 0; other.layer < engine::kMaxLayers; ++other.layer) {
        if (other.layer != address.layer && !document_.entries(other).empty()) return false;
    }
    const engine::PackedEntries& entries = document_.entries(address);
    return std::none_of(entries.begin(), entries.end(), [](const engine::StoredEntry& entry) {
        return (entry.entryFlags & ENTRY_VOICE2) != 0;
    });
}

const Clef& ScoreWriter::clefAt(const FrameAddress& address, std::int32_t position) const {
    const auto wanted = std::tuple(address.staff, address.measure, position);
    const auto after = std::upper_bound(
        sources_.clefs.begin(), sources_.clefs.end(), wanted, [](const auto& place, const ClefMark& mark) {
            return place < std::tuple(mark.staff, mark.measure, mark.position);
        });
    if (after == sources_.clefs.begin() || std::prev(after)->staff != address.staff) return treble_;
    return std::prev(after)->clef;
}

// Chord symbols and figures are not transformed with the notes, which the user
// should know.
void ScoreWriter::noteMove(const FrameAddress& address) {
    const auto mark =
        std::lower_bound(sources_.harmony.begin(), sources_.harmony.end(), address,
                         [](const HarmonyMark& left, const FrameAddress& right) {
                             return left.lastStaff < right.staff ||
                                    (left.firstStaff <= right.staff && left.measure < right.measure);
                         });
    if (mark == sources_.harmony.end() || mark->firstStaff > address.staff ||
        mark->measure != address.measure) {
        return;
    }
    journal_.notice("harmony", "chord symbols and figured bass stay as they are where notes changed",
                    mark->offset);
}

bool ScoreWriter::writeEntry(const engine::StoredEntry& entry, const FrameAddress& address, bool alone) {
    const std::span<const ENOTE> notes = notesOf(entry);
    if (notes.empty()) return true;
    const EntrySource& source = *sourceOf(entry);
    std::array<const ENOTE*, kMaxNotes> byId{};
    for (const ENOTE& note : notes) byId[std::size_t{note.noteId} - 1] = &note;

    const engine::EntryState state = engine::entryState(entry);
    const bool grace = state.grace != engine::Grace::none;
    const engine::KeySignature& key = document_.staffMeasure(address.staff, address.measure).key;
    // Grace notes have stems by a rule of their own and stand outside of the
    // beams around them.
    const bool hasStem = !grace && !state.unpitched;
    if (hasStem) stems_.beginChord(clefAt(address, entry.elapsed), alone && !source.sharesStem);
    for (std::size_t i = 0; i < notes.size(); ++i) {
        const std::uint32_t offset = sources_.notes[source.firstNote + i];
        scanNote(walk_, offset, note_);
        const NoteChange change =
            editNote(note_, *byId[i], key.spell(*byId[i]), state.unpitched != 0, edits_);
        if (!change.possible) {
            journal_.fail(
                "a note would leave the octaves 0 to 9, which is all that "
                "the file format has",
                offset, "Choose a smaller interval or a nearer axis.");
            return false;
        }
        if (change.tiesAdded) {
            journal_.fail("a note has gained a tie that the score lacks", offset,
                          "Choose another transformation: this one cannot be written yet.");
            return false;
        }
        if (hasStem) {
            stems_.addNote(note_, change.oldStep, change.newStep, change.moved);
        } else if (change.moved && note_.stem.exists()) {
            dropStemEnd(note_.stem, edits_);
        }
        if (!change.moved) continue;
        noteMove(address);
        if (note_.tablature) {
            journal_.notice("tablature", "string and fret numbers stay as they are where notes changed",
                            offset);
        }
    }
    return true;
}

bool ScoreWriter::writeFrame(const FrameAddress& address) {
    journal_.setMeasure(document_.measure(address.measure).label);
    const engine::PackedEntries& entries = document_.entries(address);
    if (!hasSameEntries(address)) {
        const EntrySource* const source = entries.empty() ? nullptr : sourceOf(entries[0]);
        journal_.fail(
            "entries were added, removed or changed in time, which "
            "cannot be written yet",
            source == nullptr ? 0 : sources_.notes[source->firstNote],
            "Choose a transformation that changes pitches only.");
        return false;
    }
    const bool alone = isAlone(address);
    stems_.clear();
    for (const engine::StoredEntry& entry : entries) {
        if (!writeEntry(entry, address, alone)) return false;
    }
    stems_.apply();
    edits_.settleNew();
    return true;
}

// Goes through the frames as they stand in the text.
bool ScoreWriter::write() {
    std::vector<std::pair<std::uint32_t, FrameAddress>> frames;
    for (const FrameAddress& address : document_.changedFrames()) {
        const engine::PackedEntries& entries = document_.entries(address);
        const EntrySource* const source = entries.empty() ? nullptr : sourceOf(entries[0]);
        frames.emplace_back(source == nullptr ? 0 : sources_.notes[source->firstNote], address);
    }
    std::sort(frames.begin(), frames.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    return std::all_of(frames.begin(), frames.end(),
                       [&](const auto& frame) { return writeFrame(frame.second); });
}

}  // namespace

engine::Result<ScoreEdits> editScore(const std::string& text, const SourceMap& sources,
                                     const engine::Document& document, const std::string& file) {
    Journal journal(text, file);
    ScoreWriter writer(text, sources, document, journal);
    if (!writer.write()) return journal.problem();
    return ScoreEdits{writer.take(), std::move(journal.notices())};
}

}  // namespace rovescio::musicxml
