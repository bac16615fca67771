// Composes the text of one measure from the events of its voices and everything else that stands in it.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "engine/note_values.h"
#include "engine/packed_entries.h"
#include "engine/pour.h"
#include "musicxml/group_mending.h"
#include "musicxml/measure_text.h"
#include "musicxml/source_map.h"

namespace rovescio::musicxml {

// One chord, note, rest or gap of a layer.
struct Event {
    const engine::StoredEntry* entry = nullptr;
    const EntrySource* source = nullptr;        // null for an entry that no file has
    std::span<MeasureText::Note* const> notes;  // in the file, by note id; none for a gap
    engine::Fraction start;                     // duration units from the start of the measure
    engine::Fraction length;
    bool continues = false;  // goes on with a note that was cut
    bool continued = false;
    bool mirrored = false;  // the order around it has turned round
    GroupMember member;
};

// A layer's first or second voice in the measure.
struct Line {
    int staff = 0;  // within the part, from 0
    short layer = 0;
    bool second = false;
    std::vector<Event> events = {};
    std::string voice = {};
};

using Lines = std::vector<Line>;

// The label that each line had last; by staff, layer and whether it is the second voice.
using VoiceLabels = std::map<std::tuple<int, short, bool>, std::string>;

class MeasureComposer {
  public:
    MeasureComposer(NoteRewriter& rewriter, const MeasureText& text, Lines& lines, const engine::Metre& metre,
                    bool severalStaves, VoiceLabels& labels, std::string cutPrefix);

    // Divisions of a quarter in the file: in force before the measure as it is written now, in the measure as
    // it was, and whether the latter must be in force again behind it.
    struct Divisions {
        Decimal before;
        Decimal own;
        bool restore = false;
    };
    std::string compose(const Divisions& divisions);
    [[nodiscard]] Decimal divisionsAtEnd() const { return {divisions_, 1}; }

  private:
    // Lines that follow one another without overlapping share a voice.
    struct Stream {
        std::string voice;
        std::vector<Event*> events;  // in order; gaps left out
    };
    void formStreams();
    void labelLine(Line& line);
    bool join(Stream& stream, Line& line);
    void mend(Stream& stream);
    void chooseDivisions(const Divisions& divisions);
    [[nodiscard]] std::string units(const engine::Fraction& length) const;
    void emit(std::string_view text);
    void emitItem(std::size_t index);
    void declareDivisions(std::int64_t before);
    void moveTo(const engine::Fraction& time);
    void emitStream(std::size_t index);
    void emitEvent(const Event& event, const Stream& stream, bool chord);
    [[nodiscard]] NoteShape shapeOf(const Event& event, const Stream& stream, std::string_view note) const;
    [[nodiscard]] std::size_t streamOf(const engine::Fraction& time) const;
    void emitItemsUntil(const engine::Fraction& time, std::size_t stream);

    NoteRewriter& rewriter_;
    const MeasureText& text_;
    Lines& lines_;
    engine::Metre metre_;
    bool severalStaves_;
    VoiceLabels& labels_;
    std::string cutPrefix_;  // of the ids of ties that join cut notes; another one in each measure
    int cuts_ = 0;
    std::vector<Stream> streams_;
    std::vector<std::string> items_;  // with the divisions that are in force now; empty for one that is gone
    std::vector<bool> emitted_;
    std::int64_t divisions_ = 1;
    Decimal ownDivisions_;
    engine::Fraction cursor_;
    std::string out_;
};

}  // namespace rovescio::musicxml
