// How one score goes through the program, and the choice between one score, several, row forms, --info
// and validate.
#include "cli/program.h"

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/batch.h"
#include "cli/cancel.h"
#include "cli/foreign_formats.h"
#include "cli/installation.h"
#include "cli/memory.h"
#include "cli/messages.h"
#include "cli/options.h"
#include "cli/output_path.h"
#include "cli/outputs.h"
#include "cli/playback_run.h"
#include "cli/proof.h"
#include "cli/result_names.h"
#include "cli/row_forms.h"
#include "cli/score_bytes.h"
#include "cli/score_info.h"
#include "cli/selection.h"
#include "cli/transformation_run.h"
#include "cli/validate_command.h"
#include "musicxml/score_file.h"
#include "playback/midi_input.h"

namespace rovescio::cli {

namespace {

using engine::Document;
using engine::Problem;
using engine::Result;
using musicxml::ScoreFile;

std::string scoreName(const std::string& path) {
    return path == kStandardStream ? "standard input" : path;
}

Result<ScoreFile> readScore(const std::string& path, std::size_t maximumBytes, Document& document) {
    Result<musicxml::Bytes> bytes = readScoreBytes(path, maximumBytes);
    if (!bytes) return bytes.problem();
    musicxml::ReadOptions options;
    options.maxBytes = maximumBytes;
    const std::string sample = formatSample(bytes->view());
    Result<ScoreFile> score = ScoreFile::read(std::move(*bytes), scoreName(path), document, options);
    if (score) return score;
    const std::optional<Problem> foreign = foreignFormat(sample, scoreName(path));
    return foreign ? Result<ScoreFile>(*foreign) : Result<ScoreFile>(score.problem());
}

ExitCode fail(ExitCode code, const Problem& problem) {
    if (memoryIsShort()) {
        say(memoryProblem());
        return ExitCode::refused;
    }
    if (!problem.message.empty()) say(problem);
    return code;
}

ExitCode showInfo(const Options& options) {
    ExitCode code = ExitCode::ok;
    for (const std::string& path : options.scores) {
        Document document;
        const Result<ScoreFile> score = readScore(path, options.maximumBytes, document);
        if (!score) {
            code = fail(ExitCode::badInput, score.problem());
            continue;
        }
        if (!show(scoreInfo(scoreName(path), document))) return ExitCode::badOutput;
    }
    return code;
}

// The same, for a problem that does not say which score it is about.
ExitCode failScore(ExitCode code, Problem problem, const std::string& path) {
    if (problem.file.empty() && !problem.message.empty()) problem.file = scoreName(path);
    return fail(code, problem);
}

void summarise(const Options& options, const TransformationOutcome& outcome, const Selection& selection) {
    std::string notes = counted(outcome.notesSelected, "note");
    if (outcome.notesChanged < outcome.notesSelected)
        notes = std::to_string(outcome.notesChanged) + " of " + notes;
    say((options.transformation.isTransposition() ? "transposed " : "changed ") + notes + " in " +
        selection.description + " -> " + outputName(options.output));
}

// Everything that a score needs around it while it is worked on; found before any work begins.
struct Surroundings {
    RunOptions run;
    std::optional<PlaybackRun> playback;
    std::shared_ptr<playback::MidiInput> instrument;
};

RunOptions runOptions(const Options& options, const Installation& installation) {
    return {.engineBundle = installation.engineBundle,
            .pluginBundle = options.plugin.empty() ? installation.pluginBundle : options.plugin,
            .trace = options.trace,
            .quiet = options.quiet,
            .faults = options.faults,
            .check = options.check,
            .playback = options.wantsPlayback()};
}

// The code says what is missing, after a message.
ExitCode prepare(const Options& options, const Installation& installation, Surroundings& around) {
    if (!options.output.empty()) {
        const Result<OutputPath> target = findOutput(options.output);
        if (!target) return fail(ExitCode::badOutput, target.problem());
    }
    around.run = runOptions(options, installation);
    if (options.wantsPlayback()) {
        Result<PlaybackRun> run = PlaybackRun::prepare(options);
        if (!run) return fail(ExitCode::badOutput, run.problem());
        around.playback = std::move(*run);
    }
    if (options.transformation.inversion && options.transformation.inversion->axisIsPlayed) {
        Result<playback::MidiInput> input = playback::MidiInput::open(options.midiPort);
        if (!input) return fail(ExitCode::badInput, input.problem());
        around.instrument = std::make_shared<playback::MidiInput>(std::move(*input));
        around.run.midiInput = [instrument = around.instrument] {
            say("play the axis on " + instrument->port());
            return instrument->waitForNote([] { return DeferredCancel::requested(); });
        };
    }
    return ExitCode::ok;
}

// Writes what is wanted and says what was done.
ExitCode finishScore(const Options& options, const ScoreFile& score, const Document& document,
                     const Selection& selection, const TransformationOutcome& outcome, Surroundings& around) {
    const std::string& path = options.scores.front();
    std::vector<std::string> notices = score.notices();
    notices.insert(notices.end(), outcome.notices.begin(), outcome.notices.end());
    std::optional<musicxml::WrittenFile> written;
    if (!options.output.empty()) {
        Result<musicxml::WrittenFile> result = score.write(document, containerFor(options.output));
        if (!result) return failScore(ExitCode::refused, result.problem(), path);
        written = std::move(*result);
        notices.insert(notices.end(), written->notices().begin(), written->notices().end());
    }
    Proof proof(score, document, written);
    std::vector<Output> outputs;
    if (written) outputs.push_back({options.output, [&](const auto& sink) { return proof.writeTo(sink); }});
    if (around.playback) {
        const Result<engine::Done> made =
            around.playback->make(document, score.performance(), *outcome.playback, selection);
        if (!made) return fail(ExitCode::badOutput, made.problem());
        if (std::optional<Output> output = around.playback->output()) outputs.push_back(std::move(*output));
    }
    const Result<engine::Done> stored = writeOutputs(outputs, [&] { return proof.fault(); });
    if (!stored) {
        return fail(proof.fault() ? proof.code() : ExitCode::badOutput, stored.problem());
    }
    for (const std::string& notice : notices) say(notice);
    if (!options.quiet && written) summarise(options, outcome, selection);
    return around.playback ? around.playback->play(options.quiet) : ExitCode::ok;
}

// Shows what the check found; the exit status says whether that was anything.
ExitCode showCheck(const TransformationOutcome& outcome, const Selection& selection) {
    const std::string result = !outcome.findings.empty()   ? outcome.findings
                               : outcome.obstacles.empty() ? "nothing stands in the way of a retrograde"
                                                           : "some durations are wrong";
    std::vector<std::string> lines = {selection.description + ": " + result};
    lines.insert(lines.end(), outcome.obstacles.begin(), outcome.obstacles.end());
    if (!show(lines)) return ExitCode::badOutput;
    return outcome.findings.empty() && outcome.obstacles.empty() ? ExitCode::ok : ExitCode::refused;
}

ExitCode workOnScore(const Options& options, const Installation& installation) {
    Surroundings around;
    if (const ExitCode code = prepare(options, installation, around); code != ExitCode::ok) return code;
    const std::string& path = options.scores.front();
    Document document;
    const Result<ScoreFile> score = readScore(path, options.maximumBytes, document);
    if (!score) return fail(ExitCode::badInput, score.problem());
    const Result<Selection> selection = select(document, options.selection);
    if (!selection) return failScore(ExitCode::refused, selection.problem(), path);
    const TransformationOutcome outcome =
        transform(document, selection.value(), options.transformation, around.run);
    if (outcome.code == ExitCode::refused) return failScore(outcome.code, outcome.problem, path);
    if (outcome.code != ExitCode::ok) return fail(outcome.code, outcome.problem);
    if (options.check) return showCheck(outcome, selection.value());
    return finishScore(options, score.value(), document, selection.value(), outcome, around);
}

ExitCode makeRowForms(const Options& options, const Installation& installation) {
    const Result<Row> row = parseRow(options.row);
    if (!row) return fail(ExitCode::usage, row.problem());
    const Result<OutputPath> target = findOutput(options.output);
    if (!target) return fail(ExitCode::badOutput, target.problem());
    const RowForms forms =
        rowForms(row.value(), containerFor(options.output), runOptions(options, installation));
    if (forms.code != ExitCode::ok) return fail(forms.code, forms.problem);
    const Result<engine::Done> stored =
        writeOutputs({{options.output, [&](const auto& sink) { return sink(forms.bytes); }}});
    if (!stored) return fail(ExitCode::badOutput, stored.problem());
    if (!options.quiet) {
        say("wrote " + counted(forms.count, "form") + " of the row -> " + outputName(options.output));
    }
    return ExitCode::ok;
}

}  // namespace

int run(int argc, char** argv) {
    watchMemory();
    watchSignals();
    const Installation installation = findInstallation(argv[0]);
    if (argc > 1 && std::string_view(argv[1]) == "validate") {
        return static_cast<int>(validate(argc - 1, argv + 1, installation.engineBundle));
    }
    const auto parsed = parseOptions(argc, argv);
    if (const auto* code = std::get_if<ExitCode>(&parsed)) return static_cast<int>(*code);
    const auto& options = std::get<Options>(parsed);
    ExitCode code = ExitCode::ok;
    if (options.info) {
        code = showInfo(options);
    } else if (!options.row.empty()) {
        code = makeRowForms(options, installation);
    } else if (!options.outputFolder.empty()) {
        code = runBatch(options, installation.program);
    } else {
        code = workOnScore(options, installation);
    }
    return static_cast<int>(code);
}

}  // namespace rovescio::cli
