// Standard MIDI Files of format 1, event by event.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace rovescio::playback {

// Meta events, by their numbers in the file.
enum class Meta : std::uint8_t {
    trackName = 0x03,
    endOfTrack = 0x2F,
    tempo = 0x51,
    timeSignature = 0x58,
    keySignature = 0x59
};

// Writes straight into the bytes of the file, so that its cost is that of the events.
class SmfWriter {
  public:
    // Ticks from one event to the next, which have 28 bits.
    static constexpr std::int64_t kMaxTicks = 0x0FFFFFFF;
    static constexpr int kMaxTicksPerQuarter = 0x7FFF;

    explicit SmfWriter(int ticksPerQuarter);

    // The events that follow go into a new track; each at or after the one before it.
    void beginTrack();
    void meta(int tick, Meta kind, std::string_view data);
    void channel(int tick, int status, int channel, int first, int second);
    // A message with one data byte.
    void program(int tick, int channel, int program);
    void endTrack(int tick);

    // The file of the tracks that have ended.
    [[nodiscard]] std::string take() { return std::move(bytes_); }

  private:
    void advance(int tick);
    void byte(int value) { bytes_ += static_cast<char>(value); }
    void number(std::uint32_t value, int size);
    void variable(std::uint32_t value);
    void replace(std::size_t place, std::uint32_t value, int size);

    std::string bytes_;
    std::size_t trackBegin_ = 0;  // after the head of the track
    int tick_ = 0;                // of the last event in the track
    std::uint32_t tracks_ = 0;
};

}  // namespace rovescio::playback
