// The overview of a score.
#include "cli/score_info.h"

#include <gtest/gtest.h>

#include "cli/small_document.h"

namespace {

using rovescio::cli::keyName;
using rovescio::engine::Document;
using rovescio::engine::KeySignature;

TEST(KeyNames, FollowTheLineOfFifths) {
    const struct {
        int fifths;
        bool minor;
        const char* name;
    } cases[] = {
        {0, false, "C major"},  {0, true, "A minor"},    {-1, false, "F major"}, {-3, false, "Eb major"},
        {6, false, "F# major"}, {-7, false, "Cb major"}, {-3, true, "C minor"},  {5, true, "G# minor"},
        {-7, true, "Ab minor"}, {8, false, "G# major"},
    };
    for (const auto& [fifths, minor, name] : cases) {
        EXPECT_EQ(keyName(KeySignature::standard(fifths, minor)), name);
    }
    EXPECT_EQ(keyName(KeySignature::nonStandard()), "non-traditional key");
}

TEST(ScoreInfo, TellsNumbersNamesLayersAndKeyChanges) {
    Document document = rovescio::test::smallDocument(2, {"0", "1", "2"});
    document.staffMeasure(1, 3).key = KeySignature::standard(2, false);
    rovescio::test::setNotes(document, {1, 2, 2}, {0});
    EXPECT_EQ(rovescio::cli::scoreInfo("a.mxl", document),
              "a.mxl\n"
              "  3 measures, numbered 0 to 2\n"
              "  staff 1  Staff 1  layers 1,3  C major, D major from measure 2\n"
              "  staff 2  Staff 2  layers 1  C major\n");
}

}  // namespace
