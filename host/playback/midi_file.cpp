// Notes and signatures laid out as tracks of events.
#include "playback/midi_file.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <map>
#include <tuple>
#include <utility>

#include "playback/smf_writer.h"
#include "playback/sounding_notes.h"
#include "playback/time_line.h"
#include "playback/transpositions.h"

namespace rovescio::playback {

namespace {

using engine::Fraction;
using engine::PartPerformance;

constexpr int kNoteOff = 0x80;
constexpr int kNoteOn = 0x90;
constexpr int kReleaseVelocity = 64;
constexpr int kPercussionChannel = 9;
constexpr int kChannels = 16;

std::string bytesOf(std::initializer_list<int> numbers) {
    std::string bytes;
    for (const int number : numbers) bytes += static_cast<char>(number);
    return bytes;
}

// Gives the instruments of the parts their channels.
class Channels {
  public:
    // The channel, and whether its program has to be sent first.
    std::pair<int, bool> of(std::size_t part, const SoundingNote& note, const PartPerformance& performance) {
        if (note.percussion) return {kPercussionChannel, false};
        const auto [known, isNew] = channels_.try_emplace({part, note.instrument}, 0);
        if (!isNew) return {known->second, false};
        const int program = performance.instruments[note.instrument].program;
        const bool free = next_ < kChannels;
        known->second = free ? next_ : shared(program);
        if (free && ++next_ == kPercussionChannel) ++next_;
        if (free) programs_.emplace(known->second, program);
        return {known->second, free};
    }
    // Whether instruments of different sound had to share a channel.
    [[nodiscard]] bool crowded() const { return crowded_; }

  private:
    // A channel that sounds as wanted, or the last one.
    int shared(int program) {
        for (const auto& [channel, sounding] : programs_) {
            if (sounding == program) return channel;
        }
        crowded_ = true;
        return kChannels - 1;
    }

    std::map<std::pair<std::size_t, std::size_t>, int> channels_;  // by part and instrument
    std::map<int, int> programs_;
    int next_ = 0;
    bool crowded_ = false;
};

class MidiFileMaker {
  public:
    MidiFileMaker(const engine::Document& document, const engine::Performance& performance,
                  const engine::PlaybackRequest& request)
        : document_(document),
          performance_(performance),
          request_(request),
          timeLine_(document),
          begin_(timeLine_.startOf(request.startMeasure)),
          end_(timeLine_.endOf(request.endMeasure)) {}

    engine::Result<MidiFile> make(const std::array<bool, engine::kMaxLayers>& layerShown);

  private:
    struct PartNotes {
        std::size_t part = 0;
        std::vector<SoundingNote> notes;
    };
    struct Event {
        int tick = 0;
        bool on = false;
        int channel = 0;
        int key = 0;
        int velocity = 0;
    };

    [[nodiscard]] bool chooseTicks(const TimeGrid& grid);
    [[nodiscard]] int tickOf(const Fraction& time) const;
    void writeSignatures(SmfWriter& writer) const;
    void addTempos(std::multimap<int, std::pair<Meta, std::string>>& events) const;
    void addTimes(std::multimap<int, std::pair<Meta, std::string>>& events) const;
    void addKeys(std::multimap<int, std::pair<Meta, std::string>>& events) const;
    void writeStaff(SmfWriter& writer, short staff, const PartNotes& part);
    [[nodiscard]] std::size_t partOf(short staff) const;

