// Interval names as people write them.
#include "cli/interval_names.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using rovescio::cli::bySemitones;
using rovescio::cli::parseInterval;
using rovescio::dialogs::Transposition;

// "down 2-1 +1": direction, steps and alteration, octaves.
std::string shown(const Transposition& interval) {
    std::string text = interval.down ? "down " : "up ";
    text += std::to_string(interval.steps);
    if (interval.alteration >= 0) text += "+";
    text += std::to_string(interval.alteration);
    if (interval.octaves != 0) text += " 8va" + std::to_string(interval.octaves);
    return text;
}

TEST(IntervalNames, AreUnderstoodInWordsAndLetters) {
    const struct {
        const char* name;
        const char* meaning;
    } cases[] = {
        {"up minor third", "up 2-1"},
        {"minor third down", "down 2-1"},
        {"Down a Perfect Fifth", "down 4+0"},
        {"m-3", "down 2-1"},
        {"-m3", "down 2-1"},
        {"+M2", "up 1+0"},
        {"down P5", "down 4+0"},
        {"down m-3", "down 2-1"},
        {"P5", "up 4+0"},
        {"AA4", "up 3+2"},
        {"dd3", "up 2-3"},
        {"up augmented fourth", "up 3+1"},
        {"tritone", "up 3+1"},
        {"doubly diminished fifth", "up 4-2"},
        {"min 3rd", "up 2-1"},
        {"aug 6", "up 5+1"},
        {"diminished-seventh", "up 6-2"},
        {"a fourth", "up 3+0"},
        {"major tenth", "up 2+0 8va1"},
        {"m10", "up 2-1 8va1"},
        {"an octave", "up 7+0"},
        {"down octave", "down 7+0"},
        {"diminished octave", "up 7-1"},
        {"augmented octave", "up 0+1 8va1"},
        {"fifteenth", "up 7+0 8va1"},
        {"down two octaves", "down 7+0 8va1"},
        {"up 2 octaves and a minor third", "up 2-1 8va2"},
        {"an octave plus a fifth", "up 4+0 8va1"},
        {"perfect unison", "up 0+0"},
        {"augmented unison", "up 0+1"},
    };
    for (const auto& [name, meaning] : cases) {
        const auto interval = parseInterval(name);
        ASSERT_TRUE(interval) << name << ": " << interval.problem().text();
        EXPECT_EQ(shown(interval.value()), meaning) << name;
    }
}

TEST(IntervalNames, UnknownOnesNameTheNearestAndWhatIsUnderstood) {
    const struct {
        const char* name;
        const char* message;
    } cases[] = {
        {"up minr third", "the nearest is \"up minor third\""},
        {"prefect fifth", "the nearest is \"perfect fifth\""},
        {"minor fifth", "the nearest is \"minor s"},
        {"third", "is no interval"},
        {"up m-3", "is no interval"},
        {"M4", "is no interval"},
        {"p5", "is no interval"},
        {"P0", "is no interval"},
        {"P5x", "is no interval"},
        {"m99999999999", "is no interval"},
        {"up", "is no interval"},
        {"", "is no interval"},
        {"diminished unison", "cannot be diminished"},
    };
    for (const auto& [name, message] : cases) {
        const auto interval = parseInterval(name);
        ASSERT_FALSE(interval) << name << " became " << shown(interval.value());
        EXPECT_NE(interval.problem().message.find(message), std::string::npos) << interval.problem().message;
        EXPECT_FALSE(interval.problem().remedy.empty());
    }
}

TEST(IntervalNames, SemitonesSplitIntoOctavesAndRest) {
    const Transposition interval = bySemitones(-15, Transposition::Spelling::sharps);
    EXPECT_TRUE(interval.down);
    EXPECT_EQ(interval.semitones, 3);
    EXPECT_EQ(interval.octaves, 1);
    EXPECT_EQ(interval.spelling, Transposition::Spelling::sharps);
}

}  // namespace
