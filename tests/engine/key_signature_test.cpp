// Key signatures: tonic places, altered letters, and spelling that survives storing in any key.
#include "engine/model/key_signature.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/score_text.h"

namespace rovescio::engine {
namespace {

TEST(KeySignature, CountsFromItsTonicAndAltersItsLetters) {
    const struct {
        int fifths;
        bool minor;
        const char *tonic, *altered, *sign;  // counted from, and the letters that the signature alters
    } cases[] = {
        {0, false, "c4", "", ""},          {1, false, "g4", "f", "#"},
        {2, false, "d4", "fc", "#"},       {3, false, "a4", "fcg", "#"},
        {6, false, "f#4", "fcgdae", "#"},  {7, false, "c#4", "fcgdaeb", "#"},
        {-1, false, "f3", "b", "b"},       {-2, false, "bb3", "be", "b"},
        {-3, false, "eb3", "bea", "b"},    {-7, false, "cb4", "beadgcf", "b"},
        {0, true, "a4", "", ""},           {1, true, "e4", "f", "#"},
        {4, true, "c#4", "fcgd", "#"},     {-1, true, "d4", "b", "b"},
        {-3, true, "c4", "bea", "b"},      {-5, true, "bb3", "beadg", "b"},
        {-7, true, "ab4", "beadgcf", "b"},
    };
    for (const auto& c : cases) {
        const KeySignature key = KeySignature::standard(c.fifths, c.minor);
        SCOPED_TRACE(std::to_string(c.fifths) + (c.minor ? " minor" : " major"));
        ENOTE tonic{};
        EXPECT_EQ(test::textOf(key.spell(tonic)), c.tonic);
        EXPECT_EQ(key.word(), (c.minor ? 0x100 : 0) | (c.fifths & 0xFF));
        for (int letter = 0; letter < 7; ++letter) {
            const bool altered = std::strchr(c.altered, "cdefgab"[letter]) != nullptr;
            EXPECT_EQ(key.letterAlter(letter), !altered ? 0 : *c.sign == '#' ? 1 : -1) << letter;
        }
    }
}

TEST(KeySignature, KeepsEveryPitchThatItStores) {
    for (int fifths = -9; fifths <= 9; ++fifths) {
        for (const bool minor : {false, true}) {
            const KeySignature key = KeySignature::standard(fifths, minor);
            for (int step = -30; step <= 30; ++step) {
                for (int alter = -3; alter <= 3; ++alter) {
                    ENOTE note{};
                    key.store({step, alter}, note);
                    EXPECT_EQ(key.spell(note), (SpelledPitch{step, alter}));
                }
            }
        }
    }
}

}  // namespace
}  // namespace rovescio::engine
