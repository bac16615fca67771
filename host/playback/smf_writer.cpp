// The library that writes MIDI files, behind a small interface.
#include "playback/smf_writer.h"

#include <smf.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace rovescio::playback {

namespace {

// A file without a name that goes away by itself.
struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

engine::Problem noRoom(int error) {
    return {.message = std::string("there is no room for a temporary MIDI file: ") + std::strerror(error),
            .file = {},
            .measure = {},
            .remedy = "Make room in the folder for temporary files, or set TMPDIR"};
}

}  // namespace

void SmfWriter::Deleter::operator()(smf_struct* smf) const {
    smf_delete(smf);
}

SmfWriter::SmfWriter(int ticksPerQuarter) : smf_(smf_new()) {
    // Both fail for numbers that cannot be in a file alone.
    [[maybe_unused]] const int failed =
        smf_set_format(smf_.get(), 1) + smf_set_ppqn(smf_.get(), ticksPerQuarter);
}

SmfWriter::~SmfWriter() = default;

void SmfWriter::beginTrack() {
    smf_add_track(smf_.get(), smf_track_new());
    ++track_;
}

void SmfWriter::add(int tick, const std::string& message) {
    smf_event_t* event =
        smf_event_new_from_pointer(const_cast<char*>(message.data()), static_cast<int>(message.size()));
    if (event) smf_track_add_event_pulses(smf_get_track_by_number(smf_.get(), track_), event, tick);
}

void SmfWriter::meta(int tick, Meta kind, std::string_view data) {
    // Texts come from scores; what is longer than the length's one byte tells is cut at a whole character.
    constexpr std::size_t kMost = 127;
    std::size_t size = std::min(data.size(), kMost);
    while (size < data.size() && size > 0 && (static_cast<unsigned char>(data[size]) & 0xC0) == 0x80) --size;
    std::string message{static_cast<char>(0xFF), static_cast<char>(kind), static_cast<char>(size)};
    add(tick, message.append(data.substr(0, size)));
}

void SmfWriter::channel(int tick, int status, int channel, int first, int second) {
    add(tick, {static_cast<char>(status | channel), static_cast<char>(first), static_cast<char>(second)});
}

void SmfWriter::program(int tick, int channel, int program) {
    constexpr int kProgramChange = 0xC0;
    add(tick, {static_cast<char>(kProgramChange | channel), static_cast<char>(program)});
}

void SmfWriter::endTrack(int tick) {
    [[maybe_unused]] const int failed =
        smf_track_add_eot_pulses(smf_get_track_by_number(smf_.get(), track_), tick);
}

engine::Result<std::string> SmfWriter::bytes() {
    // The library writes to names alone.
    const std::unique_ptr<std::FILE, FileCloser> file(std::tmpfile());
    if (!file) return noRoom(errno);
    const std::string name = "/dev/fd/" + std::to_string(fileno(file.get()));
    if (smf_save(smf_.get(), name.c_str()) != 0) return noRoom(errno);
    std::string bytes;
    std::array<char, 1 << 16> piece{};
    std::rewind(file.get());
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get())) {
        bytes.append(piece.data(), count);
    }
    return bytes;
}

}  // namespace rovescio::playback
