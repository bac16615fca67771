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
#include "cli/row_text.h"
#include "cli/score_bytes.h"
#include "cli/score_info.h"
#include "cli/terminal_supervision.h"
#include "cli/validate_command.h"
#include "engine/interface/plugin_bundle.h"
#include "musicxml/score_file.h"
#include "playback/midi_input.h"
#include "run/open_score.h"
#include "run/plug_in.h"
#include "run/row_forms.h"

namespace rovescio::cli {

namespace {

using engine::Problem;
using engine::Result;
using run::OpenScore;
using run::PlugIn;
using run::Report;
using run::Selection;

std::string scoreName(const std::string& path) {
    return path == kStandardStream ? "standard input" : path;
}

Result<std::unique_ptr<OpenScore>> readScore(const std::string& path, std::size_t maximumBytes) {
    Result<musicxml::Bytes> bytes = readScoreBytes(path, maximumBytes);
    if (!bytes) return bytes.problem();
    musicxml::ReadOptions options;
    options.maxBytes = maximumBytes;
    const std::string sample = formatSample(bytes->view());
    Result<std::unique_ptr<OpenScore>> score = OpenScore::open(std::move(*bytes), scoreName(path), options);
    if (score) return score;
    const std::optional<Problem> foreign = foreignFormat(sample, scoreName(path));
    return foreign ? *foreign : score.problem();
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
        const Result<std::unique_ptr<OpenScore>> score = readScore(path, options.maximumBytes);
        if (!score) {
            code = fail(ExitCode::badInput, score.problem());
            continue;
        }
        if (!show(scoreInfo(scoreName(path), score.value()->document()))) return ExitCode::badOutput;
    }
    return code;
}

// The same, for a problem that does not say which score it is about.
ExitCode failScore(ExitCode code, Problem problem, const std::string& path) {
    if (problem.file.empty() && !problem.message.empty()) problem.file = scoreName(path);
    return fail(code, problem);
}

void summarise(const Options& options, const Report& report, const Selection& selection) {
    std::string notes = counted(report.notesSelected, "note");
    if (report.notesChanged < report.notesSelected)
        notes = std::to_string(report.notesChanged) + " of " + notes;
    say((options.transformation.isTransposition() ? "transposed " : "changed ") + notes + " in " +
        selection.description + " -> " + outputName(options.output));
}

// Everything that a score needs around it while it is worked on; found before any work begins.
struct Surroundings {
    std::optional<PlaybackRun> playback;
    std::optional<playback::MidiInput> instrument;
};

// The code says what is missing, after a message.
ExitCode prepare(const Options& options, Surroundings& around) {
    if (!options.output.empty()) {
        const Result<OutputPath> target = findOutput(options.output);
        if (!target) return fail(ExitCode::badOutput, target.problem());
    }
    if (options.wantsPlayback()) {
        Result<PlaybackRun> run = PlaybackRun::prepare(options);
        if (!run) return fail(ExitCode::badOutput, run.problem());
        around.playback = std::move(*run);
    }
    if (options.transformation.inversion && options.transformation.inversion->axisIsPlayed) {
        Result<playback::MidiInput> input = playback::MidiInput::open(options.midiPort);
        if (!input) return fail(ExitCode::badInput, input.problem());
        around.instrument = std::move(*input);
    }
    return ExitCode::ok;
}

// Writes what is wanted and says what was done.
ExitCode finishScore(const Options& options, const OpenScore& score, const Selection& selection,
                     const Report& report, Surroundings& around) {
    const std::string& path = options.scores.front();
    std::vector<std::string> notices = score.notices();
    notices.insert(notices.end(), report.notices.begin(), report.notices.end());
    std::optional<musicxml::WrittenFile> written;
    if (!options.output.empty()) {
        Result<musicxml::WrittenFile> result = score.write(containerFor(options.output));
        if (!result) return failScore(ExitCode::refused, result.problem(), path);
        written = std::move(*result);
        notices.insert(notices.end(), written->notices().begin(), written->notices().end());
    }
    Proof proof(score.file(), score.document(), written);
    std::vector<Output> outputs;
    if (written) outputs.push_back({options.output, [&](const auto& sink) { return proof.writeTo(sink); }});
    if (around.playback) {
        const Result<engine::Done> made = around.playback->make(score, *report.playback, selection);
        if (!made) return fail(ExitCode::badOutput, made.problem());
        if (std::optional<Output> output = around.playback->output()) outputs.push_back(std::move(*output));
    }
    const Result<engine::Done> stored = writeOutputs(outputs, [&] { return proof.fault(); });
    if (!stored) {
        return fail(proof.fault() ? proof.code() : ExitCode::badOutput, stored.problem());
    }
    for (const std::string& notice : notices) say(notice);
    if (!options.quiet && written) summarise(options, report, selection);
    return around.playback ? around.playback->play(options.quiet) : ExitCode::ok;
}

// Shows what the check found; the exit status says whether that was anything.
ExitCode showCheck(const Report& report, const Selection& selection) {
    const std::string result = !report.findings.empty()   ? report.findings
                               : report.obstacles.empty() ? "nothing stands in the way of a retrograde"
                                                          : "some durations are wrong";
    std::vector<std::string> lines = {selection.description + ": " + result};
    lines.insert(lines.end(), report.obstacles.begin(), report.obstacles.end());
    if (!show(lines)) return ExitCode::badOutput;
    return report.findings.empty() && report.obstacles.empty() ? ExitCode::ok : ExitCode::refused;
}

Result<PlugIn> loadPlugIn(const Options& options, const Installation& installation) {
    const Result<engine::Done> engineReady = engine::registerEngineBundle(installation.engineBundle);
    if (!engineReady) return engineReady.problem();
    return PlugIn::load(options.plugin.empty() ? installation.pluginBundle : options.plugin);
}

Report workWith(const PlugIn& plugIn, const Options& options, OpenScore& score, const Selection& selection,
                Surroundings& around) {
    TerminalSupervision terminal(options.quiet, options.trace, options.faults);
    run::Supervision supervision = terminal.supervise();
    if (around.instrument) {
        supervision.midiInput = [&instrument = *around.instrument] {
            say("play the axis on " + instrument.port());
            return instrument.waitForNote([] { return DeferredCancel::requested(); });
        };
    }
    const run::Task task = {
        .transformation = options.check ? dialogs::Transformation{} : options.transformation,
        .check = options.check,
        .playback = options.wantsPlayback()};
    Report report = score.work(plugIn, selection, task, supervision);
    terminal.finish(report);
    return report;
}

ExitCode workOnScore(const Options& options, const Installation& installation) {
    Surroundings around;
    if (const ExitCode code = prepare(options, around); code != ExitCode::ok) return code;
    const std::string& path = options.scores.front();
    const Result<std::unique_ptr<OpenScore>> opened = readScore(path, options.maximumBytes);
    if (!opened) return fail(ExitCode::badInput, opened.problem());
    OpenScore& score = *opened.value();
    const Result<Selection> selection = score.select(options.selection);
    if (!selection) return failScore(ExitCode::refused, selection.problem(), path);
    const Result<PlugIn> plugIn = loadPlugIn(options, installation);
    if (!plugIn) return fail(ExitCode::installation, plugIn.problem());
    const Report report = workWith(plugIn.value(), options, score, selection.value(), around);
    const ExitCode code = exitCodeOf(report.outcome);
    if (code == ExitCode::refused) return failScore(code, report.problem, path);
    if (code != ExitCode::ok) return fail(code, report.problem);
    if (options.check) return showCheck(report, selection.value());
    // What the music was before is not asked for again.
    score.forgetSteps();
    return finishScore(options, score, selection.value(), report, around);
}

run::RowForms makeRowForms(const Options& options, const run::Row& row, const PlugIn& plugIn) {
    TerminalSupervision terminal(true, options.trace, options.faults);
    run::RowForms forms = run::rowForms(row, containerFor(options.output), plugIn, terminal.supervise());
    terminal.finish(forms.report);
    return forms;
}

ExitCode writeRowForms(const Options& options, const Installation& installation) {
    const Result<run::Row> row = parseRow(options.row);
    if (!row) return fail(ExitCode::usage, row.problem());
    const Result<OutputPath> target = findOutput(options.output);
    if (!target) return fail(ExitCode::badOutput, target.problem());
    const Result<PlugIn> plugIn = loadPlugIn(options, installation);
    if (!plugIn) return fail(ExitCode::installation, plugIn.problem());
    const run::RowForms forms = makeRowForms(options, row.value(), plugIn.value());
    if (!forms.report.isDone()) return fail(exitCodeOf(forms.report.outcome), forms.report.problem);
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
        code = writeRowForms(options, installation);
    } else if (!options.outputFolder.empty()) {
        code = runBatch(options, installation.program);
    } else {
        code = workOnScore(options, installation);
    }
    return static_cast<int>(code);
}

}  // namespace rovescio::cli
