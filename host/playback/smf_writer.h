// Standard MIDI Files of format 1, event by event.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/problem.h"

struct smf_struct;

namespace rovescio::playback {

// Meta events, by their numbers in the file.
enum class Meta : std::uint8_t { trackName = 0x03, tempo = 0x51, timeSignature = 0x58, keySignature = 0x59 };

class SmfWriter {
  public:
    // Ticks from one event to the next, which have 28 bits.
    static constexpr std::int64_t kMaxTicks = 0x0FFFFFFF;
    static constexpr int kMaxTicksPerQuarter = 0x7FFF;

    explicit SmfWriter(int ticksPerQuarter);
    ~SmfWriter();
    SmfWriter(const SmfWriter&) = delete;
    SmfWriter& operator=(const SmfWriter&) = delete;

    // The events that follow go into a new track; each at or after the one before it.
    void beginTrack();
    void meta(int tick, Meta kind, std::string_view data);
    void channel(int tick, int status, int channel, int first, int second);
    // A message with one data byte.
    void program(int tick, int channel, int program);
    void endTrack(int tick);

    // The file so far.
    [[nodiscard]] engine::Result<std::string> bytes();

  private:
    void add(int tick, const std::string& message);

    struct Deleter {
        void operator()(smf_struct* smf) const;
    };
    std::unique_ptr<smf_struct, Deleter> smf_;
    int track_ = 0;  // number of the one being written, from 1
};

}  // namespace rovescio::playback
