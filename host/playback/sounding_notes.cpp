// From written entries to notes in time.
#include "playback/sounding_notes.h"

#include <algorithm>
#include <map>
#include <numeric>

#include "playback/loudness.h"
#include "playback/transpositions.h"

namespace rovescio::playback {

namespace {

using engine::Fraction;
using engine::FrameAddress;
using engine::StoredEntry;

constexpr int kMiddleC = 60;
constexpr int kKeys = 128;
// The sound of a percussion note for which the score names none: a snare drum.
constexpr int kSnare = 38;
// A grace note is a 32nd, or shorter if it is written so; at most half of its neighbour becomes grace notes.
constexpr std::int32_t kGraceLength = engine::kQuarter / 8;

// An entry in time.
struct Placed {
    const StoredEntry* entry = nullptr;
    FrameAddress address;
    Fraction position;  // in its measure
    Fraction start;
    Fraction length;

    [[nodiscard]] bool isGrace() const { return engine::entryState(*entry).grace != engine::Grace::none; }
};

struct TiedNote {
    SoundingNote note;
    std::uint32_t ties = 0;
};

// Gathers the notes of one part, voice by voice.
class Gathering {
  public:
    Gathering(const engine::Document& document, const engine::Performance& performance,
              const engine::PartPerformance& part, const TimeLine& timeLine, TimeGrid& grid)
        : document_(document),
          performance_(performance),
          part_(part),
          timeLine_(timeLine),
          grid_(grid),
          loudness_(part, timeLine),
          transpositions_(part) {}

    void addLayer(short staff, short layer, const engine::PlaybackRequest& request) {
        std::array<std::vector<Placed>, 2> voices;
        for (const short measure : engine::numbers(request.startMeasure, request.endMeasure)) {
            const FrameAddress address{staff, measure, layer};
            forEachPlaced(document_.entries(address), [&](const StoredEntry& entry,
                                                          const Fraction& position) {
                const std::size_t voice = (entry.entryFlags & ENTRY_VOICE2) != 0 ? 1 : 0;
                voices[voice].push_back({&entry, address, position, sum(timeLine_.startOf(measure), position),
                                         engine::lengthOf(entry)});
            });
        }
        for (const std::vector<Placed>& voice : voices) addVoice(voice);
    }

    std::vector<SoundingNote> joined();

  private:
    void addVoice(const std::vector<Placed>& voice);
    void addGraces(std::span<const Placed> graces, const Fraction& begin, const Fraction& end);
    void addEntry(const Placed& placed, const Fraction& start, const Fraction& end);
    [[nodiscard]] SoundingNote sounding(const Placed& placed, const ENOTE& note) const;

