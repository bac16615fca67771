// Written scores are read again: what a proof finds in texts that are not those of the document.
#include "musicxml/reading/proofreading.h"

#include <gtest/gtest.h>

#include <vector>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/score_reader.h"
#include "musicxml/score_builder.h"
#include "xml/tree.h"

namespace rovescio::musicxml {
namespace {

using test::note;
using test::scoreOfParts;

TEST(Proofreading, TellsWhatIsNotAsItShouldBe) {
    using Part = std::vector<std::string>;
    const auto part = [](int number) { return "part " + std::to_string(number); };
    const Part whole = {note("c4:q") + note("d4:q"), note("e4:w")};
    const std::string faster = test::attributes("8");
    const std::string sound = scoreOfParts({whole, {note("f4:h"), note("g4:w")}});
    const std::pair<std::string, std::string> cases[] = {
        {sound, ""},
        {scoreOfParts({whole, {note("f4:q") + note("r:q"), faster + test::timedNote("G", "32")}}), ""},
        {sound.substr(0, sound.rfind("</part>")), "its XML is not well-formed: the text ends inside <part>"},
        {scoreOfParts({whole}), "it has 1 parts instead of 2"},
        {scoreOfParts({whole, whole, whole}), "it has 3 parts instead of 2"},
        {scoreOfParts({whole, {note("f4:h")}}), part(2) + " has 1 measures instead of 2"},
        {scoreOfParts({whole, {note("f4:h"), note("g4:q")}}),
         "measure 2 of " + part(2) + " has a different length than before"},
        {scoreOfParts({{faster + whole[0], whole[1]}, whole}),
         "measure 1 of " + part(1) + " has a different length than before"},
        // Divisions hold in the measures behind.
        {scoreOfParts({{whole[0] + faster, whole[1]}, whole}),
         "measure 2 of " + part(1) + " has a different length than before"},
    };
    engine::Document document;
    const xml::Tree tree(sound, kVocabulary);
    auto reading = readScore(tree, "test.musicxml", document);
    ASSERT_TRUE(reading);
    const auto proofread = [&](const std::string& text) {
        Proofreader reader(reading->sources, document);
        reader.read(text);
        return reader.finish().value_or("");
    };
    for (const auto& [text, fault] : cases) {
        EXPECT_EQ(proofread(text), fault) << text;
    }
    // A measure that the document makes shorter may have its new length as well as its old one.
    document.staffMeasure(2, 2).duration = 3072;
    for (const std::string& last : {note("g4:h") + note("r:q"), note("g4:w")}) {
        EXPECT_EQ(proofread(scoreOfParts({whole, {note("f4:h"), last}})), "");
    }
}

}  // namespace
}  // namespace rovescio::musicxml
