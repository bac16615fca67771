// The MIDI file, and the synthesiser if it is asked for.
#include "cli/playback_run.h"

#include "cli/messages.h"
#include "cli/output_path.h"
#include "playback/midi_file.h"

namespace rovescio::cli {

using engine::Done;
using engine::Result;

Result<PlaybackRun> PlaybackRun::prepare(const Options& options) {
    if (!options.midiFile.empty()) {
        if (const auto target = findOutput(options.midiFile); !target) return target.problem();
    }
    std::optional<Player> player;
    if (options.play) {
        Result<Player> found = Player::find();
        if (!found) return found.problem();
        player = std::move(*found);
    }
    return PlaybackRun(options.midiFile, std::move(player));
}

Result<Done> PlaybackRun::make(const run::OpenScore& score, const engine::PlaybackRequest& request,
                               const run::Selection& selection) {
    Result<playback::MidiFile> file = score.midiFile(request, selection);
    if (!file) return file.problem();
    bytes_ = std::move(file->bytes);
    notices_ = std::move(file->notices);
    heard_ = counted(file->notes, "note") + " in " + selection.description;
    return Done{};
}

std::optional<Output> PlaybackRun::output() const {
    if (midiFile_.empty()) return std::nullopt;
    return Output{midiFile_, [this](const auto& sink) { return sink(bytes_); }};
}

ExitCode PlaybackRun::play(bool quiet) const {
    for (const std::string& notice : notices_) say(notice);
    if (!quiet && !midiFile_.empty()) {
        say("MIDI of " + heard_ + " -> " + outputName(midiFile_));
    }
    if (!player_) return ExitCode::ok;
    if (!quiet) say("playing " + heard_ + "; Ctrl-C stops");
    const Result<Player::End> end = player_->play(bytes_);
    if (!end) {
        say(end.problem());
        return ExitCode::badOutput;
    }
    return end.value() == Player::End::stopped ? ExitCode::cancelled : ExitCode::ok;
}

}  // namespace rovescio::cli
