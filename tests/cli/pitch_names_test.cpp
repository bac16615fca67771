// Pitch names, right and wrong.
#include "cli/pitch_names.h"

#include <gtest/gtest.h>

namespace rovescio::cli {
namespace {

TEST(PitchNames, AreReadInSignsAndInWords) {
    const std::pair<const char*, const char*> cases[] = {
        {"E4", "E4"},    {"e4", "E4"},         {"Bb3", "Bb3"},       {"bb3", "Bb3"},        {"b3", "B3"},
        {"B♭3", "Bb3"},  {"B-flat 3", "Bb3"},  {"B flat 3", "Bb3"},  {"b-flat-3", "Bb3"},   {"F#5", "F#5"},
        {"f♯ 5", "F#5"}, {"C sharp 4", "C#4"}, {"Csharp4", "C#4"},   {"G natural 2", "G2"}, {"G♮2", "G2"},
        {" A 0 ", "A0"}, {"CB9", "Cb9"},       {"B_SHARP_9", "B#9"},
    };
    for (const auto& [written, meant] : cases) {
        const auto pitch = parsePitch(written);
        ASSERT_TRUE(pitch) << written;
        EXPECT_EQ(pitchName(pitch.value()), meant) << written;
    }
    EXPECT_EQ(parsePitch("C4").value().step, 0);
    EXPECT_EQ(parsePitch("B3").value().step, -1);
    EXPECT_EQ(parsePitch("C-flat 5").value(), (engine::SpelledPitch{7, -1}));
}

TEST(PitchNames, ThatAreNoneAreToldWithWhatIsUnderstood) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "not a known pitch"},     {"H4", "not a known pitch"},   {"E", "not a known pitch"},
        {"4", "not a known pitch"},    {"Bbb3", "not a known pitch"}, {"F##4", "not a known pitch"},
        {"C4 4", "not a known pitch"}, {"Eb4b", "not a known pitch"}, {"E sharpish 4", "not a known pitch"},
        {"E10", "octaves 0 to 9"},     {"C-1", "octaves 0 to 9"},     {"Bb-3", "octaves 0 to 9"},
    };
    for (const auto& [written, told] : cases) {
        const auto pitch = parsePitch(written);
        ASSERT_FALSE(pitch) << written;
        EXPECT_NE(pitch.problem().text().find(told), std::string::npos) << pitch.problem().text();
    }
}

}  // namespace
}  // namespace rovescio::cli
