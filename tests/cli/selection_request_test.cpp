// Ranges of measures and lists of numbers as written on the command line.
#include "cli/selection_request.h"

#include <gtest/gtest.h>

#include <string>

namespace rovescio::cli {
namespace {

TEST(MeasureRanges, ThatMakeNoSenseAreRefused) {
    for (const char* text : {"", "-", "3:", "3:2", "3:0-4", "3:x-4", "3:nan-4", "#-4", "#x", "3-4-5:y",
                             ":2-3", "1-2,", ",", "1-2,x:"}) {
        EXPECT_FALSE(parseMeasures(text)) << text;
    }
}

TEST(NumberLists, BecomeAscendingRuns) {
    const std::pair<const char*, run::NumberRuns> cases[] = {
        {"1", {{1, 1}}},
        {"1-2", {{1, 2}}},
        {"1,3-4", {{1, 1}, {3, 4}}},
        {"4,1-2,3", {{1, 4}}},
        {"5,1-3,2", {{1, 3}, {5, 5}}},
        {"1..2, 4\u20135", {{1, 2}, {4, 5}}},
    };
    for (const auto& [text, runs] : cases) {
        const auto parsed = parseNumberRuns(text, "staves");
        ASSERT_TRUE(parsed) << text;
        EXPECT_EQ(parsed.value(), runs) << text;
    }
    for (const char* text : {"", "0", "x", "1,", ",1", "3-1", "1-", "1;2", "99999999999"}) {
        EXPECT_FALSE(parseNumberRuns(text, "staves")) << text;
    }
}

}  // namespace
}  // namespace rovescio::cli
