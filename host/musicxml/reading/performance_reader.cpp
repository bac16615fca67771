// Instruments, tempo, dynamics, hairpins and transpositions out of the elements of a part.
#include "musicxml/reading/performance_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <tuple>

#include "musicxml/file/tag_names.h"
#include "musicxml/rules/note_types.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

using engine::Instrument;
using engine::LoudnessMark;
using engine::ScorePlace;

// The loudness that <sound dynamics="100"/> means, as velocity.
constexpr double kForte = 90;
constexpr int kLowestVelocity = 1;
constexpr int kHighestVelocity = 127;
constexpr int kPercussionChannel = 10;
// A quarter must last less than 2^24 microseconds in a MIDI file; nothing in use comes near either end.
constexpr double kSlowestTempo = 4;
constexpr double kFastestTempo = 2000;
constexpr int kMostSemitones = 120;

// A dynamics mark: the level that it leaves in force, and the loudness of the notes right at it.
struct Dynamic {
    std::string_view name;
    int level = 0;   // 0: stays
    int accent = 0;  // 0: none
};

constexpr std::array<Dynamic, 27> kDynamics = {
    {{"pppppp", 5, 0}, {"ppppp", 7, 0},  {"pppp", 10, 0},  {"ppp", 16, 0},    {"pp", 33, 0},
     {"p", 49, 0},     {"mp", 64, 0},    {"mf", 80, 0},    {"pf", 88, 0},     {"f", 96, 0},
     {"ff", 112, 0},   {"fff", 120, 0},  {"ffff", 126, 0}, {"fffff", 127, 0}, {"ffffff", 127, 0},
     {"n", 1, 0},      {"fp", 49, 96},   {"sfp", 49, 112}, {"sfpp", 33, 112}, {"sfzp", 49, 112},
     {"sf", 0, 112},   {"sfz", 0, 112},  {"fz", 0, 112},   {"rf", 0, 108},    {"rfz", 0, 108},
     {"sffz", 0, 124}, {"sfffz", 0, 127}}};

// The first number in a text such as "c. 120"; none where there is none.
std::optional<double> numberIn(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_of("0123456789"), text.size()));
    double number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || !std::isfinite(number)) return std::nullopt;
    return number;
}

// A whole number from 1 to 128, as scores count what MIDI counts from 0.
std::optional<int> midiNumber(std::string_view text) {
    const std::optional<int> number = parseInteger(text);
    if (!number || *number < 1 || *number > 128) return std::nullopt;
    return *number - 1;
}

}  // namespace

// --- instruments ---

std::size_t PartInstruments::place(std::string_view id) {
    const auto known = std::find(ids_.begin(), ids_.end(), id);
    if (known != ids_.end()) return static_cast<std::size_t>(known - ids_.begin());
    ids_.emplace_back(id);
    list_.resize(ids_.size());
    return ids_.size() - 1;
}

void PartInstruments::addInstrument(const xml::Element& element) {
    place(element.attribute("id"));
}

void PartInstruments::addMidi(const xml::Element& element) {
    Instrument& instrument = list_[place(element.attribute("id"))];
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("midi-channel"):
                instrument.percussion |= parseInteger(child.text()) == kPercussionChannel;
                break;
            case tag("midi-program"):
                instrument.program = midiNumber(child.text()).value_or(0);
                break;
            case tag("midi-unpitched"):
                instrument.key = midiNumber(child.text());
                break;
            default:
                break;
        }
    }
}

std::size_t PartInstruments::indexOf(std::string_view id) const {
    const auto known = std::find(ids_.begin(), ids_.end(), id);
    return known == ids_.end() ? 0 : static_cast<std::size_t>(known - ids_.begin());
}

// --- directions ---

struct PerformanceReader::Direction {
    struct Wedge {
        std::string_view type;
        std::string_view number;
    };
    std::optional<double> tempo;      // of a <sound>
    std::optional<double> metronome;  // of a metronome mark
    std::optional<int> loudness;      // of a <sound>
    const Dynamic* dynamic = nullptr;
    std::vector<Wedge> wedges;
    std::optional<Decimal> offset;  // in divisions
};

