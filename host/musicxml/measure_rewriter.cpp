// Puts the notes of a part's measures together in their new order.
#include "musicxml/measure_rewriter.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/entry_state.h"
#include "engine/fraction.h"
#include "musicxml/measure_composer.h"
#include "musicxml/measure_text.h"
#include "musicxml/note_reading.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

namespace {

using engine::Fraction;
using engine::FrameAddress;

constexpr Decimal kDefaultDivisions{1, 1};

// The measures of one part.
class PartRewriter {
  public:
    PartRewriter(const PartSource& part, const SourceMap& sources, const engine::Document& document,
                 Journal& journal, std::vector<MeasureText::Note*>& notes, TextEdits& edits)
        : part_(part),
          sources_(sources),
          document_(document),
          journal_(journal),
          notes_(notes),
          edits_(edits) {}

    bool rewrite(const std::vector<short>& measures) {
        for (const short number : measures) open(number);
        findNotes();
        for (int staff = 0; staff < part_.staffCount; ++staff) {
            for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                if (!readLayer(static_cast<short>(part_.firstStaff + staff), layer)) return false;
            }
        }
        std::size_t bytes = 0;
        for (const auto& measure : open_) bytes += measure->end - measure->begin;
        edits_.reserve(bytes + bytes / 8);
        for (std::size_t i = 0; i < open_.size(); ++i) write(i);
        return true;
    }

  private:
    struct OpenMeasure {
        short number = 0;
        std::size_t begin = 0;
        std::size_t end = 0;
        std::string edited;  // its text where that is not the file's
        MeasureText text;
        Lines lines;

        OpenMeasure(short measure, const Element& element, const TextEdits& edits, const Decimal& divisions)
            : number(measure),
              begin(element.begin),
              end(element.end),
              edited(edits.hasEdits(begin, end) ? edits.edited(begin, end) : std::string()),
              text(edited.empty() ? edits.text().substr(begin, end - begin) : edited, divisions) {}
    };

    // In force at the end of a measure; 0 is before the first.
    [[nodiscard]] Decimal divisionsAt(short measure) const {
        Decimal divisions = kDefaultDivisions;
        for (const DivisionsMark& mark : part_.divisions) {
            if (mark.measure > measure) break;
            divisions = mark.divisions;
        }
        return divisions;
    }

    void open(short number) {
        const Element element = elementOf(number);
        if (!element.exists()) return;
        open_.push_back(std::make_unique<OpenMeasure>(number, element, edits_,
                                                      divisionsAt(static_cast<short>(number - 1))));
    }

    // Where a measure stands in the file. It mostly ends right before the next one.
    [[nodiscard]] Element elementOf(short number) const {
        constexpr std::string_view kEnd = "</measure>";
        const std::size_t begin = part_.measures[static_cast<std::size_t>(number - 1)];
        const auto next = static_cast<std::size_t>(number);
        const std::string_view text = edits_.text();
        if (next < part_.measures.size() && part_.measures[next] > begin) {
            const std::size_t end = part_.measures[next] - kEnd.size();
            const std::size_t found = text.rfind(kEnd, end);
            const bool blank =
                found > begin && trimmed(text.substr(found + kEnd.size(), end - found)).empty();
            if (blank) return {begin, begin, found, found + kEnd.size()};
        }
        TextWalk walk(text);
        walk.restart(begin);
        return walk.next(0) ? walk.whole() : Element{};
    }

    // The notes of a measure in the edited text are those of the source in the same order.
    void findNotes() {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> places;  // in the file, with the note's index
        for (const EntrySource& entry : sources_.entries) {
            const short staff = entry.address.staff;
            if (entry.isGap || staff < part_.firstStaff || staff >= part_.firstStaff + part_.staffCount)
                continue;
            if (!isOpen(entry.address.measure)) continue;
            for (std::uint32_t i = 0; i < std::max<std::uint32_t>(entry.noteCount, 1); ++i) {
                places.emplace_back(sources_.notes[entry.firstNote + i], entry.firstNote + i);
            }
        }
        std::sort(places.begin(), places.end());
        auto next = places.begin();
        for (const auto& measure : open_) {
            for (MeasureText::Note& note : measure->text.notes()) {
                if (next == places.end() || next->first >= measure->end) break;
                notes_[next++->second] = &note;
            }
        }
    }

    [[nodiscard]] bool isOpen(short number) const {
        const auto found =
            std::lower_bound(open_.begin(), open_.end(), number,
                             [](const auto& measure, short wanted) { return measure->number < wanted; });
        return found != open_.end() && (*found)->number == number;
    }

