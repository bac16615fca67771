// Puts one measure together from the events of its voices and everything else in it.
#pragma once

#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "engine/edit/pour.h"
#include "engine/model/note_values.h"
#include "engine/model/packed_entries.h"
#include "musicxml/file/journal.h"
#include "musicxml/reading/source_map.h"
#include "musicxml/writing/group_mending.h"
#include "musicxml/writing/measure_contents.h"
#include "musicxml/writing/note_edits.h"
#include "musicxml/writing/note_placing.h"

namespace rovescio::musicxml {

// One chord, note, rest or gap of a layer.
struct Event {
    const engine::StoredEntry* entry = nullptr;
    const EntrySource* source = nullptr;  // null for an entry that no file has
    std::span<const xml::Node> notes;     // its own, by note id; none for a gap and for what no file has
    engine::Fraction start;               // duration units from the start of the measure
    engine::Fraction length;
    int staff = 0;           // within the part, from 0
    std::size_t line = 0;    // its line in the measure
    bool continues = false;  // is a later part of a note that was cut
    bool continued = false;
    bool reversed = false;    // the order around it is reversed
    std::size_t changes = 0;  // of its notes: the first one of the measure's
    GroupMember member;
};

// A layer's first or second voice in the measure.
struct Line {
    int staff = 0;  // within the part, from 0
    short layer = 0;
    bool second = false;
    std::vector<Event> events = {};
    std::string voice = {};
    bool asBefore = false;  // all its notes are where they were
};

using Lines = std::vector<Line>;

// The label that each line had last; by staff, layer and whether it is the second voice.
using VoiceLabels = std::map<std::tuple<int, short, bool>, std::string>;

// What the measures of a part have in common while they are put together.
struct PartWriting {
    const SourceMap& sources;
    xml::Edits& edits;
    NoteScan& scan;
    Journal& journal;
    bool severalStaves = false;
    VoiceLabels labels = {};
};

// Where a measure is put together.
struct MeasureSite {
    xml::Node node = 0;
    short measure = 0;
    short firstStaff = 0;  // of the part
    engine::Metre metre;
    std::vector<const engine::KeySignature*> keys;  // at its start, by staff within the part
    std::string cutPrefix;  // of the ids of ties that join cut notes; another one in each measure
};

class MeasureComposer {
  public:
    MeasureComposer(PartWriting& part, const MeasureSite& site, const MeasureContents& contents,
                    Lines& lines);

    // Divisions of a quarter in the file: in force before the measure as it is written now, in the measure as
    // it was, and whether the latter must be in force again after it.
    struct Divisions {
        Decimal before;
        Decimal own;
        bool restore = false;
    };
    // False, with the problem in the journal, when something cannot be written there.
    bool compose(const Divisions& divisions);
    [[nodiscard]] Decimal divisionsAtEnd() const { return {divisions_, 1}; }

  private:
    // Lines that follow one another without overlapping share a voice.
    struct Stream {
        std::string voice;
        std::vector<Event*> events;  // in order; gaps left out
        std::size_t line = 0;        // the first one
    };
    void formStreams();
    void formStream(std::size_t line, std::set<std::string>& used);
    void labelLine(Line& line);
    bool join(Stream& stream, Line& line);
    void mend(Stream& stream);
    void chooseDivisions(const Divisions& divisions);
    [[nodiscard]] std::string units(const engine::Fraction& length) const;
    [[nodiscard]] bool isInOwnDivisions() const {
        return ownDivisions_.scale == 1 && ownDivisions_.value == divisions_;
    }
    void emit(std::string_view text) { list_.push_back(part_.edits.make(text)); }
    void emitItem(std::size_t index);
    void declareDivisions(std::int64_t before);
    void rescale(xml::Node item);
    void moveTo(const engine::Fraction& time);
    bool emitStream(std::size_t index);
    bool emitEvent(Event& event, const Stream& stream, bool chord);
    bool emitNote(const Event& event, std::size_t index, NoteShape& shape);
    void turnStems();
    bool keepOwnDuration(xml::Node note, NoteShape& shape, const Event& event);
    [[nodiscard]] NoteShape shapeOf(const Event& event, const Stream& stream) const;
    [[nodiscard]] std::size_t streamOf(const engine::Fraction& time) const;
    void emitItemsUntil(const engine::Fraction& time, std::size_t stream);

    PartWriting& part_;
    const MeasureSite& site_;
    const MeasureContents& contents_;
    Lines& lines_;
    int cuts_ = 0;
    std::vector<Stream> streams_;
    std::vector<bool> emitted_;  // of the items
    std::size_t backups_ = 0;    // steps of the measure that have been used again
    std::size_t forwards_ = 0;
    std::int64_t divisions_ = 1;
    Decimal ownDivisions_;
    engine::Fraction cursor_;
    std::vector<xml::Node> list_;
    std::vector<NoteChange> changes_;  // of all notes, event by event
};

}  // namespace rovescio::musicxml
