// Walks the changed frames and collects the edits of their notes.
#include "musicxml/score_writer.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/entry_state.h"
#include "musicxml/journal.h"
#include "musicxml/key_edits.h"
#include "musicxml/measure_layout.h"
#include "musicxml/measure_rewriter.h"
#include "musicxml/note_edits.h"
#include "musicxml/shape_edits.h"
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
    std::uint32_t offsetOf(const engine::PackedEntries& entries) const;
    bool hadEntries(const FrameAddress& address);
    bool hasSameEntries(const FrameAddress& address);
    bool gainsTies(const FrameAddress& address);
    bool hasSameNotes(const engine::StoredEntry& entry, const EntrySource& source) const;
    bool isAlone(const FrameAddress& address) const;
    const Clef& clefAt(const FrameAddress& address, std::int32_t position) const;
    [[nodiscard]] PartMeasure partMeasure(const FrameAddress& address) const;
    bool writeFrame(const FrameAddress& address);
    bool writeMoved(const FrameAddress& address);
    bool refuseMoved(const FrameAddress& address);
    bool refuseOctave(std::uint32_t offset);
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
    std::vector<FrameAddress> sourceFrames_;  // that have entries in the text, in order
    std::vector<bool> written_;  // entries whose pitches are in the edits, where measures are written anew
};

bool comesBefore(const FrameAddress& left, const FrameAddress& right) {
    return std::tuple(+left.staff, +left.measure, +left.layer) <
           std::tuple(+right.staff, +right.measure, +right.layer);
}

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

bool ScoreWriter::hadEntries(const FrameAddress& address) {
    if (sourceFrames_.empty()) {
        for (const EntrySource& source : sources_.entries) {
            if (source.endsFrame) sourceFrames_.push_back(source.address);
        }
        std::sort(sourceFrames_.begin(), sourceFrames_.end(), comesBefore);
    }
    return std::binary_search(sourceFrames_.begin(), sourceFrames_.end(), address, comesBefore);
}

