// Gathers the notes of a part's measures in their new order.
#include "musicxml/writing/measure_rewriter.h"

#include <algorithm>
#include <deque>
#include <span>
#include <string>
#include <vector>

#include "engine/model/entry_state.h"
#include "engine/model/fraction.h"
#include "musicxml/reading/note_reading.h"
#include "musicxml/writing/measure_composer.h"
#include "musicxml/writing/measure_contents.h"

namespace rovescio::musicxml {

namespace {

using engine::Fraction;
using engine::FrameAddress;

constexpr Decimal kDefaultDivisions{1, 1};

// The measures of one part.
class PartRewriter {
  public:
    PartRewriter(const PartSource& part, const SourceMap& sources, const engine::Document& document,
                 Journal& journal, xml::Edits& edits)
        : part_(part), sources_(sources), document_(document), journal_(journal), edits_(edits) {}

    bool rewrite(const std::vector<short>& measures) {
        for (const short number : measures) {
            open_.push_back({number, part_.measures[static_cast<std::size_t>(number - 1)], {}});
            if (open_.back().node == 0) return refuseAbsent(open_.back());
        }
        for (int staff = 0; staff < part_.staffCount; ++staff) {
            for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                if (!readLayer(static_cast<short>(part_.firstStaff + staff), layer)) return false;
            }
        }
        NoteScan scan(edits_);
        PartWriting writing{sources_, edits_, scan, journal_, part_.staffCount > 1};
        for (std::size_t i = 0; i < open_.size(); ++i) {
            if (!write(i, writing)) return false;
        }
        return true;
    }

  private:
    struct OpenMeasure {
        short number = 0;
        xml::Node node = 0;
        Lines lines;
    };

    // The last note that was met in a layer.
    struct Trace {
        Event* earlier = nullptr;
        Event* firstPiece = nullptr;  // of the note that the earlier event belongs to; it bears the lyrics
        std::uint32_t origin = 0;
    };

    // In force at the end of a measure; 0 is before the first.
    [[nodiscard]] Decimal divisionsAt(int measure) const {
        const auto behind = std::ranges::upper_bound(part_.divisions, measure, {}, &DivisionsMark::measure);
        return behind == part_.divisions.begin() ? kDefaultDivisions : std::prev(behind)->divisions;
    }

    // What a layer has in all open measures, and where its order is reversed.
    bool readLayer(short staff, short layer) {
        Trace trace;
        for (OpenMeasure& measure : open_) {
            const FrameAddress address{staff, measure.number, layer};
            const engine::PackedEntries& entries = document_.entries(address);
            if (entries.empty()) continue;
            const std::size_t first = addLine(measure, staff, layer, false, entries.size());
            std::size_t second = first;
            Fraction reached;
            Fraction reachedBySecond;
            for (const engine::StoredEntry& entry : entries) {
                const bool aside = (entry.entryFlags & ENTRY_VOICE2) != 0;
                if (aside && second == first) second = addLine(measure, staff, layer, true, entries.size());
                Fraction& position = aside ? reachedBySecond : reached;
                Event& event = addEvent(measure.lines[aside ? second : first], address, entry, position);
                position += event.length;
                if (!aside) follow(trace, event);
            }
            if (reached != Fraction(document_.staffMeasure(staff, measure.number).duration)) {
                return refuse(measure, staff);
            }
        }
        return true;
    }

    void follow(Trace& trace, Event& event) const {
        const std::uint32_t origin = document_.originOf(event.entry->entryNumber);
        if (origin > sources_.entries.size()) return;
        if (trace.earlier != nullptr) {
            trace.earlier->continued = trace.origin == origin;
            if (origin < trace.origin)
                trace.earlier->reversed = trace.firstPiece->reversed = event.reversed = true;
        }
        if (trace.earlier == nullptr || trace.origin != origin) trace.firstPiece = &event;
        trace.earlier = &event;
        trace.origin = origin;
    }

    bool refuse(const OpenMeasure& measure, short staff) {
        journal_.setMeasure(document_.measure(measure.number).label);
        journal_.fail(
            "the notes of staff " + std::to_string(staff) + " do not add up to the measure's length",
            edits_.place(measure.node), "Correct the durations there, or select other measures.");
        return false;
    }

