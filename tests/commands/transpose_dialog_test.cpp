// The transposition dialog as a user operates it.
#include "transform/transpose_dialog.h"

#include "engine_fixture.h"

namespace rovescio::test {
namespace {

using Result = std::vector<int>;  // steps, alteration, octaves

constexpr short kUp = 1;
constexpr short kDown = 2;

class TransposeDialogTest : public testing::Test {
  protected:
    // Opens the dialog and lets a user operate it.
    Result work(const std::function<void(MemoryDialog&)>& user) {
        engine.front.users[dialogs::transposition_dialog::kNumber] = user;
        TransposeDialog(&parent, &settings);
        return {settings.steps, settings.alteration, settings.octaves};
    }
    Result accept(short kind, short popup, short entry, short direction = kUp, short octaves = 0) {
        return work([=](MemoryDialog& dialog) {
            dialog.choose(3, kind);
            dialog.choose(popup, entry);
            dialog.choose(7, direction);
            dialog.set(9, octaves);
            EXPECT_EQ(dialog.press(1), 1);
            EXPECT_FALSE(dialog.open);
        });
    }

    EngineFixture engine{{"C 4/4 c4:w"}};
    STStruct settings;
    int parent = 0;
};

// From the unison to the octave: first the diminished one, at last the augmented one.
TEST_F(TransposeDialogTest, ChromaticPopupGivesTheNamedIntervals) {
    short entry = 0;
    for (int steps = 0; steps <= 7; ++steps) {
        const bool perfect = steps % 7 == 0 || steps == 3 || steps == 4;
        const int diminished = steps == 0 ? 0 : perfect ? -1 : -2;
        for (int alteration = diminished; alteration <= (steps == 7 ? 0 : 1); ++alteration) {
            EXPECT_EQ(accept(3, 6, ++entry), (Result{steps, alteration, 0})) << "entry " << entry;
            EXPECT_EQ(accept(3, 6, entry, kDown, 2), (Result{-steps, -alteration, -2}));
        }
    }
    EXPECT_EQ(entry, 26);
    EXPECT_EQ(accept(3, 6, 0), (Result{0, 0, 0}));
    EXPECT_EQ(accept(1, 7, kDown, kDown, 2), (Result{0, 0, 0}));
}

TEST_F(TransposeDialogTest, DiatonicPopupGivesStepsAndHidesOtherMenus) {
    for (short entry = 0; entry <= 10; ++entry) {
        if (entry == 9) continue;
        EXPECT_EQ(accept(2, 5, entry), (Result{entry >= 1 && entry <= 8 ? entry - 1 : 0, 0, 0})) << entry;
    }
    const std::pair<short, std::set<short>> hidden[] = {
        {1, {4, 5, 6, 7, 8}}, {2, {4, 6, 8}}, {1, {4, 5, 6, 7, 8}}, {3, {4, 5, 8}}, {4, {5, 6}}};
    work([&](MemoryDialog& dialog) {
        for (const auto& [kind, items] : hidden) {
            dialog.choose(3, kind);
            EXPECT_EQ(dialog.hidden, items) << kind;
        }
        settings.diatonicItem = 3;
        dialog.values[5] = 4;
        EXPECT_EQ(dialog.press(5), 1) << "without the notification of a change";
        EXPECT_EQ(settings.diatonicItem, 3);
    });
}

TEST_F(TransposeDialogTest, SemitonesAreSpelledWithSharpsOrFlats) {
    const int sharps[] = {0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6};
    const int flats[] = {0, 1, 1, 2, 2, 3, 4, 4, 5, 5, 6, 6};
    for (short entry = 1; entry <= 12; ++entry) {
        const int low = sharps[entry - 1];
        const int high = flats[entry - 1];
        settings = {};
        EXPECT_EQ(accept(4, 4, entry), (Result{low, high - low, 0}));
        EXPECT_EQ(accept(4, 8, 2), (Result{high, low - high, 0})) << entry - 1;
        EXPECT_EQ(std::pair(settings.semitoneItem, settings.spellingItem), std::pair(entry, std::int16_t{2}));
    }
    for (const auto& [popup, entry] : {std::pair<short, short>{4, 13}, {8, 3}}) {
        settings = {};
        settings.semitoneItem = 5;
        EXPECT_EQ(accept(4, popup, entry), (Result{0, 0, 0}));
    }
}

TEST_F(TransposeDialogTest, OtherIntervalsAreAskedFor) {
    short button = 1;
    engine.front.users[dialogs::other_interval_dialog::kNumber] = [&](MemoryDialog& dialog) {
        dialog.set(4, button == 1 ? 9 : 1);
        if (!dialog.hidden.contains(6)) dialog.set(6, -3);
        EXPECT_EQ(dialog.hidden.size(), settings.kind == kDiatonicTransposition ? 2U : 0U);
        dialog.press(button);
    };
    EXPECT_EQ(accept(3, 6, 27), (Result{9, -3, 0}));
    EXPECT_EQ(accept(2, 5, 9, kDown), (Result{-9, 0, 0}));
    button = 2;
    EXPECT_EQ(accept(3, 6, 27), (Result{9, -3, 0})) << "cancelled: as they were";
}

TEST_F(TransposeDialogTest, WithoutOkKeepsWhatThePopupsWroteButNotTheResults) {
    for (const bool cancels : {true, false}) {
        const Result results{-2, 1, -1};
        EXPECT_EQ(accept(3, 6, 8, kDown, 1), results);
        EXPECT_EQ(work([=](MemoryDialog& dialog) {
                      EXPECT_EQ(dialog.values[9], 1);
                      dialog.choose(7, kUp);
                      dialog.choose(6, 15);
                      dialog.set(9, 3);
                      if (cancels) dialog.press(2);  // else it is closed from outside
                  }),
                  results);
        EXPECT_EQ((std::vector{settings.chromaticItem, settings.chromaticSteps, settings.direction}),
                  (std::vector<std::int16_t>{15, 4, kUp}));
    }
}

}  // namespace
}  // namespace rovescio::test