// Whether a frame has the entries that the text has there: the same ones in the
// same order and time.
bool ScoreWriter::hasSameEntries(const FrameAddress& address) {
    const engine::PackedEntries& entries = document_.entries(address);
    if (entries.empty()) {
        return !hadEntries(address);
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

// Whether a note of a frame has a tie that its text lacks, as when the ties around it have turned round.
bool ScoreWriter::gainsTies(const FrameAddress& address) {
    const engine::PackedEntries& entries = document_.entries(address);
    if (!entries.mayHaveNoteFlags(NOTE_TIES)) return false;
    for (const engine::StoredEntry& entry : entries) {
        for (const ENOTE& note : notesOf(entry)) {
            if ((note.noteFlags & NOTE_TIES) == 0) continue;
            scanNote(walk_, sources_.notes[sourceOf(entry)->firstNote + note.noteId - 1U], note_);
            std::uint32_t written = 0;
            for (const TieElement& tie : note_.ties) written |= tie.flag;
            if ((note.noteFlags & NOTE_TIES & ~written) != 0) return true;
        }
    }
    return false;
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
        if (!change.possible) return refuseOctave(offset);
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

// Whether the notes have the pitches and accidentals that the text has.
bool looksTheSame(const engine::StoredEntry& entry, const EntrySource& source,
                  const engine::KeySignature& key) {
    std::uint32_t look = 0;
    for (const ENOTE& note : notesOf(entry)) look += lookOf(key.spell(note), note);
    return look == source.look;
}

// The pitches of entries that stand elsewhere or otherwise than in the text; their measures are written anew.
bool ScoreWriter::writeMoved(const FrameAddress& address) {
    journal_.setMeasure(document_.measure(address.measure).label);
    const engine::KeySignature& key = document_.staffMeasure(address.staff, address.measure).key;
    for (const engine::StoredEntry& entry : document_.entries(address)) {
        const std::uint32_t origin = document_.originOf(entry.entryNumber);
        if (origin > sources_.entries.size() || written_[origin - 1]) continue;
        written_[origin - 1] = true;
        const EntrySource& source = sources_.entries[origin - 1];
        if (source.isGap) continue;
        if (!hasSameNotes(entry, source)) return refuseMoved(address);
        if (looksTheSame(entry, source, key)) continue;
        for (const ENOTE& note : notesOf(entry)) {
            const std::uint32_t offset = sources_.notes[source.firstNote + note.noteId - 1U];
            scanNote(walk_, offset, note_);
            // Ties are written with the measure.
            ENOTE untied = note;
            untied.noteFlags |= NOTE_TIES;
            const NoteChange change =
                editNote(note_, untied, key.spell(note), engine::entryState(entry).unpitched != 0, edits_);
            if (!change.possible) return refuseOctave(offset);
        }
    }
    edits_.settleNew();
    return true;
}

bool ScoreWriter::refuseMoved(const FrameAddress& address) {
    journal_.fail("notes were added to chords or taken from them, which cannot be written",
                  offsetOf(document_.entries(address)), "Choose another transformation.");
    return false;
}

bool ScoreWriter::refuseOctave(std::uint32_t offset) {
    journal_.fail(
        "a note would leave the octaves 0 to 9, which is all that "
        "the file format has",
        offset, "Choose a smaller interval or a nearer axis.");
    return false;
}

PartMeasure ScoreWriter::partMeasure(const FrameAddress& address) const {
    const auto behind =
        std::upper_bound(sources_.parts.begin(), sources_.parts.end(), address.staff,
                         [](short staff, const PartSource& part) { return staff < part.firstStaff; });
    return {static_cast<std::size_t>(behind - sources_.parts.begin()) - 1, address.measure};
}

bool ScoreWriter::writeFrame(const FrameAddress& address) {
    journal_.setMeasure(document_.measure(address.measure).label);
    const engine::PackedEntries& entries = document_.entries(address);
    const bool alone = isAlone(address);
    stems_.clear();
    for (const engine::StoredEntry& entry : entries) {
        if (!writeEntry(entry, address, alone)) return false;
    }
    stems_.apply();
    edits_.settleNew();
    return true;
}

// Where a frame's first note or rest stands in the text; 0 when it has none there.
std::uint32_t ScoreWriter::offsetOf(const engine::PackedEntries& entries) const {
    for (const engine::StoredEntry& entry : entries) {
        const EntrySource* const source = sourceOf(entry);
        if (source != nullptr && !source->isGap) return sources_.notes[source->firstNote];
    }
    return 0;
}

// Goes through the frames as they stand in the text.
bool ScoreWriter::write() {
    std::vector<std::pair<std::uint32_t, FrameAddress>> frames;
    for (const FrameAddress& address : document_.changedFrames()) {
        frames.emplace_back(offsetOf(document_.entries(address)), address);
    }
    std::sort(frames.begin(), frames.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    std::set<PartMeasure> anew;
    for (const auto& [offset, address] : frames) {
        if (!hasSameEntries(address)) anew.insert(partMeasure(address));
    }
    if (!anew.empty()) {
        written_.resize(sources_.entries.size());
        for (const auto& [offset, address] : frames) {
            const PartMeasure measure = partMeasure(address);
            if (!anew.contains(measure) && gainsTies(address)) anew.insert(measure);
        }
    }
    for (const auto& [offset, address] : frames) {
        const bool done = anew.contains(partMeasure(address)) ? writeMoved(address) : writeFrame(address);
        if (!done) return false;
    }
    const bool measuresChanged = !document_.changedMeasures().empty();
    if (anew.empty() && !document_.recordsChanged() && !measuresChanged) return true;
    edits_.settleAll();
    if (document_.recordsChanged() && !editShapes(sources_, document_, journal_, edits_)) return false;
    if (measuresChanged) {
        if (!editKeys(sources_, document_, journal_, edits_)) return false;
        editLayouts(sources_, document_, edits_);
    }
    if (anew.empty()) return true;
    edits_.settleAll();
    return rewriteMeasures(anew, sources_, document_, journal_, edits_);
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
