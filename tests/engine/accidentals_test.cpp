// Which notes show an accidental after a change.
#include "engine/edit/accidentals.h"

#include <gtest/gtest.h>

#include "engine/edit/consequences.h"
#include "support/score_text.h"

namespace rovescio::engine {
namespace {

// Marks every entry of layer 1 as changed and lets the engine decide.
void decideAll(Document& document) {
    MassEdits edits(document);
    const Consequences consequences(document, edits);
    const SXMassEdit edit = edits.start();
    for (short measure = 1; measure <= document.measureCount(); ++measure) {
        for (StoredEntry& entry : edits.editable({1, measure, 0})) entry.reserved13 |= kDecideAccidentals;
    }
    edits.end(edit, false);
}

TEST(Accidentals, FollowTheRulesOfTheMeasure) {
    const std::pair<const char*, const char*> cases[] = {
        // The signature, and deviation from it.
        {"C 4/4 c4:q f#4:q bb4:q c4:q", "c4:q f#4!:q bb4!:q c4:q"},
        {"D 4/4 f#4:q f4:q c#5:q c5:q", "f#4:q f4!:q c#5:q c5!:q"},
        // An accidental holds to the barline, on its own line or space alone.
        {"C 4/4 f#4:q f#4:q f#5:q f4:q | f4:w", "f#4!:q f#4:q f#5!:q f4!:q | f4:w"},
        {"f 4/4 ab4:q a4:q ab4:q e4:q", "ab4:q a4!:q ab4!:q e4!:q"},
        // A tie carries it over the barline, for the tied note alone.
        {"C 4/4 f#4~:w | f#4^:h f#4:h", "f#4~!:w | f#4^:h f#4!:h"},
        // A tied note that shows its sign all the same has the player read it on.
        {"C 4/4 f#4~:w | f#4^!+:h f#4:q f4:q", "f#4~!:w | f#4^!+:h f#4:q f4!:q"},
        // A tie to another spelling carries nothing.
        {"C 4/4 c#4~:w | db4^:h d4:h", "c#4~!:w | db4^!:h d4!:h"},
        // Quarter tones are alterations of their own.
        {"C 4/4 e4':q e4':q e4:q e4':q", "e4'!:q e4':q e4!:q e4'!:q"},
        {"D 2/4 f4':q f#4:q", "f4'!:q f#4!:q"},
        // Inside a chord, and in grace notes.
        {"C 4/4 <c#5 f#5>:h /f#5:e f5:h", "<c#5! f#5!>:h /f#5:e f5!:h"},
        // What was decided by hand stays; a sign that is hidden does not count for the notes after it.
        {"C 4/4 c4!+:q f#4+:q f#4:q f4:q", "c4!+:q f#4+:q f#4!:q f4!:q"},
        // Accidentals that are not needed any more go.
        {"C 4/4 c4!:q d4!:q f#4:h", "c4:q d4:q f#4!:h"},
    };
    for (const auto& [before, after] : cases) {
        Document document = test::scoreFromText({before});
        decideAll(document);
        EXPECT_EQ(test::textOf(document), after) << before;
    }
}

TEST(Accidentals, RulesHoldAcrossLayersOfAStaff) {
    Document document = test::scoreFromText({"C 4/4 f#4:h f4:h"});
    test::addLayer(document, 1, 1, "r:q f#4:q f#4:q r:q");
    decideAll(document);
    EXPECT_EQ(test::textOf(document), "f#4!:h f4!:h");
    EXPECT_EQ(test::textOf(document, 1, 1), "r:q f#4:q f#4!:q r:q");
}

TEST(Accidentals, UnchangedNotesOnlyGainWhatBecameNecessary) {
    Document document = test::scoreFromText({"C 4/4 f#4!:q c4!:q f4:q f4!:q"});
    MassEdits edits(document);
    const Consequences consequences(document, edits);
    const SXMassEdit edit = edits.start();
    edits.editable({1, 1, 0})[0].reserved13 |= kDecideAccidentals;
    edits.end(edit, false);
    EXPECT_EQ(test::textOf(document), "f#4!:q c4!:q f4!:q f4!:q");
}

TEST(Accidentals, KnowKeyChangesInsideTheMeasure) {
    Document document = test::scoreFromText({"C 4/4 f#4:q f4:q f#4:q f4:q"});
    document.staffMeasure(1, 1).changesInside = true;
    document.addKeyChange({1, 1, 2048, KeySignature::standard(1, false)});
    decideAll(document);
    EXPECT_EQ(test::textOf(document), "f#4!:q f4!:q f#4:q f4!:q");
}

}  // namespace
}  // namespace rovescio::engine
