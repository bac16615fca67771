// Layers poured again into their measures.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "engine/edit/pour.h"
#include "engine/interface/session.h"
#include "engine/model/note_values.h"
#include "support/memory_user_interface.h"
#include "support/reversal.h"
#include "support/score_text.h"

namespace rovescio::test {
namespace {

using engine::Document;

struct Rebarred {
    // Measures are as long as what is in them, unless they are to keep to the time signature.
    explicit Rebarred(const char* line, bool signature = false) : document(scoreFromText({line})) {
        for (const short measure : document.measureNumbers()) {
            if (signature) continue;
            engine::Fraction length;
            for (const engine::StoredEntry& entry : document.entries({1, measure, 0}))
                length += engine::lengthOf(entry);
            document.staffMeasure(1, measure).duration = length.floor();
        }
    }

    bool reverse(short first = 1, short last = 0) { return reverseStaff(session, 1, first, last); }
    // Rebars all measures of the only staff.
    bool rebar() { return session.rebar({{0, 1, 1, 0}, {0, 1, document.measureCount(), 0x7FFFFFFF}}); }
    // Entries begin where those before them end.
    void expectPositions() const {
        for (const short measure : document.measureNumbers()) {
            engine::Fraction reached;
            for (const engine::StoredEntry& entry : document.entries({1, measure, 0})) {
                EXPECT_EQ(+entry.elapsed, reached.floor()) << "measure " << measure;
                reached += engine::lengthOf(entry);
            }
        }
    }

