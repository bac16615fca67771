// Ranges of measures and lists of numbers as written on the command line.
#include "cli/selection_request.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using rovescio::cli::MeasurePoint;
using rovescio::cli::MeasureRange;
using rovescio::cli::NumberRuns;
using rovescio::cli::parseMeasures;
using rovescio::cli::parseNumberRuns;

MeasurePoint printed(const char* number, std::optional<double> beat = std::nullopt) {
    return {.counted = false, .number = number, .beat = beat};
}

MeasurePoint counted(const char* number, std::optional<double> beat = std::nullopt) {
    return {.counted = true, .number = number, .beat = beat};
}

TEST(MeasureRanges, AreUnderstood) {
    const struct {
        const char* text;
        MeasureRange range;
    } cases[] = {
        {"7", {printed("7"), printed("7")}},
        {"3-10", {printed("3"), printed("10")}},
        {"3-", {printed("3"), std::nullopt}},
        {"-10", {std::nullopt, printed("10")}},
        {"3:2-10:1.5", {printed("3", 2), printed("10", 1.5)}},
        {"#5", {counted("5"), counted("5")}},
        {"#5:3-X1", {counted("5", 3), printed("X1")}},
    };
    for (const auto& [text, range] : cases) {
        const auto parsed = parseMeasures(text);
        ASSERT_TRUE(parsed) << text;
        EXPECT_EQ(parsed.value(), range) << text;
    }
}

TEST(MeasureRanges, ThatMakeNoSenseAreRefused) {
    for (const char* text :
         {"", "-", "3:", "3:2", "3:0-4", "3:x-4", "3:nan-4", "#-4", "#x", "3-4-5:y", ":2-3"}) {
        EXPECT_FALSE(parseMeasures(text)) << text;
    }
}

TEST(NumberLists, BecomeAscendingRuns) {
    const struct {
        const char* text;
        NumberRuns runs;
    } cases[] = {
        {"1", {{1, 1}}},
        {"1-2", {{1, 2}}},
        {"1,3-4", {{1, 1}, {3, 4}}},
        {"4,1-2,3", {{1, 4}}},
        {"5,1-3,2", {{1, 3}, {5, 5}}},
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
