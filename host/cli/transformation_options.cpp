// Definition and meaning of the options for retrograde, transposition, inversion, accidentals and ties.
#include "cli/transformation_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "cli/interval_names.h"
#include "cli/messages.h"
#include "cli/pitch_names.h"

namespace rovescio::cli {

namespace {

using dialogs::Accidentals;
using dialogs::Inversion;
using dialogs::Transformation;
using dialogs::Transposition;
using engine::Result;

constexpr int kMostSemitones = 120;
constexpr int kMostSteps = 70;
constexpr int kMostOctaves = 10;

constexpr std::array<std::pair<std::string_view, Accidentals>, 5> kAccidentalNames = {
    {{"as-needed", Accidentals::asNeeded},
     {"always", Accidentals::always},
     {"never", Accidentals::never},
     {"automatic", Accidentals::automatic},
     {"in-key", Accidentals::inKey}}};

constexpr const char* kAccidentalsHelp =
    "as-needed: shown by the rules of the measure\n"
    "always: shown at every note\n"
    "never: hidden at every note; pitches stay\n"
    "automatic: as needed, even where set by hand\n"
    "in-key: removed; raised and lowered notes change pitch";

// A range that is checked and stays out of the help.
CLI::Validator upTo(int most) {
    return CLI::Range(-most, most).description("");
}

void defineRetrograde(CLI::App& app, const std::string& group, TransformationTexts& texts) {
    auto* retrograde = app.add_flag("-r,--retrograde", texts.retrograde,
                                    "Write the music in retrograde, from its last note to its first")
                           ->group(group);
    app.add_flag("--mirror-keys", texts.mirrorKeys,
                 "With --retrograde: reverse the order of the key signatures too")
        ->needs(retrograde)
        ->group(group);
    app.add_flag("--mirror-spacing", texts.mirrorSpacing,
                 "With --retrograde: reverse the order of widths and margins too")
        ->needs(retrograde)
        ->group(group);
    app.add_flag("--repair", texts.repair,
                 "With --retrograde: delete the second voices, slurs and hairpins that stand in its way")
        ->needs(retrograde)
        ->group(group);
}

void defineTransposition(CLI::App& app, const std::string& group, TransformationTexts& texts) {
    auto* byName = app.add_option("-t,--transpose", texts.transpose,
                                  "Transpose by an interval: \"up minor third\", \"down P5\", m-3")
                       ->type_name("INTERVAL")
                       ->group(group);
    auto* bySemitone =
        app.add_option("--semitones", texts.semitones, "Transpose by semitones; negative is down")
            ->type_name("N")
            ->check(upTo(kMostSemitones))
            ->group(group);
    auto* byStep = app.add_option("--steps", texts.steps,
                                  "Transpose by steps within the key (a third is 2); negative is down")
                       ->type_name("N")
                       ->check(upTo(kMostSteps))
                       ->group(group);
    byName->excludes(bySemitone)->excludes(byStep);
    bySemitone->excludes(byStep);
    app.add_option("--octaves", texts.octaves, "Octaves further in the same direction, or octaves alone")
        ->type_name("N")
        ->check(upTo(kMostOctaves))
        ->group(group);
    app.add_option("--spelling", texts.spelling,
                   "With --semitones: by minor intervals (flats) or augmented (sharps)")
        ->type_name("sharps|flats")
        ->check(CLI::IsMember({"sharps", "flats"}).description(""))
        ->needs(bySemitone)
        ->group(group);
}

void defineInversion(CLI::App& app, const std::string& group, TransformationTexts& texts) {
    auto* invert = app.add_option("--invert", texts.invert,
                                  "Mirror the music at --axis: within the key, or by semitones")
                       ->type_name("diatonic|chromatic")
                       ->check(CLI::IsMember({"diatonic", "chromatic"}).description(""))
                       ->group(group);
    auto* axis = app.add_option("--axis", texts.axis,
                                "Pitch that is its own mirror: E4, \"B-flat 3\", F#5; or the next "
                                "note played on a MIDI instrument")
                     ->type_name("PITCH|midi")
                     ->needs(invert)
                     ->group(group);
    invert->needs(axis);
    app.add_flag("--simplify", texts.simplify,
                 "With --invert chromatic: simpler names, such as F for E sharp in C major")
        ->needs(invert)
        ->group(group);
    app.add_option("--invert-chords", texts.invertChords,
                   "Move each chord's lowest note above the others, or its highest below")
        ->type_name("up|down")
        ->check(CLI::IsMember({"up", "down"}).description(""))
        ->excludes(invert)
        ->group(group);
}

void defineNotes(CLI::App& app, const std::string& group, TransformationTexts& texts) {
    std::vector<std::string> names;
    names.reserve(kAccidentalNames.size());
    for (const auto& [name, accidentals] : kAccidentalNames) names.emplace_back(name);
    app.add_option("--notes", texts.notes, kAccidentalsHelp)
        ->type_name("ACCIDENTALS")
        ->check(CLI::IsMember(names).description(""))
        ->group(group);
    app.add_flag("--remove-ties", texts.removeTies, "Remove the ties of all notes")->group(group);
}

Result<std::optional<Transposition>> understandTransposition(const TransformationTexts& texts) {
    std::optional<Transposition> result;
    if (!texts.transpose.empty()) {
        Result<Transposition> named = parseInterval(texts.transpose);
        if (!named) return named.problem();
        result = *named;
    } else if (texts.semitones) {
        result = bySemitones(*texts.semitones, texts.spelling == "sharps" ? Transposition::Spelling::sharps
                                                                          : Transposition::Spelling::flats);
    } else if (texts.steps) {
        result = bySteps(*texts.steps);
    } else if (texts.octaves) {
        return std::optional(byOctaves(*texts.octaves));
    }
    if (result) result = withOctaves(*result, texts.octaves.value_or(0));
    return result;
}

Result<std::optional<Inversion>> understandInversion(const TransformationTexts& texts) {
    Inversion result;
    if (!texts.invertChords.empty()) {
        result.kind = texts.invertChords == "up" ? Inversion::Kind::chordsUp : Inversion::Kind::chordsDown;
        return std::optional(result);
    }
    if (texts.invert.empty()) return std::optional<Inversion>();
    result.axisIsPlayed = texts.axis == "midi";
    if (!result.axisIsPlayed) {
        Result<engine::SpelledPitch> axis = parsePitch(texts.axis);
        if (!axis) {
            engine::Problem problem = axis.problem();
            problem.message = "--axis " + problem.message;
            return problem;
        }
        result.axis = *axis;
    }
    result.simplify = texts.simplify;
    if (texts.invert == "chromatic") {
        result.kind = Inversion::Kind::chromatic;
        return std::optional(result);
    }
    if (result.axis.alter != 0) {
        const std::string letter = pitchName({result.axis.step, 0});
        return problemWith(
            "--axis \"" + texts.axis + "\": the axis of a diatonic inversion has no sharp or flat",
            "Write " + letter + " for the note of the key, or use --invert chromatic");
    }
    if (result.simplify) {
        return problemWith("--simplify is for --invert chromatic", "A diatonic inversion spells by the key");
    }
    return std::optional(result);
}

}  // namespace

void defineTransformations(CLI::App& app, const std::string& group, TransformationTexts& texts) {
    defineRetrograde(app, group, texts);
    defineTransposition(app, group, texts);
    defineInversion(app, group, texts);
    defineNotes(app, group, texts);
}

Result<Transformation> understandTransformation(const TransformationTexts& texts) {
    const auto transposition = understandTransposition(texts);
    if (!transposition) return transposition.problem();
    const auto inversion = understandInversion(texts);
    if (!inversion) return inversion.problem();
    std::optional<dialogs::Retrograde> retrograde;
    if (texts.retrograde) {
        retrograde = {
            .mirrorKeys = texts.mirrorKeys, .mirrorSpacing = texts.mirrorSpacing, .repair = texts.repair};
    }
    Transformation result{.retrograde = retrograde,
                          .transposition = transposition.value(),
                          .inversion = inversion.value(),
                          .accidentals = {},
                          .removeTies = texts.removeTies};
    for (const auto& [name, accidentals] : kAccidentalNames) {
        if (name == texts.notes) result.accidentals = accidentals;
    }
    return result;
}

std::vector<std::string> argumentsOf(const TransformationTexts& texts) {
    const auto text = [](const std::optional<int>& number) { return number ? std::to_string(*number) : ""; };
    std::vector<std::string> arguments;
    for (const auto& [name, value] : {std::pair<std::string, std::string>{"--transpose", texts.transpose},
                                      {"--semitones", text(texts.semitones)},
                                      {"--steps", text(texts.steps)},
                                      {"--octaves", text(texts.octaves)},
                                      {"--spelling", texts.spelling},
                                      {"--invert", texts.invert},
                                      {"--axis", texts.axis},
                                      {"--invert-chords", texts.invertChords},
                                      {"--notes", texts.notes}}) {
        if (!value.empty()) arguments.emplace_back(name).append("=").append(value);
    }
    for (const auto& [name, given] : {std::pair{"--retrograde", texts.retrograde},
                                      {"--mirror-keys", texts.mirrorKeys},
                                      {"--mirror-spacing", texts.mirrorSpacing},
                                      {"--repair", texts.repair},
                                      {"--simplify", texts.simplify},
                                      {"--remove-ties", texts.removeTies}}) {
        if (given) arguments.emplace_back(name);
    }
    return arguments;
}

}  // namespace rovescio::cli