void PerformanceReader::readDynamics(const xml::Element& element, Direction& direction) {
    for (const xml::Element child : element) {
        const auto* known = std::find_if(kDynamics.begin(), kDynamics.end(), [&](const Dynamic& dynamic) {
            return dynamic.name == child.nameText();
        });
        if (known != kDynamics.end()) direction.dynamic = known;
    }
}

// A mark of two note values gives a relation between tempos and has no number.
void PerformanceReader::readMetronome(const xml::Element& element, Direction& direction) {
    double beat = 0;
    double dot = 0;
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("beat-unit"):
                beat = static_cast<double>(noteValue(child.text())) / engine::kQuarter;
                dot = beat;
                break;
            case tag("beat-unit-dot"):
                beat += dot /= 2;
                break;
            case tag("per-minute"):
                if (const auto number = numberIn(child.text())) direction.metronome = *number * beat;
                break;
            default:
                break;
        }
    }
}

void PerformanceReader::readSoundOf(const xml::Element& element, Direction& direction) {
    if (const auto tempo = numberIn(element.attribute("tempo"))) direction.tempo = tempo;
    if (const auto percent = numberIn(element.attribute("dynamics"))) {
        direction.loudness = static_cast<int>(
            std::clamp<double>(std::round(*percent * kForte / 100), kLowestVelocity, kHighestVelocity));
    }
    for (const xml::Element child : element) {
        if (child.name() == tag("offset")) direction.offset = parseDecimal(child.text());
    }
}

void PerformanceReader::readDirection(const xml::Element& element, short measure, MeasureClock& clock) {
    Direction direction;
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("direction-type"):
                for (const xml::Element inner : child) {
                    if (inner.name() == tag("dynamics")) readDynamics(inner, direction);
                    if (inner.name() == tag("metronome")) readMetronome(inner, direction);
                    if (inner.name() == tag("wedge")) {
                        direction.wedges.push_back({inner.attribute("type"), inner.attribute("number")});
                    }
                }
                break;
            case tag("offset"):
                // Without this mark it moves what is printed alone.
                if (child.attribute("sound") == "yes") direction.offset = parseDecimal(child.text());
                break;
            case tag("sound"):
                readSoundOf(child, direction);
                break;
            default:
                break;
        }
    }
    add(direction, measure, clock);
}

void PerformanceReader::readSound(const xml::Element& element, short measure, MeasureClock& clock) {
    Direction direction;
    readSoundOf(element, direction);
    add(direction, measure, clock);
}

void PerformanceReader::add(const Direction& direction, short measure, MeasureClock& clock) {
    const Dynamic* dynamic = direction.dynamic;
    const std::optional<double> tempo = direction.tempo ? direction.tempo : direction.metronome;
    if (!tempo && !direction.loudness && !dynamic && direction.wedges.empty()) return;
    ScorePlace place{measure, clock.exactNow()};
    if (direction.offset) {
        const bool back = direction.offset->value < 0;
        const Decimal distance{std::abs(direction.offset->value), direction.offset->scale};
        if (const MeasureClock::Span span = clock.span(distance); span.valid) {
            const engine::Fraction length = clock.exact(span);
            place.position = back ? place.position - length : place.position + length;
        }
    }
    if (tempo && *tempo >= kSlowestTempo && *tempo <= kFastestTempo) tempos_.push_back({place, *tempo});
    LoudnessMark mark{.place = place, .level = {}, .accent = {}};
    if (dynamic && dynamic->level > 0) mark.level = dynamic->level;
    if (dynamic && dynamic->accent > 0) mark.accent = dynamic->accent;
    // The file's own number stands for what the mark says: of an accent, for its notes alone.
    if (direction.loudness && !mark.accent) mark.level = direction.loudness;
    if (direction.loudness && mark.accent && !mark.level) mark.accent = direction.loudness;
    if (mark.level || mark.accent) part_.loudness.push_back(mark);
    addWedge(direction, place);
}

