// The bytes of MIDI files: chunks with their sizes, and events with the time since the one before.
#include "playback/smf_writer.h"

namespace rovescio::playback {

namespace {

constexpr std::size_t kTrackCountPlace = 10;
constexpr int kSizeOfSize = 4;

}  // namespace

SmfWriter::SmfWriter(int ticksPerQuarter) {
    constexpr std::uint32_t kHeadSize = 6;
    constexpr std::uint32_t kFormat = 1;
    bytes_ = "MThd";
    number(kHeadSize, kSizeOfSize);
    number(kFormat, 2);
    number(0, 2);
    number(static_cast<std::uint32_t>(ticksPerQuarter), 2);
}

// Big-endian, as all numbers of the format.
void SmfWriter::number(std::uint32_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) byte(static_cast<int>(value >> shift & 0xFF));
}

void SmfWriter::replace(std::size_t place, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) {
        bytes_[place + static_cast<std::size_t>(i)] = static_cast<char>(value >> 8 * (size - 1 - i) & 0xFF);
    }
}

// Seven bits a byte; all but the last have the eighth set.
void SmfWriter::variable(std::uint32_t value) {
    for (int shift = 21; shift > 0; shift -= 7) {
        if (value >> shift != 0) byte(static_cast<int>((value >> shift & 0x7F) | 0x80));
    }
    byte(static_cast<int>(value & 0x7F));
}

void SmfWriter::advance(int tick) {
    variable(static_cast<std::uint32_t>(tick - tick_));
    tick_ = tick;
}

void SmfWriter::beginTrack() {
    bytes_ += "MTrk";
    number(0, kSizeOfSize);
    trackBegin_ = bytes_.size();
    tick_ = 0;
    replace(kTrackCountPlace, ++tracks_, 2);
}

void SmfWriter::meta(int tick, Meta kind, std::string_view data) {
    advance(tick);
    byte(0xFF);
    byte(static_cast<int>(kind));
    // Texts come from scores; what is longer than any name is cut.
    constexpr std::size_t kMost = 0xFFFF;
    data = data.substr(0, kMost);
    variable(static_cast<std::uint32_t>(data.size()));
    bytes_ += data;
}

void SmfWriter::channel(int tick, int status, int channel, int first, int second) {
    advance(tick);
    byte(status | channel);
    byte(first);
    byte(second);
}

void SmfWriter::program(int tick, int channel, int program) {
    constexpr int kProgramChange = 0xC0;
    advance(tick);
    byte(kProgramChange | channel);
    byte(program);
}

void SmfWriter::endTrack(int tick) {
    meta(tick, Meta::endOfTrack, {});
    replace(trackBegin_ - kSizeOfSize, static_cast<std::uint32_t>(bytes_.size() - trackBegin_), kSizeOfSize);
}

}  // namespace rovescio::playback
