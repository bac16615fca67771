// A strict reader of MIDI files.
#include "playback/heard.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace rovescio::test {

namespace {

class Bytes {
  public:
    explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}

    [[nodiscard]] bool atEnd() const { return next_ == bytes_.size(); }
    int byte() { return static_cast<unsigned char>(bytes_.at(next_++)); }
    int peek() { return static_cast<unsigned char>(bytes_.at(next_)); }
    int number(int size) {
        int result = 0;
        for (; size > 0; --size) result = result << 8 | byte();
        return result;
    }
    int variable() {
        int result = 0;
        for (int more = 0x80; more != 0;) {
            const int part = byte();
            more = part & 0x80;
            result = result << 7 | (part & 0x7F);
        }
        return result;
    }
    std::string text(int size) {
        const std::string result = bytes_.substr(next_, static_cast<std::size_t>(size));
        if (result.size() != static_cast<std::size_t>(size)) throw std::runtime_error("the file is cut off");
        next_ += result.size();
        return result;
    }
    Bytes chunk(const std::string& kind) {
        if (text(4) != kind) throw std::runtime_error("no chunk " + kind);
        const int size = number(4);
        return Bytes(text(size));
    }

  private:
    std::string bytes_;
    std::size_t next_ = 0;
};

std::string shown(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

HeardTrack hearTrack(Bytes track, int ticksPerQuarter, double& end) {
    HeardTrack heard;
    std::multimap<std::pair<int, int>, std::size_t> sounding;
    int ticks = 0;
    int status = 0;
    bool ended = false;
    while (!track.atEnd()) {
        if (ended) throw std::runtime_error("events after the end of a track");
        ticks += track.variable();
        const double now = static_cast<double>(ticks) / ticksPerQuarter;
        if (track.peek() >= 0x80) status = track.byte();
        const int channel = status & 0x0F;
        if (status == 0xFF) {
            const int kind = track.byte();
            const std::string data = track.text(track.variable());
            Bytes numbers(data);
            const std::string at = shown(now) + " ";
            if (kind == 0x03) heard.name = data;
            if (kind == 0x51) heard.events.push_back(at + "tempo " + std::to_string(numbers.number(3)));
            if (kind == 0x58) {
                const int beats = numbers.byte();
                heard.events.push_back(at + std::to_string(beats) + "/" +
                                       std::to_string(1 << numbers.byte()));
            }
            if (kind == 0x59) {
                const int fifths = static_cast<std::int8_t>(numbers.byte());
                heard.events.push_back(at + "key " + std::to_string(fifths) +
                                       (numbers.byte() != 0 ? " minor" : ""));
            }
            ended = kind == 0x2F;
            end = std::max(end, now);
        } else if ((status & 0xF0) == 0xC0) {
            heard.events.push_back(shown(now) + " channel " + std::to_string(channel) + " program " +
                                   std::to_string(track.byte()));
        } else if ((status & 0xE0) == 0x80) {
            const int key = track.byte();
            const int velocity = track.byte();
            if ((status & 0x10) != 0 && velocity > 0) {
                sounding.emplace(std::pair(channel, key), heard.notes.size());
                heard.notes.push_back({now, 0, channel, key, velocity});
                continue;
            }
            const auto note = sounding.find({channel, key});
            if (note == sounding.end()) throw std::runtime_error("a note ends that does not sound");
            heard.notes[note->second].length = now - heard.notes[note->second].start;
            sounding.erase(note);
        } else {
            throw std::runtime_error("an unexpected message");
        }
    }
    if (!ended || !sounding.empty()) throw std::runtime_error("a track ends badly");
    return heard;
}

}  // namespace

HeardFile hear(const std::string& midiFile) {
    Bytes file(midiFile);
    Bytes header = file.chunk("MThd");
    HeardFile heard;
    heard.format = header.number(2);
    const int tracks = header.number(2);
    heard.ticksPerQuarter = header.number(2);
    for (int i = 0; i < tracks; ++i) {
        heard.tracks.push_back(hearTrack(file.chunk("MTrk"), heard.ticksPerQuarter, heard.end));
    }
    if (!file.atEnd()) throw std::runtime_error("bytes after the last track");
    return heard;
}

std::string HeardFile::notes(bool withVelocity) const {
    std::vector<HeardNote> all;
    for (const HeardTrack& track : tracks) all.insert(all.end(), track.notes.begin(), track.notes.end());
    std::stable_sort(all.begin(), all.end(), [](const HeardNote& left, const HeardNote& right) {
        return std::tuple(left.start, left.key) < std::tuple(right.start, right.key);
    });
    std::string text;
    for (const HeardNote& note : all) {
        text += (text.empty() ? "" : " ") + shown(note.start) + "+" + shown(note.length) + ":" +
                std::to_string(note.key) + (withVelocity ? "*" + std::to_string(note.velocity) : "");
    }
    return text;
}

}  // namespace rovescio::test