void PerformanceReader::addWedge(const Direction& direction, const ScorePlace& place) {
    for (const Direction::Wedge& wedge : direction.wedges) {
        const auto open = openWedges_.find(wedge.number);
        if (open != openWedges_.end() && wedge.type != "continue") {
            open->second.end = place;
            part_.hairpins.push_back(open->second);
            openWedges_.erase(open);
        }
        if (wedge.type == "crescendo" || wedge.type == "diminuendo") {
            openWedges_.emplace(wedge.number, engine::Hairpin{place, place, wedge.type == "crescendo"});
        }
    }
}

// --- attributes and notes ---

void PerformanceReader::readTransposition(const xml::Element& element, short measure,
                                          const MeasureClock& clock, std::size_t first, std::size_t last) {
    int semitones = 0;
    for (const xml::Element child : element) {
        if (child.name() == tag("octave-change")) {
            semitones +=
                12 * std::clamp(parseInteger(child.text()).value_or(0), -kMostSemitones, kMostSemitones);
        } else if (child.name() == tag("chromatic")) {
            // Quarter-tones have no MIDI note.
            const Decimal written = parseDecimal(child.text()).value_or(Decimal{});
            semitones += static_cast<int>(
                std::clamp<std::int64_t>(written.value / written.scale, -kMostSemitones, kMostSemitones));
        }
    }
    for (std::size_t staff = first; staff < last; ++staff) {
        part_.transpositions.push_back(
            {static_cast<short>(staff + 1), {measure, clock.exactNow()}, semitones});
    }
}

int PerformanceReader::fifths(short staff) const {
    const auto mark = std::find_if(part_.transpositions.begin(), part_.transpositions.end(),
                                   [&](const engine::TranspositionMark& at) { return at.staff == staff; });
    if (mark == part_.transpositions.end()) return 0;
    // Seven semitones are a fifth; of the ways round the circle the shorter one is taken.
    const int sounding = ((7 * mark->semitones) % 12 + 12) % 12;
    return sounding > 6 ? 12 - sounding : -sounding;
}

void PerformanceReader::addTime(short measure, const TimeSignature& time) {
    if (time.length < 1 || time.beat < 1) return;
    part_.times.push_back({measure, time.length / time.beat, 4 * engine::kQuarter / time.beat});
}

void PerformanceReader::addNoteInstrument(xml::Node note, std::string_view id) {
    const std::size_t index = instruments_.indexOf(id);
    if (index > 0) noteInstruments_.emplace_back(note, index);
}

void PerformanceReader::finish(short firstStaff, short staffCount, engine::Performance& performance,
                               NoteInstruments& named) {
    part_.firstStaff = firstStaff;
    part_.staffCount = staffCount;
    part_.instruments = instruments_.list();
    for (engine::TranspositionMark& mark : part_.transpositions) {
        mark.staff = static_cast<short>(mark.staff + firstStaff - 1);
    }
    performance.tempos.insert(performance.tempos.end(), tempos_.begin(), tempos_.end());
    performance.parts.push_back(std::move(part_));
    named.insert(named.end(), noteInstruments_.begin(), noteInstruments_.end());
}

void nameInstruments(NoteInstruments named, const SourceMap& sources, engine::Performance& performance) {
    if (named.empty()) return;
    std::sort(named.begin(), named.end());
    for (std::size_t i = 0; i < sources.entries.size(); ++i) {
        const EntrySource& entry = sources.entries[i];
        for (std::uint16_t note = 0; note < entry.noteCount; ++note) {
            const std::pair<xml::Node, std::size_t> wanted{sources.notes[entry.firstNote + note], 0};
            const auto found = std::lower_bound(named.begin(), named.end(), wanted);
            if (found == named.end() || found->first != wanted.first) continue;
            performance.instrumentOf.emplace(
                std::pair(static_cast<std::uint32_t>(i + 1), static_cast<std::uint16_t>(note + 1)),
                found->second);
        }
    }
}

}  // namespace rovescio::musicxml