    // What a layer has in all open measures, and where its order has turned round.
    bool readLayer(short staff, short layer) {
        Event* earlier = nullptr;
        Event* firstPiece = nullptr;  // of the note that the earlier event belongs to; it bears the lyrics
        std::uint32_t earlierOrigin = 0;
        for (const auto& measure : open_) {
            const FrameAddress address{staff, measure->number, layer};
            const engine::PackedEntries& entries = document_.entries(address);
            if (entries.empty()) continue;
            const std::size_t first = addLine(*measure, staff, layer, false, entries.size());
            std::size_t second = first;
            Fraction reached;
            Fraction reachedBySecond;
            for (const engine::StoredEntry& entry : entries) {
                const bool aside = (entry.entryFlags & ENTRY_VOICE2) != 0;
                if (aside && second == first) second = addLine(*measure, staff, layer, true, entries.size());
                Fraction& position = aside ? reachedBySecond : reached;
                Event& event = addEvent(measure->lines[aside ? second : first], entry, position);
                position += event.length;
                const std::uint32_t origin = document_.originOf(entry.entryNumber);
                if (aside || origin > sources_.entries.size()) continue;
                if (earlier != nullptr) {
                    earlier->continued = earlierOrigin == origin;
                    if (origin < earlierOrigin)
                        earlier->mirrored = firstPiece->mirrored = event.mirrored = true;
                }
                if (earlier == nullptr || earlierOrigin != origin) firstPiece = &event;
                earlier = &event;
                earlierOrigin = origin;
            }
            if (reached != Fraction(document_.staffMeasure(staff, measure->number).duration)) {
                return refuse(*measure, staff);
            }
        }
        return true;
    }

    bool refuse(const OpenMeasure& measure, short staff) {
        journal_.setMeasure(document_.measure(measure.number).label);
        journal_.fail(
            "the notes of staff " + std::to_string(staff) + " do not add up to the measure's length",
            measure.begin, "Correct the durations there, or select other measures.");
        return false;
    }

    // The index of a new line with room for its events, which stay where they are.
    std::size_t addLine(OpenMeasure& measure, short staff, short layer, bool second,
                        std::size_t events) const {
        Line& line = measure.lines.emplace_back(
            Line{.staff = staff - part_.firstStaff, .layer = layer, .second = second});
        line.events.reserve(events);
        return measure.lines.size() - 1;
    }

    Event& addEvent(Line& line, const engine::StoredEntry& entry, const Fraction& start) {
        Event& event = line.events.emplace_back();
        event.entry = &entry;
        event.start = start;
        event.length = engine::lengthOf(entry);
        const std::uint32_t origin = document_.originOf(entry.entryNumber);
        event.continues = origin != entry.entryNumber;
        if (origin <= sources_.entries.size()) event.source = &sources_.entries[origin - 1];
        if (event.source != nullptr && !event.source->isGap) {
            const std::size_t count = std::max<std::size_t>(event.source->noteCount, 1);
            const std::span<MeasureText::Note* const> notes =
                std::span(notes_).subspan(event.source->firstNote, count);
            if (notes.front() != nullptr) event.notes = notes;
        }
        return event;
    }

    void write(std::size_t index) {
        OpenMeasure& measure = *open_[index];
        const bool afterRewritten = index > 0 && open_[index - 1]->number + 1 == measure.number;
        const bool beforeRewritten =
            index + 1 < open_.size() && open_[index + 1]->number == measure.number + 1;
        const bool last = measure.number == document_.measureCount();
        const engine::StaffMeasure& time = document_.staffMeasure(part_.firstStaff, measure.number);
        const MeasureComposer::Divisions divisions{
            .before = afterRewritten ? divisions_ : divisionsAt(static_cast<short>(measure.number - 1)),
            .own = divisionsAt(measure.number),
            .restore = !beforeRewritten && !last};
        MeasureComposer composer(rewriter_, measure.text, measure.lines, {time.duration, time.beat},
                                 part_.staffCount > 1, voices_,
                                 std::string(kCutId) + std::to_string(part_.firstStaff) + "-" +
                                     std::to_string(measure.number) + "-");
        const std::string text = composer.compose(divisions);
        divisions_ = composer.divisionsAtEnd();
        edits_.replaceStretch(measure.begin, measure.end, text);
    }

    const PartSource& part_;
    const SourceMap& sources_;
    const engine::Document& document_;
    Journal& journal_;
    std::vector<MeasureText::Note*>& notes_;  // by their index in the source; null while not found
    TextEdits& edits_;
    std::vector<std::unique_ptr<OpenMeasure>> open_;
    VoiceLabels voices_;
    NoteRewriter rewriter_;
    Decimal divisions_ = kDefaultDivisions;
};

}  // namespace

bool rewriteMeasures(const std::set<PartMeasure>& measures, const SourceMap& sources,
                     const engine::Document& document, Journal& journal, TextEdits& edits) {
    std::vector<MeasureText::Note*> notes(sources.notes.size());
    for (auto next = measures.begin(); next != measures.end();) {
        const std::size_t part = next->first;
        std::vector<short> numbers;
        for (; next != measures.end() && next->first == part; ++next) numbers.push_back(next->second);
        if (!PartRewriter(sources.parts[part], sources, document, journal, notes, edits).rewrite(numbers))
            return false;
    }
    edits.settleAll();
    return true;
}

}  // namespace rovescio::musicxml
