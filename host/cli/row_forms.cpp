// Writes the row into every measure and has the plug-in make each measure's form of it.
#include "cli/row_forms.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/interval_names.h"
#include "cli/messages.h"
#include "cli/pitch_names.h"
#include "cli/selection.h"
#include "dialogs/transformation_script.h"
#include "engine/model/document.h"

namespace rovescio::cli {

namespace {

using dialogs::Inversion;
using dialogs::Transformation;
using dialogs::Transposition;
using engine::Document;
using engine::SpelledPitch;

constexpr int kSemitonesOfOctave = 12;

// The names that the numbers stand for.
constexpr std::array<const char*, kRowLength> kNames = {"C",  "C#", "D",  "Eb", "E",  "F",
                                                        "F#", "G",  "Ab", "A",  "Bb", "B"};

// What makes a form out of the row; it is moved to its level afterwards.
struct FormKind {
    const char* name;
    bool inverted;
    bool reversed;
};

constexpr std::array<FormKind, 4> kKinds = {
    {{"P", false, false}, {"I", true, false}, {"R", false, true}, {"RI", true, true}}};

Transformation mirror(const SpelledPitch& axis) {
    Transformation result;
    result.inversion = Inversion{.kind = Inversion::Kind::chromatic, .axis = axis, .simplify = true};
    return result;
}

Transformation shapeOf(const FormKind& kind, const Row& row) {
    Transformation shape = kind.inverted ? mirror(row.front()) : Transformation{};
    if (kind.reversed) shape.retrograde = dialogs::Retrograde{};
    return shape;
}

// --- the score ---

std::string noteText(const SpelledPitch& pitch, std::array<int, 7>& shown) {
    constexpr int kMiddleOctave = 4;
    const auto letter = static_cast<std::size_t>(engine::floorMod(pitch.step, 7));
    std::string text = "<note><pitch><step>" + std::string(1, "CDEFGAB"[letter]) + "</step>";
    if (pitch.alter != 0) text += "<alter>" + std::to_string(pitch.alter) + "</alter>";
    text += "<octave>" + std::to_string(engine::floorDiv(pitch.step, 7) + kMiddleOctave) +
            "</octave></pitch><duration>1</duration><voice>1</voice><type>quarter</type>";
    // An accidental holds for its letter until the measure ends.
    if (std::exchange(shown[letter], pitch.alter) != pitch.alter) {
        const char* sign = pitch.alter < 0 ? "flat" : pitch.alter > 0 ? "sharp" : "natural";
        text += std::string("<accidental>") + sign + "</accidental>";
    }
    return text + "</note>\n";
}

std::string scoreText(const Row& row) {
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE score-partwise PUBLIC \"-//Recordare//DTD MusicXML 4.0 Partwise//EN\" "
        "\"http://www.musicxml.org/dtds/partwise.dtd\">\n"
        "<score-partwise version=\"4.0\">\n<work><work-title>Forms of a row</work-title></work>\n"
        "<part-list><score-part id=\"P1\"><part-name>Row</part-name></score-part></part-list>\n"
        "<part id=\"P1\">\n";
    int number = 0;
    for (const FormKind& kind : kKinds) {
        for (int level = 0; level < kSemitonesOfOctave; ++level) {
            text += "<measure number=\"" + std::to_string(++number) + "\">\n";
            if (number > 1) text += "<print new-system=\"yes\"/>\n";
            if (number == 1) {
                text +=
                    "<attributes><divisions>1</divisions><key><fifths>0</fifths><mode>major</mode></key>"
                    "<time print-object=\"no\"><beats>12</beats><beat-type>4</beat-type></time>"
                    "<clef><sign>G</sign><line>2</line></clef></attributes>\n";
            }
            text += std::string("<direction placement=\"above\"><direction-type><words>") + kind.name +
                    std::to_string(level) + "</words></direction-type></direction>\n";
            std::array<int, 7> shown{};
            for (const SpelledPitch& pitch : row) text += noteText(pitch, shown);
            text += "</measure>\n";
        }
    }
    return text + "</part>\n</score-partwise>\n";
}

// --- the forms ---

bool hasDoubleAccidental(const Document& document, short measure) {
    const engine::KeySignature& key = document.staffMeasure(1, measure).key;
    return std::ranges::any_of(document.entries({1, measure, 0}), [&](const engine::StoredEntry& entry) {
        return std::ranges::any_of(entry.notes(),
                                   [&](const ENOTE& note) { return std::abs(key.spell(note).alter) > 1; });
    });
}

// Takes one measure through the plug-in, step by step; stops at the first that fails.
class FormMaker {
  public:
    FormMaker(Document& document, short measure, const RunOptions& options)
        : document_(document), options_(options) {
        EREGION region{};
        region.start = {0, 1, measure, 0};
        region.end = {0, 1, measure, 0x7FFFFFFF};
        selection_.regions = {region};
        options_.quiet = true;
    }

