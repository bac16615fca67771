// Definition and checks of the command line.
#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <iostream>
#include <string_view>

#include "cli/messages.h"
#include "cli/output_path.h"
#include "cli/result_names.h"
#include "cli/selection_request.h"
#include "cli/transformation_options.h"

namespace rovescio::cli {

namespace {

using engine::Result;
using run::MeasureRanges;
using run::NumberRuns;
using run::PlannedFault;

constexpr std::size_t kDefaultMebibytes = 256;
constexpr std::size_t kMebibyte = std::size_t{1} << 20;
constexpr std::size_t kMostMebibytes = 4095;

constexpr const char* kFooter = R"(Examples:
  rovescio song.musicxml --transpose "up minor third" -o song-up.musicxml
  rovescio song.mxl --transpose m-3 --measures 3-10 --staves 1-2 -o new.mxl
  rovescio song.musicxml --semitones 5 --measures 3:2-10:1.5 -o new.musicxml
  rovescio - --steps 2 -o - < song.musicxml > new.musicxml
  rovescio song.musicxml --invert chromatic --axis "B-flat 3" -o mirrored.musicxml
  rovescio scores/*.mxl --transpose "down P5" --out-dir transposed
  rovescio song.musicxml --measures 5-8 --play
  rovescio song.musicxml --octaves -1 --midi low.mid -o low.musicxml
  rovescio --row-forms "0 11 3 4 8 7 9 5 6 1 2 10" -o forms.musicxml
  rovescio validate Other.bundle     checks a plug-in; see rovescio validate --help

Exit codes:
  0 done   1 could not be applied to this music   2 wrong command line
  3 score cannot be read, or no MIDI port   4 result cannot be written or played
  5 installation damaged   70 the plug-in broke a rule, or the result is not sound
  130 cancelled)";

// Help in which each option shows its value's name but not the checks behind it.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_option_opts(const CLI::Option* option) const override {
        const std::string type = option->get_type_name();
        return type.empty() ? "" : " " + type;
    }
};

// A check that stays out of the help.
template <class Number>
CLI::Validator range(Number lowest, Number highest) {
    return CLI::Range(lowest, highest).description("");
}

// The options as they are written, before they are understood.
struct RawOptions {
    TransformationTexts transformation;
    std::string measures;
    std::string staves;
    std::string layers;
    std::size_t mebibytes = kDefaultMebibytes;
    std::vector<std::string> faults;
};

void defineActions(CLI::App& app, Options& options, RawOptions& raw) {
    const char* what = "What to do";
    app.add_option("SCORE", options.scores, "MusicXML files (.musicxml, .xml, .mxl); - is standard input")
        ->type_name("");
    defineTransformations(app, what, raw.transformation);
    app.add_flag("--check", options.check,
                 "Report what stands in the way of a retrograde, and where; change nothing")
        ->group(what);
    app.add_flag("--info", options.info, "Show staves, measures, keys and layers, and change nothing")
        ->group(what);
    app.add_option("--row-forms", options.row,
                   "Write all forms of a twelve-note row, given as numbers 0 to 11 or note names")
        ->type_name("ROW")
        ->group(what);
    app.add_flag("--play", options.play, "Play the music through FluidSynth, as it is after all changes")
        ->group(what);
}

void definePlaces(CLI::App& app, RawOptions& raw) {
    const char* where = "Where (default: everywhere)";
    app.add_option("-m,--measures", raw.measures,
                   "By printed number: 7, 3-10, 3- or several: 1-4,9-12; with "
                   "beats 3:2-10:1.5; #5 is the fifth")
        ->type_name("RANGE")
        ->group(where);
    app.add_option("-s,--staves", raw.staves, "From the top: 1-2 or 1,3-4")->type_name("LIST")->group(where);
    app.add_option("-l,--layers", raw.layers, "Layers of each staff, 1 to 4")
        ->type_name("LIST")
        ->group(where);
}

void defineFiles(CLI::App& app, Options& options, RawOptions& raw) {
    const char* files = "Files";
    auto* output =
        app.add_option("-o,--output", options.output, "The result; .mxl is compressed, - is standard output")
            ->type_name("FILE")
            ->group(files);
    app.add_option("--midi", options.midiFile, "The music as a MIDI file; - is standard output")
        ->type_name("FILE")
        ->group(files);
    app.add_option("--out-dir", options.outputFolder, "Folder for the results of several scores")
        ->type_name("FOLDER")
        ->excludes(output)
        ->group(files);
    app.add_option("-j,--jobs", options.jobs, "Scores processed at a time (default: one per processor)")
        ->type_name("N")
        ->check(range(1U, 1024U))
        ->group(files);
    app.add_option(
           "--max-size", raw.mebibytes,
           "Largest score accepted, in MiB unpacked (default: " + std::to_string(kDefaultMebibytes) + ")")
        ->type_name("MIB")
        ->check(range(std::size_t{1}, kMostMebibytes))
        ->group(files);
}

void defineMore(CLI::App& app, Options& options, RawOptions& raw) {
    const char* more = "More";
    app.add_option("--midi-port", options.midiPort, "Where --axis midi listens: a port's name or part of it")
        ->type_name("NAME")
        ->group(more);
    app.add_option("--plugin", options.plugin, "Another plug-in bundle")->type_name("BUNDLE")->group(more);
    app.add_flag("--trace", options.trace, "Print every call of the host's functions")->group(more);
    app.add_option("--fail", raw.faults, "Make the N-th call of a host function fail; for developers")
        ->type_name("FUNCTION:N")
        ->expected(1)
        ->take_all()
        ->group(more);
    app.add_flag("-q,--quiet", options.quiet, "No progress and no summary")->group(more);
    app.set_version_flag("--version", "rovescio " ROVESCIO_VERSION, "Print the version")->group(more);
    app.set_help_flag("-h,--help", "Print this help")->group(more);
}

// In the order of the help.
void define(CLI::App& app, Options& options, RawOptions& raw) {
    defineActions(app, options, raw);
    definePlaces(app, raw);
    defineFiles(app, options, raw);
    defineMore(app, options, raw);
}

Result<PlannedFault> parseFault(const std::string& text) {
    const std::size_t colon = text.find(':');
    const engine::HostFunction function = engine::hostFunctionByName(text.substr(0, colon));
    std::uint64_t call = 0;
    if (colon != std::string::npos) {
        const char* end = text.data() + text.size();
        const auto parsed = std::from_chars(text.data() + colon + 1, end, call);
        if (parsed.ec != std::errc() || parsed.ptr != end) call = 0;
    }
    if (function == engine::HostFunction::count || call == 0) {
        return problemWith("--fail \"" + text + "\" is not a host function and call number",
                           "Write the function's name and a count from 1, such as SX_LoadTGF:3");
    }
    return PlannedFault(function, call);
}

// Turns the texts into what they mean.
Result<engine::Done> understand(const RawOptions& raw, Options& options) {
    const Result<dialogs::Transformation> transformation = understandTransformation(raw.transformation);
    if (!transformation) return transformation.problem();
    options.transformation = transformation.value();
    if (!raw.measures.empty()) {
        const Result<MeasureRanges> measures = parseMeasures(raw.measures);
        if (!measures) return measures.problem();
        options.selection.measures = measures.value();
    }
    if (!raw.staves.empty()) {
        const Result<NumberRuns> staves = parseNumberRuns(raw.staves, "staves");
        if (!staves) return staves.problem();
        options.selection.staves = staves.value();
    }
    if (!raw.layers.empty()) {
        const Result<NumberRuns> layers = parseNumberRuns(raw.layers, "layers");
        if (!layers) return layers.problem();
        if (layers.value().back().second > engine::kMaxLayers) {
            return problemWith("--layers \"" + raw.layers + "\": a staff has layers 1 to 4",
                               "Name some of these");
        }
        options.selection.layers = layers.value();
    }
    for (const std::string& text : raw.faults) {
        const Result<PlannedFault> fault = parseFault(text);
        if (!fault) return fault.problem();
        options.faults.push_back(fault.value());
    }
    options.maximumBytes = raw.mebibytes * kMebibyte;
    return engine::Done{};
}

// The same for playback.
Result<engine::Done> checkPlayback(const Options& options) {
    if (!options.wantsPlayback()) return engine::Done{};
    if (options.scores.size() > 1 || !options.outputFolder.empty()) {
        return problemWith("--play and --midi are for one score", "Leave out the other scores and --out-dir");
    }
    if (options.selection.measures.size() > 1) {
        return problemWith("--play and --midi take one range of measures",
                           "Name one range, or play each range from the result");
    }
    if (options.midiFile.empty()) return engine::Done{};
    if (!options.output.empty() && sameOutput(options.midiFile, options.output)) {
        return problemWith(
            "--midi " + options.midiFile + " and -o " + options.output + " lead to the same place",
            "Name two files");
    }
    if (isOutputOnto(options.midiFile, options.scores.front())) {
        return problemWith("--midi " + options.midiFile + " would replace the score itself",
                           "Name another file, such as one that ends in .mid");
    }
    return checkMidiName(options.midiFile);
}

// The same for row forms, which need no score.
Result<engine::Done> checkRowForms(const Options& options) {
    const bool alone = options.scores.empty() && options.transformation.stepCount() == 0 && !options.info &&
                       !options.wantsPlayback() && options.outputFolder.empty() &&
                       !options.selection.isGiven();
    if (!alone) {
        return problemWith("--row-forms makes a new score",
                           "Use it with -o only; play or change its result afterwards");
    }
    if (options.output.empty()) {
        return problemWith("the result needs a name", "Give it with -o, or - for standard output");
    }
    return engine::Done{};
}

// The same for the axis of an inversion that is played.
Result<engine::Done> checkMidiInput(const Options& options) {
    const auto& inversion = options.transformation.inversion;
    const bool listens = inversion && inversion->axisIsPlayed;
    if (!listens && !options.midiPort.empty()) {
        return problemWith("--midi-port is for --axis midi",
                           "Leave it out, or take the axis from an instrument with --axis midi");
    }
    if (listens && (options.scores.size() > 1 || !options.outputFolder.empty())) {
        return problemWith("--axis midi is for one score",
                           "For several scores write the pitch, such as --axis E4");
    }
    return engine::Done{};
}

// Finds combinations that make no sense.
Result<engine::Done> checkTogether(const Options& options) {
    if (Result<engine::Done> name = checkScoreName(options.output, options.scores); !name) return name;
    if (!options.row.empty()) return checkRowForms(options);
    const bool several = options.scores.size() > 1;
    const bool nothing = options.transformation.stepCount() == 0;
    if (options.scores.empty()) {
        return problemWith("SCORE is required", "Name a MusicXML file, or - for standard input");
    }
    if (options.info) {
        if (!nothing || options.wantsPlayback() || !options.output.empty() || !options.outputFolder.empty()) {
            return problemWith("--info shows scores and changes nothing", "Leave out the other options");
        }
        return engine::Done{};
    }
    if (options.check) {
        const bool changes = options.transformation.stepCount() > (options.transformation.retrograde ? 1 : 0);
        if (changes || several || options.wantsPlayback() || !options.output.empty() ||
            !options.outputFolder.empty()) {
            return problemWith("--check looks at one score and changes nothing",
                               "Leave out the other options");
        }
        return engine::Done{};
    }
    for (const auto check : {checkPlayback, checkMidiInput}) {
        if (const Result<engine::Done> checked = check(options); !checked) return checked.problem();
    }
    if (nothing && options.wantsPlayback()) {
        if (options.output.empty()) return engine::Done{};
        return problemWith("there is nothing to change for -o",
                           "Say what to do with the music, or leave out -o to play it as it is");
    }
    if (nothing) {
        return problemWith(
            "there is nothing to do",
            "Say it with --retrograde, --transpose, --semitones, --steps, --octaves, --invert, "
            "--invert-chords, --notes or --remove-ties, hear it with --play or --midi, or "
            "look with --info");
    }
    if (several && options.outputFolder.empty()) {
        return problemWith("several scores need a folder for their results", "Name one with --out-dir");
    }
    if (options.output.empty() && options.outputFolder.empty() && !options.wantsPlayback()) {
        return problemWith("the result needs a name", "Give it with -o, or - for standard output");
    }
    if (!options.outputFolder.empty()) {
        for (const std::string& score : options.scores) {
            if (score == kStandardStream) {
                return problemWith("a score from standard input has no name for a file in a folder",
                                   "Use -o for it");
            }
        }
    }
    return engine::Done{};
}

// The arguments that every process of a batch gets as well.
std::vector<std::string> argumentsToPassOn(const Options& options, const RawOptions& raw) {
    std::vector<std::string> passed = argumentsOf(raw.transformation);
    const auto pass = [&](const std::string& name, const std::string& value) {
        if (!value.empty()) passed.push_back(name + "=" + value);
    };
    pass("--measures", raw.measures);
    pass("--staves", raw.staves);
    pass("--layers", raw.layers);
    pass("--max-size", std::to_string(raw.mebibytes));
    pass("--plugin", options.plugin);
    for (const std::string& fault : raw.faults) pass("--fail", fault);
    if (options.trace) passed.emplace_back("--trace");
    return passed;
}

}  // namespace

std::variant<Options, ExitCode> parseOptions(int argc, const char* const* argv) {
    CLI::App app("Transposition, inversion, retrograde and playback of selected music in MusicXML scores.",
                 "rovescio");
    app.formatter(std::make_shared<HelpFormatter>());
    app.get_formatter()->column_width(28);
    app.footer(kFooter);
    Options options;
    RawOptions raw;
    define(app, options, raw);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        app.exit(asked);
        return ExitCode::ok;
    } catch (const CLI::ParseError& error) {
        say(std::string(error.what()) + ". See rovescio --help");
        return ExitCode::usage;
    }
    Result<engine::Done> understood = understand(raw, options);
    if (understood) understood = checkTogether(options);
    if (!understood) {
        say(understood.problem());
        return ExitCode::usage;
    }
    options.passedOn = argumentsToPassOn(options, raw);
    return options;
}

}  // namespace rovescio::cli
