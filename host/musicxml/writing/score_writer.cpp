// Walks the changed frames and edits their notes.
#include "musicxml/writing/score_writer.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/model/entry_state.h"
#include "musicxml/file/journal.h"
#include "musicxml/reading/measure_layout.h"
#include "musicxml/writing/key_edits.h"
#include "musicxml/writing/measure_rewriter.h"
#include "musicxml/writing/note_edits.h"
#include "musicxml/writing/note_parts.h"
#include "musicxml/writing/shape_edits.h"
#include "musicxml/writing/stem_edits.h"

namespace rovescio::musicxml {

namespace {

using engine::FrameAddress;

class ScoreWriter {
  public:
    ScoreWriter(const SourceMap& sources, const engine::Document& document, Journal& journal,
                xml::Edits& edits)
        : sources_(sources),
          document_(document),
          journal_(journal),
          edits_(edits),
          scan_(edits),
          stems_(edits) {}

    bool write();

  private:
    const EntrySource* sourceOf(const engine::StoredEntry& entry) const;
    bool hadEntries(const FrameAddress& address);
    bool hasSameEntries(const FrameAddress& address);
    bool hasSameNotes(const engine::StoredEntry& entry, const EntrySource& source) const;
    bool checkNotes(const FrameAddress& address);
    bool isAlone(const FrameAddress& address) const;
    [[nodiscard]] PartMeasure partMeasure(const FrameAddress& address) const;
    bool writeFrame(const FrameAddress& address);
    bool writeEntry(const engine::StoredEntry& entry, const FrameAddress& address, bool alone);
    void noteMove(const FrameAddress& address);

    const SourceMap& sources_;
    const engine::Document& document_;
    Journal& journal_;
    xml::Edits& edits_;
    NoteScan scan_;
    StemEdits stems_;
    std::vector<FrameAddress> sourceFrames_;  // that have entries in the file, in order
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

// Whether the notes of a frame's entries are those that the file has, wherever they stand now.
bool ScoreWriter::checkNotes(const FrameAddress& address) {
    for (const engine::StoredEntry& entry : document_.entries(address)) {
        const std::uint32_t origin = document_.originOf(entry.entryNumber);
        if (origin > sources_.entries.size()) continue;
        const EntrySource& source = sources_.entries[origin - 1];
        if (source.isGap || hasSameNotes(entry, source)) continue;
        journal_.setMeasure(document_.measure(address.measure).label);
        journal_.fail("notes were added to chords or taken from them, which cannot be written",
                      edits_.place(sources_.notes[source.firstNote]), "Choose another transformation.");
        return false;
    }
    return true;
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
                    edits_.place(mark->node));
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
    if (hasStem) stems_.beginChord(clefAt(sources_, address, entry.elapsed), alone && !source.sharesStem);
    for (std::size_t i = 0; i < notes.size(); ++i) {
        const xml::Node node = sources_.notes[source.firstNote + i];
        const NoteParts& parts = scan_.of(node);
        const NoteChange change =
            editPitch(edits_, parts, *byId[i], key.spell(*byId[i]), state.unpitched != 0);
        editTies(edits_, parts, byId[i]->noteFlags);
        if (!change.possible) return refuseOctave(journal_, edits_.place(node));
        if (hasStem) {
            stems_.addNote(parts, change.oldStep, change.newStep, change.moved);
        } else if (change.moved && parts.stem != 0) {
            edits_.removeAttribute(parts.stem, "default-y");
        }
        if (!change.moved) continue;
        noteMove(address);
        if (parts.tablature) {
            journal_.notice("tablature", "string and fret numbers stay as they are where notes changed",
                            edits_.place(node));
        }
    }
    return true;
}

PartMeasure ScoreWriter::partMeasure(const FrameAddress& address) const {
    const auto behind =
        std::upper_bound(sources_.parts.begin(), sources_.parts.end(), address.staff,
                         [](short staff, const PartSource& part) { return staff < part.firstStaff; });
    return {static_cast<std::size_t>(behind - sources_.parts.begin()) - 1, address.measure};
}

bool ScoreWriter::writeFrame(const FrameAddress& address) {
    journal_.setMeasure(document_.measure(address.measure).label);
    const bool alone = isAlone(address);
    stems_.clear();
    for (const engine::StoredEntry& entry : document_.entries(address)) {
        if (!writeEntry(entry, address, alone)) return false;
    }
    stems_.apply();
    return true;
}

bool ScoreWriter::write() {
    const std::vector<FrameAddress> frames = document_.changedFrames();
    std::set<PartMeasure> anew;
    for (const FrameAddress& address : frames) {
        if (!hasSameEntries(address)) anew.insert(partMeasure(address));
    }
    for (const FrameAddress& address : frames) {
        const bool isAnew = anew.contains(partMeasure(address));
        if (!(isAnew ? checkNotes(address) : writeFrame(address))) return false;
    }
    if (document_.recordsChanged() && !editShapes(sources_, document_, journal_, edits_)) return false;
    if (!document_.changedMeasures().empty()) {
        if (!editKeys(sources_, document_, journal_, edits_)) return false;
        editLayouts(sources_, document_, edits_);
    }
    return rewriteMeasures(anew, sources_, document_, journal_, edits_);
}

}  // namespace

engine::Result<ScoreEdits> editScore(const xml::Tree& tree, const SourceMap& sources,
                                     const engine::Document& document, const std::string& file) {
    Journal journal(tree.source(), file);
    xml::Edits edits(tree);
    if (!ScoreWriter(sources, document, journal, edits).write()) return journal.problem();
    return ScoreEdits{std::move(edits), std::move(journal.notices())};
}

}  // namespace rovescio::musicxml