    const engine::Document& document_;
    const engine::Performance& performance_;
    const engine::PlaybackRequest& request_;
    TimeLine timeLine_;
    Fraction begin_;
    Fraction end_;
    int ticksPerQuarter_ = 0;
    Channels channels_;
};

// Exact ticks where there are such, as long as the file can count them.
bool MidiFileMaker::chooseTicks(const TimeGrid& grid) {
    const auto fits = [&](int ticks) {
        return ticks > 0 && quarters(end_ - begin_) * ticks < double{SmfWriter::kMaxTicks};
    };
    constexpr int kRounded = 30240;  // 2^5 * 3^3 * 5 * 7, the finest for what no number makes exact
    constexpr int kCoarse = 960;
    for (const int ticks : {grid.ticksPerQuarter(SmfWriter::kMaxTicksPerQuarter), kRounded, kCoarse}) {
        ticksPerQuarter_ = ticks;
        if (fits(ticks)) return true;
    }
    return false;
}

// Rounded to the nearest tick.
int MidiFileMaker::tickOf(const Fraction& time) const {
    return static_cast<int>(std::floor(quarters(time - begin_) * ticksPerQuarter_ + 0.5));
}

std::size_t MidiFileMaker::partOf(short staff) const {
    const auto after = std::ranges::upper_bound(performance_.parts, staff, {}, &PartPerformance::firstStaff);
    return static_cast<std::size_t>(after - performance_.parts.begin()) - 1;
}

// What is in force at the beginning, and each change after it.
void MidiFileMaker::addTempos(std::multimap<int, std::pair<Meta, std::string>>& events) const {
    constexpr double kMicrosecondsOfMinute = 60'000'000;
    std::map<int, double> tempos{{0, 120}};
    std::vector<engine::TempoMark> marks = performance_.tempos;
    std::stable_sort(marks.begin(), marks.end(),
                     [&](const engine::TempoMark& left, const engine::TempoMark& right) {
                         return timeLine_.at(left.place) < timeLine_.at(right.place);
                     });
    for (const engine::TempoMark& mark : marks) {
        const Fraction time = timeLine_.at(mark.place);
        if (time < end_) tempos[std::max(0, tickOf(time))] = mark.quartersPerMinute;
    }
    int before = 0;
    for (const auto& [tick, tempo] : tempos) {
        const auto length = static_cast<int>(std::lround(kMicrosecondsOfMinute / tempo));
        if (length == std::exchange(before, length)) continue;
        events.emplace(tick, std::pair(Meta::tempo, bytesOf({length >> 16, length >> 8, length})));
    }
}

void MidiFileMaker::addTimes(std::multimap<int, std::pair<Meta, std::string>>& events) const {
    constexpr int kClocksOfQuarter = 24;
    constexpr int kThirtySecondsOfQuarter = 8;
    constexpr int kMostBeats = 255;
    std::map<short, engine::TimeMark> times;
    for (const engine::TimeMark& mark : performance_.parts[partOf(request_.staves.front())].times) {
        const bool writable =
            mark.beats <= kMostBeats && std::has_single_bit(static_cast<unsigned>(mark.beatType));
        if (writable && mark.measure <= request_.endMeasure) {
            times[std::max(mark.measure, request_.startMeasure)] = mark;
        }
    }
    for (const auto& [measure, mark] : times) {
        const int clocks = std::max(1, 4 * kClocksOfQuarter / mark.beatType);
        events.emplace(tickOf(timeLine_.startOf(measure)),
                       std::pair(Meta::timeSignature,
                                 bytesOf({mark.beats, std::countr_zero(static_cast<unsigned>(mark.beatType)),
                                          clocks, kThirtySecondsOfQuarter})));
    }
}

// The key that the first staff with pitches sounds in.
void MidiFileMaker::addKeys(std::multimap<int, std::pair<Meta, std::string>>& events) const {
    const auto pitched = std::find_if(request_.staves.begin(), request_.staves.end(),
                                      [&](short staff) { return !document_.staff(staff).unpitched; });
    if (pitched == request_.staves.end()) return;
    const PartPerformance& part = performance_.parts[partOf(*pitched)];
    const Transpositions transpositions(part);
    std::string before;
    for (const short measure : engine::numbers(request_.startMeasure, request_.endMeasure)) {
        const engine::KeySignature& key = document_.staffMeasure(*pitched, measure).key;
        if (!key.isStandard()) continue;
        const int semitones = transpositions.at(*pitched, {measure, Fraction(0)});
        const int written = engine::floorMod((key.word() & 0xFF) + 128, 256) - 128;
        // A semitone is seven fifths. Keys beyond seven signs have a name with fewer, twelve fifths away.
        constexpr int kMostSigns = 7;
        int fifths = written;
        if (semitones != 0) fifths = engine::floorMod(written + 7 * semitones + 6, 12) - 6;
        if (std::abs(fifths) > kMostSigns) fifths = engine::floorMod(fifths + 6, 12) - 6;
        const std::string data = bytesOf({fifths, key.word() >> 8});
        if (data == before) continue;
        before = data;
        events.emplace(tickOf(timeLine_.startOf(measure)), std::pair(Meta::keySignature, data));
    }
}

void MidiFileMaker::writeSignatures(SmfWriter& writer) const {
    std::multimap<int, std::pair<Meta, std::string>> events;
    addTempos(events);
    addTimes(events);
    addKeys(events);
    writer.beginTrack();
    writer.meta(0, Meta::trackName, performance_.title);
    for (const auto& [tick, event] : events) writer.meta(tick, event.first, event.second);
    writer.endTrack(tickOf(end_));
}

void MidiFileMaker::writeStaff(SmfWriter& writer, short staff, const PartNotes& part) {
    const PartPerformance& performance = performance_.parts[part.part];
    std::vector<Event> events;
    writer.beginTrack();
    writer.meta(0, Meta::trackName, document_.staff(staff).name);
    auto next = std::ranges::lower_bound(part.notes, staff, {}, &SoundingNote::staff);
    for (; next != part.notes.end() && next->staff == staff; ++next) {
        const SoundingNote& note = *next;
        const auto [channel, isNew] = channels_.of(part.part, note, performance);
        if (isNew) writer.program(0, channel, performance.instruments[note.instrument].program);
        const int start = tickOf(note.start);
        events.push_back({start, true, channel, note.key, note.velocity});
        events.push_back({std::max(start + 1, tickOf(note.end)), false, channel, note.key, kReleaseVelocity});
    }
    // A key that is struck again is let go first.
    std::stable_sort(events.begin(), events.end(), [](const Event& left, const Event& right) {
        return std::tuple(left.tick, left.on) < std::tuple(right.tick, right.on);
    });
    for (const Event& event : events) {
        writer.channel(event.tick, event.on ? kNoteOn : kNoteOff, event.channel, event.key, event.velocity);
    }
    writer.endTrack(std::max(tickOf(end_), events.empty() ? 0 : events.back().tick));
}

engine::Result<MidiFile> MidiFileMaker::make(const std::array<bool, engine::kMaxLayers>& layerShown) {
    std::map<std::size_t, std::vector<short>> stavesOf;  // by part
    for (const short staff : request_.staves) stavesOf[partOf(staff)].push_back(staff);
    TimeGrid grid;
    std::map<std::size_t, PartNotes> parts;
    MidiFile file;
    for (const auto& [number, staves] : stavesOf) {
        const PartNotes& part =
            parts[number] = {number, soundingNotes(document_, performance_, performance_.parts[number],
                                                   staves, request_, layerShown, timeLine_, grid)};
        file.notes += part.notes.size();
    }
    // All starts are counted from the selection's.
    grid.add(begin_);
    if (!chooseTicks(grid)) {
        return engine::Problem{.message = "the music is too long for a MIDI file",
                               .file = {},
                               .measure = {},
                               .remedy = "Choose fewer measures with --measures"};
    }
    SmfWriter writer(ticksPerQuarter_);
    writeSignatures(writer);
    for (const short staff : request_.staves) {
        writeStaff(writer, staff, parts.at(partOf(staff)));
    }
    if (channels_.crowded()) {
        file.notices.emplace_back("more than 15 different instruments: the last ones sound alike in MIDI");
    }
    file.bytes = writer.take();
    return file;
}

}  // namespace

engine::Result<MidiFile> makeMidiFile(const engine::Document& document,
                                      const engine::Performance& performance,
                                      const engine::PlaybackRequest& request,
                                      const std::array<bool, engine::kMaxLayers>& layerShown) {
    return MidiFileMaker(document, performance, request).make(layerShown);
}

}  // namespace rovescio::playback
