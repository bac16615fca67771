// The way of one score through the program, and the choice between one, several, --info and validate.
#include "cli/program.h"

#include <filesystem>
#include <iostream>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/batch.h"
#include "cli/cancel.h"
#include "cli/installation.h"
#include "cli/messages.h"
#include "cli/options.h"
#include "cli/score_bytes.h"
#include "cli/score_info.h"
#include "cli/selection.h"
#include "cli/transformation_run.h"
#include "cli/validate_command.h"
#include "musicxml/score_file.h"

namespace rovescio::cli {

namespace {

using engine::Document;
using engine::Problem;
using engine::Result;
using musicxml::Container;
using musicxml::ScoreFile;

std::string scoreName(const std::string& path) {
    return path == kStandardStream ? "standard input" : path;
}

Result<ScoreFile> readScore(const std::string& path, std::size_t maximumBytes, Document& document) {
    Result<std::string> bytes = readScoreBytes(path, maximumBytes);
    if (!bytes) return bytes.problem();
    musicxml::ReadOptions options;
    options.maxBytes = maximumBytes;
    return ScoreFile::read(std::move(*bytes), scoreName(path), document, options);
}

ExitCode showInfo(const Options& options) {
    ExitCode code = ExitCode::ok;
    for (const std::string& path : options.scores) {
        Document document;
        const Result<ScoreFile> score = readScore(path, options.maximumBytes, document);
        if (!score) {
            say(score.problem());
            code = ExitCode::badInput;
            continue;
        }
        std::cout << scoreInfo(scoreName(path), document);
    }
    std::cout.flush();
    if (!std::cout) {
        say("standard output cannot be written");
        return ExitCode::badOutput;
    }
    return code;
}

Container containerFor(const std::string& path) {
    return std::filesystem::path(path).extension() == ".mxl" ? Container::compressed : Container::plain;
}

ExitCode fail(ExitCode code, const Problem& problem) {
    if (!problem.message.empty()) say(problem);
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
        selection.description + " -> " +
        (options.output == kStandardStream ? "standard output" : options.output));
}

ExitCode transformScore(const Options& options, const Installation& installation) {
    const std::string& path = options.scores.front();
    const Result<engine::Done> target = checkTarget(options.output);
    if (!target) return fail(ExitCode::badOutput, target.problem());

    Document document;
    Result<ScoreFile> score = readScore(path, options.maximumBytes, document);
    if (!score) return fail(ExitCode::badInput, score.problem());
    const Result<Selection> selection = select(document, options.selection);
    if (!selection) return failScore(ExitCode::refused, selection.problem(), path);

    const RunOptions run{.engineBundle = installation.engineBundle,
                         .pluginBundle = options.plugin.empty() ? installation.pluginBundle : options.plugin,
                         .trace = options.trace,
                         .quiet = options.quiet,
                         .faults = options.faults};
    const TransformationOutcome outcome = transform(document, selection.value(), options.transformation, run);
    if (outcome.code == ExitCode::refused) return failScore(outcome.code, outcome.problem, path);
    if (outcome.code != ExitCode::ok) return fail(outcome.code, outcome.problem);

    const auto written = score->write(document, containerFor(options.output));
    if (!written) return failScore(ExitCode::refused, written.problem(), path);
    const Result<engine::Done> stored = writeScoreBytes(
        options.output, [&](const musicxml::ByteSink& sink) { return written.value().writeTo(sink); });
    if (!stored) return fail(ExitCode::badOutput, stored.problem());

    for (const std::string& notice : score->notices()) say(notice);
    for (const std::string& notice : written.value().notices()) say(notice);
    if (!options.quiet) summarise(options, outcome, selection.value());
    return ExitCode::ok;
}

}  // namespace

int run(int argc, char** argv) {
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
    } else if (!options.outputFolder.empty()) {
        code = runBatch(options, installation.program);
    } else {
        code = transformScore(options, installation);
    }
    return static_cast<int>(code);
}

}  // namespace rovescio::cli
