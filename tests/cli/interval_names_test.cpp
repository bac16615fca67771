// Interval names as people write them.
#include "cli/interval_names.h"

#include <gtest/gtest.h>

#include <string>

namespace rovescio::cli {
namespace {

using dialogs::Transposition;

// "down 2-1 +1": direction, steps and alteration, octaves.
std::string shown(const Transposition& interval) {
    std::string text = interval.down ? "down " : "up ";
    text += std::to_string(interval.steps);
    if (interval.alteration >= 0) text += "+";
    text += std::to_string(interval.alteration);
    if (interval.octaves != 0) text += " 8va" + std::to_string(interval.octaves);
    return text;
}

TEST(IntervalNames, AreTakenWithOctaves) {
    const struct {
        const char* interval;
        int octaves;
        const char* shown;
    } cases[] = {{"m3", 1, "up 2-1 8va1"},    {"M7", -1, "down 1-1"},    {"P5", -1, "down 3+0"},
                 {"m3", -2, "down 5+0 8va1"}, {"down m3", -1, "up 5+0"}, {"aug4", -1, "down 4-1"},
                 {"P8", -1, "up 0+0"},        {"P8", -2, "down 7+0"},    {"two octaves", -1, "up 7+0"}};
    for (const auto& [interval, octaves, text] : cases) {
        EXPECT_EQ(shown(withOctaves(parseInterval(interval).value(), octaves)), text) << interval << octaves;
    }
    EXPECT_EQ(withOctaves(bySteps(10), -1), bySteps(3));
    EXPECT_EQ(withOctaves(bySteps(-2), -1), bySteps(5));
    const auto sharps = Transposition::Spelling::sharps;
    EXPECT_EQ(withOctaves(bySemitones(11, sharps), -1), bySemitones(-1, sharps));
}

TEST(IntervalNames, AreUnderstoodInWordsAndLetters) {
    const std::pair<const char*, std::vector<const char*>> cases[] = {
        {"up 2-1", {"up minor third", "min 3rd", "min3", "Min. 3", "min.3"}},
        {"down 2-1", {"minor third down", "m-3", "-m3", "down m-3"}},
        {"down 4+0", {"Down a Perfect Fifth", "down P5"}},
        {"up 1+0", {"+M2", "whole tone", "a tone", "whole step", "whole-step", "maj2"}},
        {"down 1-1", {"down a semitone", "half step down", "down half tone", "down min2"}},
        {"up 1-1 8va1", {"octave and a semitone"}},
        {"up 2+0", {"maj3", "major3"}},
        {"up 4-1", {"dim5", "dim 5th"}},
        {"up 4+0", {"P5", "per5", "perf5", "perfect5"}},
        {"up 3+2", {"AA4"}},
        {"up 2-3", {"dd3"}},
        {"up 3+1", {"up augmented fourth", "tritone", "aug4", "a tritone"}},
        {"up 4-2", {"doubly diminished fifth"}},
        {"up 5+1", {"aug 6"}},
        {"up 6-2", {"diminished-seventh"}},
        {"up 3+0", {"a fourth"}},
        {"up 2+0 8va1", {"major tenth"}},
        {"up 2-1 8va1", {"m10"}},
        {"up 7+0", {"an octave"}},
        {"down 7+0", {"down octave"}},
        {"up 7-1", {"diminished octave"}},
        {"up 0+1 8va1", {"augmented octave"}},
        {"up 7+0 8va1", {"fifteenth"}},
        {"down 7+0 8va1", {"down two octaves"}},
        {"up 2-1 8va2", {"up 2 octaves and a minor third"}},
        {"up 4+0 8va1", {"an octave plus a fifth"}},
        {"up 0+0", {"perfect unison"}},
        {"up 0+1", {"augmented unison"}},
    };
    for (const auto& [meaning, names] : cases) {
        for (const char* name : names) {
            const auto interval = parseInterval(name);
            ASSERT_TRUE(interval) << name << ": " << interval.problem().text();
            EXPECT_EQ(shown(interval.value()), meaning) << name;
        }
    }
}

TEST(IntervalNames, UnknownOnesNameTheNearestAndWhatIsUnderstood) {
    const std::pair<const char*, std::vector<const char*>> cases[] = {
        {"did you mean \"up minor third\"", {"up minr third"}},
        {"did you mean \"perfect fifth\"", {"prefect fifth"}},
        // More than one interval, or none, is near.
        {"is not a known interval", {"minor fifth", "whole note", "majr", "quarter tone", "big third"}},
        {"is not a known interval", {"third", "up m-3", "M4", "p5", "P0", "P5x", "m99999999999", "up", ""}},
        {"cannot be diminished", {"diminished unison"}},
    };
    for (const auto& [message, names] : cases) {
        for (const char* name : names) {
            const auto interval = parseInterval(name);
            ASSERT_FALSE(interval) << name << " became " << shown(interval.value());
            EXPECT_NE(interval.problem().message.find(message), std::string::npos) << name;
            EXPECT_FALSE(interval.problem().remedy.empty());
            const bool suggests = interval.problem().message.find("did you mean") != std::string::npos;
            EXPECT_EQ(suggests, std::string(message).starts_with("did you")) << interval.problem().message;
        }
    }
}

}  // namespace
}  // namespace rovescio::cli