    bool refuseAbsent(const OpenMeasure& measure) {
        journal_.setMeasure(document_.measure(measure.number).label);
        journal_.fail("a part of the selection lacks this measure, so that nothing can be written there", 0,
                      "Give all parts the same number of measures, or select others.");
        return false;
    }

    // The index of a new line with room for its events, which stay where they are.
    std::size_t addLine(OpenMeasure& measure, short staff, short layer, bool second,
                        std::size_t events) const {
        Line& line = measure.lines.emplace_back(
            Line{.staff = staff - part_.firstStaff, .layer = layer, .second = second, .asBefore = true});
        line.events.reserve(events);
        return measure.lines.size() - 1;
    }

    Event& addEvent(Line& line, const FrameAddress& address, const engine::StoredEntry& entry,
                    const Fraction& start) {
        Event& event = line.events.emplace_back();
        event.entry = &entry;
        event.start = start;
        event.length = engine::lengthOf(entry);
        event.staff = line.staff;
        const std::uint32_t origin = document_.originOf(entry.entryNumber);
        event.continues = origin != entry.entryNumber;
        if (origin <= sources_.entries.size()) event.source = &sources_.entries[origin - 1];
        line.asBefore = line.asBefore && !event.continues && event.source != nullptr &&
                        event.source->address == address && event.source->elapsed == entry.elapsed &&
                        event.source->duration == entry.duration;
        if (event.source == nullptr || event.source->isGap) return event;
        const std::size_t count = std::max<std::size_t>(event.source->noteCount, 1);
        event.notes = std::span(sources_.notes).subspan(event.source->firstNote, count);
        if (event.continues) event.notes = copies(event.notes);
        return event;
    }

    // Each part of a note that was cut has elements of its own.
    std::span<const xml::Node> copies(std::span<const xml::Node> notes) {
        std::vector<xml::Node>& copied = copies_.emplace_back();
        for (const xml::Node note : notes) copied.push_back(edits_.copy(note));
        return copied;
    }

    bool write(std::size_t index, PartWriting& writing) {
        OpenMeasure& measure = open_[index];
        journal_.setMeasure(document_.measure(measure.number).label);
        const bool afterRewritten = index > 0 && open_[index - 1].number + 1 == measure.number;
        const bool beforeRewritten =
            index + 1 < open_.size() && open_[index + 1].number == measure.number + 1;
        const bool last = measure.number == document_.measureCount();
        const Decimal before = divisionsAt(measure.number - 1);
        const engine::StaffMeasure& time = document_.staffMeasure(part_.firstStaff, measure.number);
        MeasureSite site{.node = measure.node,
                         .measure = measure.number,
                         .firstStaff = part_.firstStaff,
                         .metre = {time.duration, time.beat},
                         .keys = {},
                         .cutPrefix = std::string(kCutId) + std::to_string(part_.firstStaff) + "-" +
                                      std::to_string(measure.number) + "-"};
        for (int staff = 0; staff < part_.staffCount; ++staff) {
            const auto number = static_cast<short>(part_.firstStaff + staff);
            site.keys.push_back(&document_.staffMeasure(number, measure.number).key);
        }
        const MeasureContents contents = readContents(edits_, measure.node, before);
        MeasureComposer composer(writing, site, contents, measure.lines);
        const bool done = composer.compose({.before = afterRewritten ? divisions_ : before,
                                            .own = divisionsAt(measure.number),
                                            .restore = !beforeRewritten && !last});
        divisions_ = composer.divisionsAtEnd();
        return done;
    }

    const PartSource& part_;
    const SourceMap& sources_;
    const engine::Document& document_;
    Journal& journal_;
    xml::Edits& edits_;
    std::deque<OpenMeasure> open_;
    std::deque<std::vector<xml::Node>> copies_;
    Decimal divisions_ = kDefaultDivisions;
};

}  // namespace

bool rewriteMeasures(const std::set<PartMeasure>& measures, const SourceMap& sources,
                     const engine::Document& document, Journal& journal, xml::Edits& edits) {
    for (auto next = measures.begin(); next != measures.end();) {
        const std::size_t part = next->first;
        std::vector<short> numbers;
        for (; next != measures.end() && next->first == part; ++next) numbers.push_back(next->second);
        if (!PartRewriter(sources.parts[part], sources, document, journal, edits).rewrite(numbers))
            return false;
    }
    return true;
}

}  // namespace rovescio::musicxml