    const engine::Document& document_;
    const engine::Performance& performance_;
    const engine::PartPerformance& part_;
    const TimeLine& timeLine_;
    TimeGrid& grid_;
    Loudness loudness_;
    Transpositions transpositions_;
    std::vector<TiedNote> notes_;
};

SoundingNote Gathering::sounding(const Placed& placed, const ENOTE& note) const {
    SoundingNote result;
    result.staff = placed.address.staff;
    const auto named =
        performance_.instrumentOf.find({document_.originOf(placed.entry->entryNumber), note.noteId});
    if (named != performance_.instrumentOf.end()) result.instrument = named->second;
    const engine::Instrument& instrument = part_.instruments[result.instrument];
    const bool unpitched = engine::entryState(*placed.entry).unpitched != 0;
    result.percussion = unpitched || instrument.percussion;
    if (unpitched) {
        result.key = instrument.key.value_or(kSnare);
    } else {
        const auto& measure = document_.staffMeasure(placed.address.staff, placed.address.measure);
        const int written = kMiddleC + engine::semitones(measure.key.spell(note));
        const int key =
            written + transpositions_.at(placed.address.staff, {placed.address.measure, placed.position});
        // What lies beyond the numbers of MIDI sounds in the nearest octave that has one.
        constexpr int kOctave = 12;
        constexpr int kTopOctave = kKeys - kOctave;
        result.key = key >= 0 && key < kKeys ? key
                     : key < 0               ? engine::floorMod(key, kOctave)
                                             : kTopOctave + engine::floorMod(key - kTopOctave, kOctave);
    }
    result.velocity = loudness_.at(placed.start);
    return result;
}

void Gathering::addEntry(const Placed& placed, const Fraction& start, const Fraction& end) {
    if ((placed.entry->entryFlags & ENTRY_NOTE) == 0) return;
    for (const ENOTE& note : placed.entry->notes()) {
        SoundingNote result = sounding(placed, note);
        result.start = start;
        result.end = end;
        notes_.push_back({result, note.noteFlags & NOTE_TIES});
    }
}

// Shares a stretch of time out to grace entries; what is tied to the note after them sounds on until there.
void Gathering::addGraces(std::span<const Placed> graces, const Fraction& begin, const Fraction& end) {
    const Fraction whole = end - begin;
    const auto count = static_cast<std::int64_t>(graces.size());
    for (std::int64_t i = 0; i < count; ++i) {
        const Fraction from = sum(begin, whole.times(i, count));
        const Fraction to = i + 1 == count ? end : sum(begin, whole.times(i + 1, count));
        const std::size_t first = notes_.size();
        addEntry(graces[static_cast<std::size_t>(i)], from, to);
        for (std::size_t note = first; note < notes_.size(); ++note) {
            if ((notes_[note].ties & NOTE_TIE_START) != 0) notes_[note].note.end = end;
        }
    }
}

// Grace notes take their time from what stands before them, so that the notes after them stay on the beat;
// at the start of a voice they take it from what follows.
void Gathering::addVoice(const std::vector<Placed>& voice) {
    const Placed* before = nullptr;
    std::size_t beforeNotes = notes_.size();
    for (std::size_t i = 0; i < voice.size();) {
        const std::size_t firstGrace = i;
        std::int64_t wanted = 0;
        for (; i < voice.size() && voice[i].isGrace(); ++i) {
            wanted += std::min(+voice[i].entry->duration, kGraceLength);
        }
        const std::span graces(voice.data() + firstGrace, i - firstGrace);
        const Placed* main = i < voice.size() ? &voice[i++] : nullptr;
        Fraction start = main ? main->start : Fraction(0);
        if (!graces.empty()) {
            const Fraction beat = graces.front().start;
            if (before) {
                const Fraction earliest = sum(before->start, before->length.times(1, 2));
                const Fraction begin = std::max(earliest, sum(beat, Fraction(-wanted)));
                for (std::size_t note = beforeNotes; note < notes_.size(); ++note) {
                    const bool goesOn = (notes_[note].ties & NOTE_TIE_START) != 0;
                    if (!goesOn) notes_[note].note.end = std::min(notes_[note].note.end, begin);
                }
                addGraces(graces, begin, beat);
            } else {
                const Fraction room = main ? main->length.times(1, 2) : Fraction(wanted);
                start = sum(beat, std::min(room, Fraction(wanted)));
                addGraces(graces, beat, start);
            }
        }
        if (!main) break;
        beforeNotes = notes_.size();
        before = main;
        const Fraction end = sum(main->start, main->length);
        if ((main->entry->entryFlags & ENTRY_NOTE) != 0) {
            grid_.add(main->start);
            grid_.add(end);
        }
        addEntry(*main, start, end);
    }
}

// A tie goes on where a note of the same pitch begins when another one ends.
std::vector<SoundingNote> Gathering::joined() {
    std::stable_sort(notes_.begin(), notes_.end(), [](const TiedNote& left, const TiedNote& right) {
        return left.note.start < right.note.start;
    });
    std::vector<SoundingNote> result;
    // Places in the result of notes that a tie leaves, by key and end.
    std::multimap<std::pair<int, Fraction>, std::size_t> open;
    for (const TiedNote& tied : notes_) {
        std::size_t place = result.size();
        if ((tied.ties & NOTE_TIE_END) != 0) {
            const auto partner = open.lower_bound({tied.note.key, tied.note.start});
            if (partner != open.end() && partner->first == std::pair(tied.note.key, tied.note.start)) {
                place = partner->second;
                open.erase(partner);
            }
        }
        if (place == result.size()) {
            result.push_back(tied.note);
        } else {
            result[place].end = tied.note.end;
        }
        if ((tied.ties & NOTE_TIE_START) != 0) {
            open.emplace(std::pair(tied.note.key, tied.note.end), place);
        }
    }
    std::ranges::stable_sort(result, {}, &SoundingNote::staff);
    return result;
}

}  // namespace

void TimeGrid::add(const Fraction& time) {
    if (!time.isSound()) return;
    // Of units, of which a quarter has many, to parts of a quarter.
    const std::int64_t parts = engine::kQuarter * time.denominator();
    const std::int64_t common = std::gcd(time.numerator(), parts);
    const std::int64_t needed = std::lcm(denominator_, parts / common);
    // More than any file can have is as good as none.
    denominator_ = std::min(needed, Fraction::kMaxDenominator);
}

int TimeGrid::ticksPerQuarter(int most) const {
    constexpr int kUsual = 960;
    if (kUsual % denominator_ == 0) return kUsual;
    if (denominator_ > most) return 0;
    const auto exact = static_cast<int>(denominator_);
    const int times = std::max(1, std::min(kUsual, most) / exact);
    return exact * times;
}

std::vector<SoundingNote> soundingNotes(const engine::Document& document,
                                        const engine::Performance& performance,
                                        const engine::PartPerformance& part, std::span<const short> staves,
                                        const engine::PlaybackRequest& request,
                                        const std::array<bool, engine::kMaxLayers>& layerShown,
                                        const TimeLine& timeLine, TimeGrid& grid) {
    Gathering gathering(document, performance, part, timeLine, grid);
    for (const short staff : staves) {
        for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
            if (layerShown[static_cast<std::size_t>(layer)]) gathering.addLayer(staff, layer, request);
        }
    }
    return gathering.joined();
}

}  // namespace rovescio::playback
