// Writes the row into every measure and has the plug-in make each measure's form of it.
#include "run/row_forms.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

#include "dialogs/transformation_script.h"
#include "engine/model/document.h"
#include "run/open_score.h"
#include "run/selection.h"

namespace rovescio::run {

namespace {

using dialogs::Inversion;
using dialogs::Transformation;
using dialogs::Transposition;
using engine::Document;
using engine::SpelledPitch;

constexpr int kSemitonesOfOctave = 12;

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

bool hasDoubleAccidental(const Document& document, short measure) {
    const engine::KeySignature& key = document.staffMeasure(1, measure).key;
    return std::ranges::any_of(document.entries({1, measure, 0}), [&](const engine::StoredEntry& entry) {
        return std::ranges::any_of(entry.notes(),
                                   [&](const ENOTE& note) { return std::abs(key.spell(note).alter) > 1; });
    });
}

Selection wholeMeasure(short measure) {
    EREGION region{};
    region.start = {0, 1, measure, 0};
    region.end = {0, 1, measure, 0x7FFFFFFF};
    return {.regions = {region}, .description = {}};
}

// Takes one measure through the plug-in, step by step; the report is that of the first step that fails.
Report makeForm(OpenScore& score, short measure, const FormKind& kind, int level, const Row& row,
                const PlugIn& plugIn, const Supervision& supervision) {
    const Selection selection = wholeMeasure(measure);
    Report report;
    const auto apply = [&](const Transformation& transformation) {
        if (transformation.stepCount() == 0 || !report.isDone()) return;
        report = score.transform(plugIn, selection, transformation, supervision);
    };
    apply(shapeOf(kind, row));
    if (level > 0) {
        Transformation transposition;
        transposition.transposition = {.kind = Transposition::Kind::semitones, .semitones = level};
        apply(transposition);
    }
    // Mirrored twice, a form sounds as before, with simpler names.
    for (int times = hasDoubleAccidental(score.document(), measure) ? 2 : 0; times > 0; --times) {
        apply(mirror({}));
    }
    return report;
}

}  // namespace

RowForms rowForms(const Row& row, musicxml::Container container, const PlugIn& plugIn,
                  const Supervision& supervision) {
    const auto failed = [](Outcome outcome, const engine::Problem& problem) {
        return RowForms{.report = {.outcome = outcome, .problem = problem}};
    };
    const engine::Result<std::unique_ptr<OpenScore>> opened = OpenScore::open(scoreText(row), "the row");
    if (!opened) return failed(Outcome::refused, opened.problem());
    OpenScore& score = *opened.value();
    RowForms result;
    for (const FormKind& kind : kKinds) {
        for (int level = 0; level < kSemitonesOfOctave; ++level) {
            const auto measure = static_cast<short>(++result.count);
            result.report = makeForm(score, measure, kind, level, row, plugIn, supervision);
            if (!result.report.isDone()) return result;
        }
    }
    const engine::Result<musicxml::WrittenFile> written = score.write(container);
    if (!written) return failed(Outcome::refused, written.problem());
    if (const auto fault = score.proofread(written.value())) return failed(Outcome::unsound, *fault);
    result.bytes = written.value().bytes();
    return result;
}

}  // namespace rovescio::run