    Document document;
    MemoryUserInterface front;
    engine::Session session{document, front};
};

struct Case {
    const char* name;
    const char* score;
    const char* reversed;
};

TEST(Rebar, PoursReversedEntriesIntoTheirMeasures) {
    const Case bothWays[] = {
        {"tripletCut", "C 4/4 c4:h. g4:e | d4:e*3:2 e4:e*3:2 f4:e*3:2 g4:h.",
         "g4:h. f4:e*3:2 e4~:s*3:2 | e4^:s*3:2 d4:e*3:2 g4:e c4:h."},
        {"keepsAccidentals", "G 2/4 f4!:q f#4!:q | f#4:h", "f#4:h | f#4:q f4!:q"},
        {"equalMeasures", "C 4/4 c4:q d4:h e4:q | f4:h. g4:q", "g4:q f4:h. | e4:q d4:h c4:q"},
        {"noteOverBarline", "C 4/4 c4:q d4:h | e4:h f4:h", "f4:h e4~:q | e4^:q d4:h c4:q"},
        {"rejoined", "C 4/4 c4:q d4~:h | d4^:q e4:h.", "e4:h. | d4~:q d4^:h c4:q"},
        {"tieInMeasureStays", "C 4/4 c4~:q c4^:q d4:h", "d4:h c4~:q c4^:q"},
        {"middleOfThreeTied", "C 3/4 c4~:q c4^:q d4:q", "d4:q c4~:q c4^:q"},
        {"tieChain", "C 3/4 c4~:q c4~^:q c4^:q", "c4~:q c4~^:q c4^:q"},
        {"tripletWhole", "C 2/4 c4:e*3:2 d4:e*3:2 e4:e*3:2 f4:q", "f4:q e4:e*3:2 d4:e*3:2 c4:e*3:2"},
        {"graceStaysWithItsNote", "C 2/4 c4:h | <c4 f4>:q /d4:e <e4 g4>:q",
         "<e4 g4>:q /d4:e <c4 f4>:q | c4:h"},
        {"reminderAtTheStart", "C 4/4 c4:h | e4!:h d4:q", "d4:q e4~!:q | e4^:q c4:h"},
        {"gracesBehindTheLastNote", "C 2/4 c4:h /d4:e | e4:h", "e4:h | /d4:e c4:h"},
        {"noteOverThreeMeasures", "C 4/4 c4:w | d4:q | e4:q", "e4:q d4:q c4~:h | c4~^:q | c4^:q"},
        {"reminders", "C 4/4 c4!:q d4!:q e4!:q f4!:q", "f4!:q e4!:q d4!:q c4!:q"}};
    const Case oneWay[] = {
        {"oneOfTwoEqualSoundsTied", "C 3/4 c4:q <c#4~ db4~>:q <db4^ e4>:q",
         "<db4~! e4>:q <c#4! db4^>:q c4!:q"},
        {"enharmonicTies", "C 3/4 c4:q <b#3~ c4~>:q <c4^ dbb4^>:q", "<c4~ dbb4~!>:q <b#3^! c4^>:q c4:q"},
        {"halfTieDropped", "C 3/4 c4:q d4:q e4~:q", "e4:q d4:q c4:q"},
        {"tupletRestCut", "C 4/4 f4:h. | c4:q.*3:2 r:q.*3:2 a4:h g4:s",
         "g4:s a4:h r:q*3:2 r:t*3:2 | r:s.*3:2 c4:q.*3:2 f4:h."},
        {"restRegrouped", "C 4/4 c4:q r:w | d4:q r:h", "r:h d4:q r:q r:q | r:h c4:q"}};
    for (const bool restored : {true, false}) {
        for (const Case& c : restored ? std::span<const Case>(bothWays) : oneWay) {
            SCOPED_TRACE(c.name);
            Rebarred run(c.score);
            const std::string before = textOf(run.document);
            if (restored) {
                const SXMassEdit edit = run.session.massEdits.start();
                EXPECT_TRUE(run.rebar());
                run.session.massEdits.end(edit, false);
                EXPECT_EQ(textOf(run.document), before) << "where nothing has moved";
            }
            ASSERT_TRUE(run.reverse()) << run.session.refusal()->text();
            EXPECT_EQ(textOf(run.document), c.reversed);
            run.expectPositions();
            ASSERT_TRUE(run.reverse());
            EXPECT_EQ(textOf(run.document) == before, restored);
        }
    }
}

TEST(Rebar, DropsTiesThatLedIntoTheRegionAndOutOfIt) {
    Rebarred run("C 4/4 e4:w | c4~:w | c4^:w | d4~:w | d4^:w");
    ASSERT_TRUE(run.reverse(3, 4));
    EXPECT_EQ(textOf(run.document), "e4:w | c4:w | d4:w | c4:w | d4:w");
}

TEST(Rebar, DropsTiesOfNotesThatPartInTheSameEdit) {
    Rebarred run("C 4/4 c4~:q c4^:q d4:h");
    const SXMassEdit edit = run.session.massEdits.start();
    ASSERT_TRUE(run.reverse());
    for (ENOTE& note : run.session.massEdits.editable({1, 1, 0})[1].notes()) ++note.displacement;
    run.session.massEdits.end(edit, false);
    EXPECT_EQ(textOf(run.document), "d4:h d4:q c4:q");
}

TEST(Rebar, TiesNoLayersThatWereNotTied) {
    Rebarred run("C 4/4 c5:h. f3:q");
    addLayer(run.document, 1, 1, "f3~:h. f3^:q");
    const SXMassEdit edit = run.session.massEdits.start();
    for (const auto& [layer, flags] : {std::pair<short, std::uint32_t>(0, NOTE_TIE_END), {1, 0}}) {
        for (ENOTE& note : run.session.massEdits.editable({1, 1, layer})[1].notes()) {
            note.noteFlags = (note.noteFlags & ~NOTE_TIES) | flags;
        }
    }
    ASSERT_TRUE(run.rebar());
    run.session.massEdits.end(edit, false);
    EXPECT_EQ(textOf(run.document) + " / " + textOf(run.document, 1, 1), "c5:h. f3:q / f3:h. f3:q");
}

TEST(Rebar, EmptiesLayersThatHoldNothingButFillers) {
    Rebarred run("C 2/4 c4:h | d4:h");
    addLayer(run.document, 1, 1, "| e4:h");
    const SXMassEdit edit = run.session.massEdits.start();
    EXTGF2005a* const frame = run.session.frames.load({1, 1, 1});
    ASSERT_TRUE(run.session.frames.insert(frame, 0, 1));
    frame->entries[0].duration = 2048;
    ASSERT_TRUE(run.session.frames.save(frame));
    run.session.frames.free(frame);
    reverse(run.session, 1, 1, run.document.measureNumbers());
    ASSERT_TRUE(run.rebar());
    run.session.massEdits.end(edit, false);
    EXPECT_EQ(textOf(run.document, 1, 1), "e4:h |");
}

TEST(Rebar, RefusesLayersThatDoNotFillTheirMeasures) {
    for (const char* score : {"C 4/4 c4:q | d4:w", "C 4/4 c4:w e4:q | d4:w"}) {
        Rebarred run(score, true);
        const std::string before = textOf(run.document);
        EXPECT_FALSE(run.reverse()) << score;
        ASSERT_TRUE(run.session.refusal());
        EXPECT_NE(run.session.refusal()->text().find("staff 1, layer 1"), std::string::npos);
        EXPECT_EQ(textOf(run.document), before);
    }
}

TEST(NoteValues, DivideRestsByTheMetre) {
    struct {
        std::int32_t position, length;
        engine::Metre metre;
        std::vector<std::int32_t> values;
    } const cases[] = {{1024, 3072, {4096, 1024}, {1024, 2048}}, {0, 3072, {4096, 1024}, {3072}},
                       {512, 1024, {4096, 1024}, {512, 512}},    {1024, 2048, {3072, 1024}, {1024, 1024}},
                       {0, 2560, {3072, 512}, {1536, 1024}},     {512, 2560, {3072, 512}, {512, 512, 1536}},
                       {256, 768, {2048, 1024}, {256, 512}}};
    for (const auto& c : cases) {
        EXPECT_EQ(engine::splitByMetre(c.position, c.length, c.metre), c.values)
            << c.position << ' ' << c.length;
    }
}

}  // namespace
}  // namespace rovescio::test
