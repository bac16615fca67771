// Selections looked up in a score.
#include "run/selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "cli/selection_request.h"
#include "support/score_text.h"

namespace rovescio::run {
namespace {

using engine::Document;
using test::scoreFromText;

engine::Result<Selection> selectIn(const Document& document, const std::string& measures,
                                   NumberRuns staves = {}, NumberRuns layers = {}) {
    SelectionRequest request{.measures = {}, .staves = std::move(staves), .layers = std::move(layers)};
    if (!measures.empty()) request.measures = cli::parseMeasures(measures).value();
    return select(document, request);
}

// The beats selected, measure by measure: "1: 1 2 3 | 2: 1" and so on, for the first staff selected.
std::string beatsIn(const Document& document, const Selection& selection) {
    std::string text;
    const short staff = selection.regions.front().start.slot;
    for (short measure = 1; measure <= document.measureCount(); ++measure) {
        for (const engine::StoredEntry& entry : document.entries({staff, measure, 0})) {
            if (std::ranges::none_of(selection.regions, [&](const EREGION& region) {
                    return contains(region, {staff, measure, 0}, entry.elapsed);
                })) {
                continue;
            }
            text += (text.empty() ? "" : " ") + document.measure(measure).label + ":" +
                    std::to_string(entry.elapsed / engine::kQuarter + 1);
        }
    }
    return text;
}

TEST(Selections, TakeInTheBeatsMeant) {
    const Document document =
        scoreFromText({"C 3/4 c4:q c4:q c4:q | c4:q c4:q c4:q | c4:q c4:q c4:q"}, {"0", "1", "X2"});
    const std::pair<const char*, const char*> cases[] = {
        {"", "0:1 0:2 0:3 1:1 1:2 1:3 X2:1 X2:2 X2:3"},
        {"1", "1:1 1:2 1:3"},
        {"-0", "0:1 0:2 0:3"},
        {"#2-", "1:1 1:2 1:3 X2:1 X2:2 X2:3"},
        {"1:2-X2:1", "1:2 1:3 X2:1"},
        {"1:2.5-1:3", "1:3"},
        {"0:3-0:3", "0:3"},
        {"1:3-", "1:3 X2:1 X2:2 X2:3"},
        {"#1:3-#2:1.5", "0:3 1:1"},
        {"X2:3-, 0..0:1", "0:1 X2:3"},
        {"0:1\u20130:1,0:2-1:1", "0:1 0:2 0:3 1:1"},
    };
    for (const auto& [measures, beats] : cases) {
        const auto selection = selectIn(document, measures);
        ASSERT_TRUE(selection) << measures << ": " << selection.problem().text();
        EXPECT_EQ(beatsIn(document, selection.value()), beats) << measures;
    }
}

TEST(Selections, HaveARegionForEachRunOfStavesAndShowTheLayersAsked) {
    const Document document = scoreFromText(std::vector<std::string>(4, "C 4/4 c4:w | c4:w"));
    const auto selection = selectIn(document, "2", {{1, 1}, {3, 4}}, {{1, 2}});
    ASSERT_TRUE(selection);
    ASSERT_EQ(selection.value().regions.size(), 2U);
    EXPECT_EQ(selection.value().regions[1].start.slot, 3);
    EXPECT_EQ(selection.value().regions[1].end.slot, 4);
    EXPECT_EQ(selection.value().layers, (std::array<bool, 4>{true, true, false, false}));
    EXPECT_EQ(selection.value().description, "measure 2, staves 1,3-4, layers 1-2");
}

TEST(Selections, AreRefusedWithWhatExists) {
    const Document document = scoreFromText(
        std::vector<std::string>(2, "C 3/4 c4:h. | c4:h. | c4:h. | c4:h."), {"1", "2", "2", "3"});
    const std::tuple<const char*, NumberRuns, NumberRuns, const char*> cases[] = {
        {"9", {}, {}, "there is no measure 9. The score has measures 1 to 3 (#1 to #4)"},
        {"#5", {}, {}, "there is no measure #5"},
        {"1-2", {}, {}, "several measures have the number 2, among them #2 and #3"},
        {"3-1", {}, {}, "runs backwards"},
        {"3,1-#2,#2:3-#3", {}, {}, "two of the ranges of measures overlap"},
        {"3:3-3:1", {}, {}, "runs backwards"},
        {"3:4-", {}, {}, "measure 3 has only 3 beats"},
        {"", {{2, 3}}, {}, "there is no staff 3. The score has staves 1 to 2"},
        {"1", {}, {{3, 3}}, "there is no note in the selection (measure 1, layer 3)"},
    };
    for (const auto& [measures, staves, layers, text] : cases) {
        const auto selection = selectIn(document, measures, staves, layers);
        ASSERT_FALSE(selection) << measures;
        EXPECT_NE(selection.problem().text().find(text), std::string::npos) << selection.problem().text();
    }
    EXPECT_FALSE(selectIn(Document(), ""));
}

}  // namespace
}  // namespace rovescio::run
