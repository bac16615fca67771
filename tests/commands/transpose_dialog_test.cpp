// The transposition dialog worked as by hand.
#include "transform/transpose_dialog.h"

#include "engine_fixture.h"

namespace rovescio::test {
namespace {

constexpr short kUp = 1;
constexpr short kDown = 2;

class TransposeDialogTest : public testing::Test {
  protected:
    // Opens the dialog, lets a hand work it and returns steps, alteration and octaves.
    std::vector<int> work(const std::function<void(MemoryDialog&)>& hand) {
        engine.front.hands[20150] = hand;
        TransposeDialog(&parent, &settings);
        return {settings.steps, settings.alteration, settings.octaves};
    }
    std::vector<int> accept(short kind, short popup, short entry, short direction = kUp, short octaves = 0) {
        return work([=](MemoryDialog& dialog) {
            dialog.choose(3, kind);
            dialog.choose(popup, entry);
            dialog.choose(7, direction);
            dialog.set(9, octaves);
            dialog.press(1);
        });
    }
    void otherInterval(short steps, short alteration, short button) {
        engine.front.hands[20180] = [=](MemoryDialog& dialog) {
            dialog.set(4, steps);
            if (!dialog.hidden.contains(6)) dialog.set(6, alteration);
            dialog.press(button);
        };
    }

    EngineFixture engine{{"C 4/4 c4:w"}};
    STStruct settings;
    int parent = 0;
};

TEST_F(TransposeDialogTest, ChromaticPopupGivesTheNamedIntervals) {
    // Unison, augmented unison, diminished second, ... octave.
    const int sizes[26][2] = {{0, 0}, {0, 1},  {1, -2}, {1, -1}, {1, 0},  {1, 1}, {2, -2}, {2, -1}, {2, 0},
                              {2, 1}, {3, -1}, {3, 0},  {3, 1},  {4, -1}, {4, 0}, {4, 1},  {5, -2}, {5, -1},
                              {5, 0}, {5, 1},  {6, -2}, {6, -1}, {6, 0},  {6, 1}, {7, -1}, {7, 0}};
    for (short entry = 1; entry <= 26; ++entry) {
        const auto [steps, alteration] = sizes[entry - 1];
        EXPECT_EQ(accept(3, 6, entry), (std::vector<int>{steps, alteration, 0})) << "entry " << entry;
        EXPECT_EQ(accept(3, 6, entry, kDown, 2), (std::vector<int>{-steps, -alteration, -2}))
            << "entry " << entry;
    }
    EXPECT_EQ(accept(3, 6, 0), (std::vector<int>{0, 0, 0}));
}

TEST_F(TransposeDialogTest, SemitonesAreSpelledWithSharpsOrFlats) {
    const int sharps[12][2] = {{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}, {3, 0},
                               {3, 1}, {4, 0}, {4, 1}, {5, 0}, {5, 1}, {6, 0}};
    const int flats[12][2] = {{0, 0},  {1, -1}, {1, 0},  {2, -1}, {2, 0},  {3, 0},
                              {4, -1}, {4, 0},  {5, -1}, {5, 0},  {6, -1}, {6, 0}};
    for (short entry = 1; entry <= 12; ++entry) {
        settings = {};
        EXPECT_EQ(accept(4, 4, entry), (std::vector<int>{sharps[entry - 1][0], sharps[entry - 1][1], 0}));
        const auto result = work([](MemoryDialog& dialog) {
            dialog.choose(8, 2);
            dialog.press(1);
        });
        EXPECT_EQ(result, (std::vector<int>{flats[entry - 1][0], flats[entry - 1][1], 0}))
            << entry - 1 << " semitones";
        EXPECT_EQ(settings.semitoneItem, entry);
        EXPECT_EQ(settings.spellingItem, 2);
    }
    for (const auto& [popup, entry] : {std::pair<short, short>{4, 13}, {8, 3}}) {
        settings = {};
        settings.semitoneItem = 5;
        EXPECT_EQ(accept(4, popup, entry), (std::vector<int>{0, 0, 0}));
    }
}

TEST_F(TransposeDialogTest, OtherIntervalsAreAskedFor) {
    otherInterval(9, -3, 1);
    EXPECT_EQ(accept(3, 6, 27), (std::vector<int>{9, -3, 0}));
    EXPECT_EQ(accept(2, 5, 9, kDown), (std::vector<int>{-9, 0, 0}));
    otherInterval(1, 1, 2);
    EXPECT_EQ(accept(3, 6, 27), (std::vector<int>{9, -3, 0})) << "cancelled: as they were";
}

TEST_F(TransposeDialogTest, WithoutOkKeepsWhatThePopupsWroteButNotTheResults) {
    for (const bool cancels : {true, false}) {
        const std::vector<int> results{-2, 1, -1};
        EXPECT_EQ(accept(3, 6, 8, kDown, 1), results);
        const auto results2 = work([=](MemoryDialog& dialog) {
            EXPECT_EQ(dialog.values[9], 1);
            dialog.choose(7, kUp);
            dialog.choose(6, 15);
            dialog.set(9, 3);
            // Else it is closed from outside.
            if (cancels) dialog.press(2);
        });
        EXPECT_EQ(results2, results);
        EXPECT_EQ((std::vector<int>{settings.chromaticItem, settings.chromaticSteps, settings.direction}),
                  (std::vector<int>{15, 4, kUp}));
    }
}

}  // namespace
}  // namespace rovescio::test
