// The overview of a score.
#include "cli/score_info.h"

#include <gtest/gtest.h>

#include "support/score_text.h"

namespace rovescio::cli {
namespace {

using engine::KeySignature;

TEST(KeyNames, FollowTheLineOfFifths) {
    const std::tuple<int, bool, const char*> cases[] = {
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
    engine::Document document =
        test::scoreFromText({"C 4/4 c4:w | d4:w | e4:w", "C 4/4 c4:w | d4:w | e4:w"}, {"0", "1", "2"});
    document.staffMeasure(1, 3).key = KeySignature::standard(2, false);
    test::addLayer(document, 1, 2, "| c4:w |");
    EXPECT_EQ(scoreInfo("a.mxl", document),
              (std::vector<std::string>{"a.mxl", "  3 measures, numbered 0 to 2",
                                        "  staff 1  staff 1  layers 1,3  C major, D major from measure 2",
                                        "  staff 2  staff 2  layers 1  C major"}));
}

}  // namespace
}  // namespace rovescio::cli
