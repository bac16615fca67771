// Scores in which the plug-in works several times, and the way back.
#include "run/open_score.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "engine/interface/plugin_bundle.h"
#include "musicxml/score_builder.h"

namespace rovescio::run {
namespace {

using dialogs::Inversion;
using dialogs::Retrograde;
using dialogs::Transformation;
using dialogs::Transposition;
using test::note;

constexpr Transposition kFifth = {.kind = Transposition::Kind::chromatic, .steps = 4};

class OpenScores : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        const std::string home = PROGRAM_FOLDER;
        ASSERT_TRUE(engine::registerEngineBundle(home + "/NotationEngine.bundle"));
        plugIn = std::make_unique<PlugIn>(PlugIn::load(home + "/Rovescio.bundle").value());
    }
    static void TearDownTestSuite() { plugIn.reset(); }

    void open(const std::string& bytes) {
        score.reset();
        score = std::move(*OpenScore::open(bytes, "score"));
    }
    [[nodiscard]] std::string written() const {
        const auto file = score->write(musicxml::Container::plain);
        EXPECT_FALSE(score->proofread(file.value()));
        return file.value().bytes();
    }
    // The whole score, or measures given by their printed numbers.
    [[nodiscard]] Selection selected(const std::vector<const char*>& measures = {}) const {
        SelectionRequest request;
        for (const char* measure : measures) {
            const MeasurePoint point{.number = measure, .beat = {}};
            request.measures.push_back({point, point});
        }
        return score->select(request).value();
    }

    static inline std::unique_ptr<PlugIn> plugIn;
    std::unique_ptr<OpenScore> score;
};

TEST_F(OpenScores, GoBackAndForthThroughTransformations) {
    const Transformation inversion = {
        .inversion = Inversion{.kind = Inversion::Kind::chromatic, .axis = {6, 0}},
        .accidentals = dialogs::Accidentals::always};
    const std::pair<Transformation, std::vector<const char*>> steps[] = {
        {{.transposition = kFifth}, {"2", "4", "5"}},
        {{.retrograde = Retrograde{.mirrorKeys = true, .repair = true}}, {}},
        {inversion, {"3"}},
    };
    for (const char* name : {"greensleeves", "crab-canon", "frere-jacques"}) {
        SCOPED_TRACE(name);
        std::ifstream file(std::string(EXAMPLES_FOLDER "/") + name + ".musicxml", std::ios::binary);
        std::vector<std::string> texts = {{std::istreambuf_iterator<char>(file), {}}};
        open(texts.front());
        for (const auto& [transformation, measures] : steps) {
            const Report report = score->transform(*plugIn, selected(measures), transformation);
            ASSERT_TRUE(report.isDone()) << report.problem.text();
            EXPECT_GT(report.notesChanged, 0U);
            texts.push_back(written());
            EXPECT_NE(texts.back(), texts[texts.size() - 2]);
        }
        for (std::size_t left = std::size(steps); left > 0; --left) {
            EXPECT_TRUE(score->undo());
            EXPECT_EQ(written(), texts[left - 1]) << "after " << left - 1 << " steps";
        }
        EXPECT_FALSE(score->undo());
        for (std::size_t done = 1; done <= std::size(steps); ++done) {
            EXPECT_TRUE(score->redo());
            EXPECT_EQ(written(), texts[done]) << "after " << done << " steps";
        }
        EXPECT_FALSE(score->redo());

        EXPECT_TRUE(score->undo());
        ASSERT_TRUE(score->transform(*plugIn, selected(), {.transposition = kFifth}).isDone());
        EXPECT_FALSE(score->canRedo()) << "what was undone does not follow from this";
        EXPECT_TRUE(score->undo());
        EXPECT_EQ(written(), texts[2]);
        score->forgetSteps();
        EXPECT_FALSE(score->canUndo() || score->canRedo());
    }
}

TEST_F(OpenScores, AreLeftAsTheyWereByWhatIsNotDone) {
    const std::string otherKey =
        "<attributes><key><key-step>D</key-step><key-alter>1</key-alter></key></attributes>";
    const std::string slur = "<notations><slur type=\"start\"/></notations>";
    const std::string slurEnd = "<notations><slur type=\"stop\"/></notations>";
    const Transformation fifth = {.transposition = kFifth};
    const struct {
        const char* name;
        std::string third;  // measure
        std::vector<const char*> measures;
        Transformation transformation;
        int polls;  // before the user cancels, if so many come
        Outcome outcome;
        const char* said;
    } cases[] = {
        {"cancel in the second range", note("c4:w"), {"1", "3"}, fifth, 1, Outcome::cancelled, "cancelled"},
        {"slur in the second range",
         note("c4:h", slur) + note("d4:h", slurEnd),
         {"1", "3"},
         {.retrograde = Retrograde{}},
         1000,
         Outcome::refused,
         "cannot be reversed"},
        {"nothing in major or minor",
         otherKey + note("c4:w"),
         {"3"},
         fifth,
         1000,
         Outcome::nothingToDo,
         "nothing in the selection"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        open(test::scoreOf({note("c4:h") + note("d4:h"), note("e4:w"), c.third}));
        ASSERT_TRUE(score->transform(*plugIn, selected(), fifth).isDone());
        const std::string done = written();
        ASSERT_TRUE(score->undo());
        const std::string before = written();
        int polls = 0;
        const Supervision supervision = {
            .progress = [&](const engine::Progress&) { return ++polls <= c.polls; }};
        const Report report = score->transform(*plugIn, selected(c.measures), c.transformation, supervision);
        EXPECT_EQ(report.outcome, c.outcome) << report.problem.text();
        EXPECT_NE(report.problem.text().find(c.said), std::string::npos) << report.problem.text();
        EXPECT_EQ(written(), before);
        EXPECT_FALSE(score->canUndo());
        EXPECT_TRUE(score->redo()) << "what was undone before can still come back";
        EXPECT_EQ(written(), done);
    }
}

TEST_F(OpenScores, ShowTheProgressOfEachRunFromItsStart) {
    open(test::scoreOf({note("c4:w"), note("d4:w"), note("e4:w")}));
    std::vector<std::pair<std::int64_t, std::int64_t>> shown[2];
    for (auto& run : shown) {
        const Supervision supervision = {.progress = [&](const engine::Progress& progress) {
            run.emplace_back(progress.position, progress.total);
            return true;
        }};
        EXPECT_TRUE(score->transform(*plugIn, selected(), {.transposition = kFifth}, supervision).isDone());
    }
    ASSERT_FALSE(shown[0].empty());
    EXPECT_EQ(shown[0], shown[1]);
}

// The note that the dialog hears becomes the axis; a user who plays none cancels.
TEST_F(OpenScores, TakeTheAxisFromMidi) {
    Transformation transformation;
    transformation.inversion = Inversion{.kind = Inversion::Kind::chromatic, .axisIsPlayed = true};
    for (const bool plays : {true, false}) {
        open(test::scoreOf({note("f4:q")}));
        const Supervision supervision = {.midiInput = [&]() -> std::optional<std::array<std::uint8_t, 3>> {
            if (!plays) return std::nullopt;
            return std::array<std::uint8_t, 3>{0x93, 66, 80};
        }};
        const Report report = score->transform(*plugIn, selected(), transformation, supervision);
        EXPECT_EQ(report.outcome, plays ? Outcome::done : Outcome::cancelled);
        EXPECT_EQ(written().find("<alter>2</alter>") != std::string::npos, plays)
            << "mirrored at F sharp, or not at all";
    }
}

}  // namespace
}  // namespace rovescio::run
