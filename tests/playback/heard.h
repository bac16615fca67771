// What a MIDI file lets hear, read independently of the library that wrote it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace rovescio::test {

struct HeardNote {
    double start = 0;  // quarters
    double length = 0;
    int channel = 0;
    int key = 0;
    int velocity = 0;
};

struct HeardTrack {
    std::string name;
    std::vector<HeardNote> notes;
    std::vector<std::string> events;  // meta events and programs: "1.5 tempo 500000"
};

struct HeardFile {
    int format = -1;
    int ticksPerQuarter = 0;
    std::vector<HeardTrack> tracks;
    double end = 0;  // of the last track, quarters

    // "0+1:60" for each note of the tracks, by start and key; with velocities "0+1:60*80".
    [[nodiscard]] std::string notes(bool withVelocity = false) const;
};

// Throws std::runtime_error where the bytes break the format: chunk lengths, notes left on, a missing end.
HeardFile hear(const std::string& midiFile);

}  // namespace rovescio::test