    void apply(const Transformation& transformation) {
        if (transformation.stepCount() == 0 || outcome_.code != ExitCode::ok) return;
        outcome_ = transform(document_, selection_, transformation, options_);
    }
    [[nodiscard]] const TransformationOutcome& outcome() const { return outcome_; }

  private:
    Document& document_;
    RunOptions options_;
    Selection selection_;
    TransformationOutcome outcome_;
};

TransformationOutcome makeForm(Document& document, short measure, const FormKind& kind, int level,
                               const Row& row, const RunOptions& options) {
    FormMaker maker(document, measure, options);
    maker.apply(shapeOf(kind, row));
    if (level > 0) {
        Transformation transposition;
        transposition.transposition = bySemitones(level, Transposition::Spelling::flats);
        maker.apply(transposition);
    }
    // Mirrored twice, a form sounds as before, with simpler names.
    for (int times = hasDoubleAccidental(document, measure) ? 2 : 0; times > 0; --times) {
        maker.apply(mirror({}));
    }
    return maker.outcome();
}

std::vector<std::string> wordsOf(const std::string& text) {
    constexpr std::string_view kBetween = " ,;\t\n";
    std::vector<std::string> words;
    for (std::size_t begin = text.find_first_not_of(kBetween); begin != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(kBetween, begin), text.size());
        words.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(kBetween, end);
    }
    return words;
}

// The pitch of a number or name, in the octave of middle C.
std::optional<SpelledPitch> pitchOf(const std::string& word) {
    std::string name = word;
    if (word.find_first_not_of("0123456789") == std::string::npos) {
        const bool known = word.size() <= 2 && std::stoul(word) < kRowLength;
        if (!known) return std::nullopt;
        name = kNames[std::stoul(word)];
    }
    const engine::Result<SpelledPitch> pitch = parsePitch(name + "4");
    return pitch ? std::optional(pitch.value()) : std::nullopt;
}

engine::Problem badRow(const std::string& what) {
    return problemWith("--row-forms: " + what,
                       "Give each of the twelve notes once, as numbers 0 (C) to 11 or as names, such as "
                       "\"0 11 3 4 8 7 9 5 6 1 2 10\" or \"C B Eb E Ab G A F F# C# D Bb\"");
}

}  // namespace

engine::Result<Row> parseRow(const std::string& text) {
    Row row{};
    std::array<std::string, kRowLength> seen;
    const std::vector<std::string> words = wordsOf(text);
    for (std::size_t i = 0; i < words.size() && i < row.size(); ++i) {
        const std::optional<SpelledPitch> pitch = pitchOf(words[i]);
        if (!pitch) return badRow("\"" + words[i] + "\" is not a pitch class");
        std::string& earlier =
            seen[static_cast<std::size_t>(engine::floorMod(engine::semitones(*pitch), kSemitonesOfOctave))];
        if (!earlier.empty()) {
            return badRow(earlier == words[i]
                              ? "\"" + words[i] + "\" comes twice"
                              : "\"" + earlier + "\" and \"" + words[i] + "\" are the same note");
        }
        earlier = words[i];
        row[i] = *pitch;
    }
    if (words.size() != row.size()) {
        return badRow("a row has 12 notes, not " + std::to_string(words.size()));
    }
    return row;
}

RowForms rowForms(const Row& row, musicxml::Container container, const RunOptions& options) {
    RowForms result;
    const auto failed = [&](ExitCode code, const engine::Problem& problem) {
        result.code = code;
        result.problem = problem;
        return result;
    };
    Document document;
    const engine::Result<musicxml::ScoreFile> score =
        musicxml::ScoreFile::read(scoreText(row), "the row", document);
    if (!score) return failed(ExitCode::refused, score.problem());
    for (const FormKind& kind : kKinds) {
        for (int level = 0; level < kSemitonesOfOctave; ++level) {
            const auto measure = static_cast<short>(++result.count);
            const TransformationOutcome outcome = makeForm(document, measure, kind, level, row, options);
            if (outcome.code != ExitCode::ok) return failed(outcome.code, outcome.problem);
        }
    }
    const engine::Result<musicxml::WrittenFile> written = score.value().write(document, container);
    if (!written) return failed(ExitCode::refused, written.problem());
    if (const auto fault = score.value().proofread(document, written.value())) {
        return failed(ExitCode::ruleBroken, *fault);
    }
    result.bytes = written.value().bytes();
    return result;
}

}  // namespace rovescio::cli
