// What the document holds after a score was read.
#include <gtest/gtest.h>

#include <algorithm>

#include "musicxml/score_builder.h"
#include "support/score_text.h"

namespace rovescio::test {
namespace {

// Contents of a measure, and the text of its frames.
struct FrameText {
    short staff;
    short layer;
    std::string text;
};

using ReadingCase = std::tuple<const char*, std::string, std::vector<FrameText>>;

std::string onStaff(const std::string& notes, int staff) {
    return voice(std::to_string(4 * staff - 3), notes, "<staff>" + std::to_string(staff) + "</staff>");
}

std::vector<ReadingCase> readingCases() {
    std::string tall = note("c3:w");
    for (const char* pitch : {"d3", "e3", "f3", "g3", "a3", "b3", "c4", "d4", "e4", "f4", "g4", "a4"}) {
        tall += chordNote(std::string(pitch) + ":w");
    }
    return {
        {"notes, rests and written accidentals",
         note("c4:e") + note("g#4:e", accidental("sharp", " cautionary=\"yes\"")) +
             note("f#4:q", accidental("sharp")) + note("bb3:q", accidental("flat", " parentheses=\"yes\"")) +
             note("r:q"),
         {{1, 0, "c4:e g#4!+:e f#4!:q bb3!+:q r:q"}}},
        {"chords are sorted upward",
         note("e5:h") + chordNote("c4:h") + chordNote("g4:h") + note("r:h"),
         {{1, 0, "<c4 g4 e5>:h r:h"}}},
        {"ties by either element",
         note("c4:h", "<notations><tied type=\"start\"/></notations>") +
             timedNote("C", "8", tie("stop") + tie("start")),
         {{1, 0, "c4~:h c4~^:h"}}},
        {"dots and tuplets, nested ones multiplied",
         timedNote("C", "6", "<type>quarter</type><dot/>") +
             timedNote("D", "1.333333", "<type>quarter</type>") + timedNote("E", "2", "<type>eighth</type>") +
             attributes("9") + timedNote("F", "3", "<type>eighth</type>" + tuplet(3, 2)) +
             timedNote("G", "2", "<type>16th</type>" + tuplet(9, 8)),
         {{1, 0, "c4:q. d4:341 e4:e f4:e*3:2 g4:s*9:8"}}},
        {"the sounding duration where the type does not agree",
         timedNote("C", "16", "<type>half</type>"),
         {{1, 0, "c4:w"}}},
        {"grace notes take no time, cue notes do",
         "<note><grace slash=\"yes\"/><pitch><step>D</step><octave>5</octave></pitch></note>" + note("c5:h") +
             "<note><grace/><pitch><step>E</step><octave>5</octave></pitch><type>16th</type></note>"
             "<note><cue/><pitch><step>E</step><octave>5</octave></pitch><duration>8</duration>"
             "<type>half</type></note>",
         {{1, 0, "/d5:e c5:h /e5:s e5:h"}}},
        {"a note without a voice is of the first",
         "<listening/><grouping type=\"start\"/><link/><bookmark id=\"b\"/>" + note("c4:h") +
             voice("1", "d4:h"),
         {{1, 0, "c4:h d4:h"}}},
        {"voices in order of their numbers",
         voice("10", "c4:w") + backup(4) + voice("2", "e4:w") + backup(4) + voice("x", "g4:w"),
         {{1, 0, "e4:w"}, {1, 1, "c4:w"}, {1, 2, "g4:w"}, {1, 3, ""}}},
        {"a voice in another staff is a voice of that staff",
         attributes("", "<staves>2</staves>") + onStaff("c5:h", 1) + voice("1", "c4:h", "<staff>2</staff>") +
             backup(4) + onStaff("c3:w", 2),
         {{1, 0, "c5:h _:h"}, {2, 0, "_:h c4:h"}, {2, 1, "c3:w"}}},
        {"a chord across staves",
         onStaff("c5:w", 1) + chordNote("c3:w", "<staff>2</staff>") + chordNote("e5:w"),
         {{1, 0, "<c5 e5>:w"}, {2, 0, "c3:w"}}},
        {"a chord too large for one entry", tall, {{1, 0, "<c3 d3 e3 f3 g3 a3 b3 c4 d4 e4 f4 g4>:w a4:w"}}},
        {"a quarter-tone counts as the semitone below and hundredths",
         "<note><pitch><step>B</step><alter>-0.5</alter><octave>4</octave></pitch><duration>16</duration>"
         "</note>",
         {{1, 0, "bb4':w"}}},
        {"values behind comments, references and marked sections",
         "<note><pitch><step><!-- no --><![CDATA[G]]></step><octave>&#52;</octave></pitch>"
         "<duration> 16\n</duration></note>",
         {{1, 0, "g4:w"}}},
    };
}

TEST(ScoreReading, entriesOfAMeasure) {
    for (const auto& [name, measure, frames] : readingCases()) {
        SCOPED_TRACE(name);
        const OpenScore score = open(scoreOf({measure}));
        EXPECT_TRUE(score.file.notices().empty());
        for (const auto& [staff, layer, text] : frames) {
            EXPECT_EQ(textOf(score.document, staff, layer), text);
        }
    }
}

TEST(ScoreReading, positionsStayExactAcrossTupletsAndDivisions) {
    std::string measure;
    for (int i = 0; i < 6; ++i) measure += timedNote("C", "0.666666", "");  // not quite a sixth
    measure += attributes("3");
    for (int i = 0; i < 3; ++i) measure += timedNote("D", "1", "<type>eighth</type>" + tuplet(3, 2));
    measure += "<forward><duration>3</duration></forward>" + timedNote("E", "3", "");
    const OpenScore score = open(scoreOf({measure}));
    std::vector<std::int32_t> positions;
    for (const engine::StoredEntry& entry : score.document.entries({1, 1, 0}))
        positions.push_back(+entry.elapsed);
    EXPECT_EQ(positions,
              (std::vector<std::int32_t>{0, 170, 341, 511, 682, 853, 1023, 1365, 1706, 2047, 3071}));
}

TEST(ScoreReading, fifthToEighthVoiceAreSecondVoicesOfTheirLayers) {
    std::string measure;
    for (int number = 1; number <= 8; ++number) {
        if (number > 1) measure += backup(4);
        measure += voice(std::to_string(number), "c" + std::to_string(number) + ":h r:h");
    }
    const OpenScore score = open(scoreOf({measure}));
    EXPECT_EQ(textOf(score.document, 1, 0), "c1:h c5:h r:h r:h");
    EXPECT_EQ(textOf(score.document, 1, 3), "c4:h c8:h r:h r:h");
    std::vector<std::uint32_t> marks;
    for (const engine::StoredEntry& entry : score.document.entries({1, 1, 2})) {
        marks.push_back(entry.entryFlags & (ENTRY_STARTS_VOICE2 | ENTRY_VOICE2));
    }
    EXPECT_EQ(marks, (std::vector<std::uint32_t>{ENTRY_STARTS_VOICE2, ENTRY_VOICE2, ENTRY_VOICE2, 0}));
}

TEST(ScoreReading, voicesKeepTheirLayersFromMeasureToMeasure) {
    // Voices of the measures, and the layers that have entries there.
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"123", "13", "23"}, "012 02 12 "},
        {{"2", "12"}, "1 01 "},
        {{"1234", "134", "5134"}, "0123 023 0123 "},
        {{"12345", "5"}, "0123 0 "},
    };
    for (const auto& [measures, layers] : cases) {
        std::vector<std::string> contents;
        for (const std::string& voices : measures) {
            std::string& content = contents.emplace_back();
            for (const char number : voices) {
                content += (content.empty() ? "" : backup(4)) + voice(std::string(1, number), "c4:w");
            }
        }
        const OpenScore score = open(scoreOf(contents));
        std::string found;
        for (short measure = 1; measure <= score.document.measureCount(); ++measure) {
            for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                if (!score.document.entries({1, measure, layer}).empty()) found += std::to_string(layer);
            }
            found += " ";
        }
        EXPECT_EQ(found, layers) << measures.front();
    }
}

TEST(ScoreReading, keysBecomeWordsByTheirThird) {
    const struct {
        const char* key;
        std::uint16_t word;
    } cases[] = {
        {"<fifths>2</fifths>", 0x0002},
        {"<fifths>-3</fifths><mode>minor</mode>", 0x01FD},
        {"<fifths>-1</fifths><mode>dorian</mode>", 0x01FF},
        {"<fifths>-1</fifths><mode>phrygian</mode>", 0x01FF},
        {"<fifths>1</fifths><mode>lydian</mode>", 0x0001},
        {"<fifths>0</fifths><mode>mixolydian</mode>", 0x0000},
        {"<fifths>3</fifths><mode>locrian</mode>", 0x0103},
        {"<key-step>F</key-step><key-alter>1</key-alter><key-step>B</key-step><key-alter>-1</key-alter>",
         0x4000},
    };
    for (const auto& key : cases) {
        SCOPED_TRACE(key.key);
        const OpenScore score = open(scoreOf(
            {attributes("", "<key>" + std::string(key.key) + "</key>") + note("f#4:h") + note("bb4:h")}));
        EXPECT_EQ(score.document.staffMeasure(1, 1).key.word(), key.word);
        EXPECT_EQ(textOf(score.document), "f#4:h bb4:h");
    }
}

TEST(ScoreReading, keyChangesCountFromTheNextMeasure) {
    const OpenScore score = open(scoreOf({
        note("c4:h") + attributes("2#") + note("f#4:h") + backup(3) + attributes("1b") +
            forward(3),                                                                 // inside
        note("f#4:w") + attributes("", "<key number=\"1\"><fifths>-1</fifths></key>"),  // at the end
        note("bb4:w"),
    }));
    EXPECT_EQ(textOf(score.document), "c4:h f#4:h | f#4:w | bb4:w");
    const auto word = [&](short measure) { return score.document.staffMeasure(1, measure).key.word(); };
    EXPECT_EQ(word(1), 0);
    EXPECT_EQ(word(2), 2);
    EXPECT_EQ(word(3), 0xFF);
    EXPECT_EQ(score.document.keyAt(1, 1, 1023).word(), 0);
    EXPECT_EQ(score.document.keyAt(1, 1, 2047).word(), 0xFF);
    EXPECT_EQ(score.document.keyAt(1, 1, 2048).word(), 2);
    EXPECT_TRUE(score.document.staffMeasure(1, 1).changesInside);
    EXPECT_FALSE(score.document.staffMeasure(1, 2).changesInside);
}

TEST(ScoreReading, onlyAClefThatIsAnotherOneChangesInside) {
    const OpenScore score =
        open(scoreOf({note("c4:h") + attributes("G2") + note("c4:h"),
                      note("c4:h") + attributes("F4") + note("c4:h"), attributes("C3") + note("c4:w")}));
    EXPECT_FALSE(score.document.staffMeasure(1, 1).changesInside);
    EXPECT_TRUE(score.document.staffMeasure(1, 2).changesInside);
    EXPECT_FALSE(score.document.staffMeasure(1, 3).changesInside);
}

TEST(ScoreReading, measuresAreAsLongAsTheirTime) {
    const auto time = [](const std::string& contents) {
        return attributes("4", "<time>" + contents + "</time>");
    };
    const std::string common = time("<beats>4</beats><beat-type>4</beat-type>");
    const struct {
        const char* name;
        std::string attributes;
        std::string contents;
        std::int32_t duration;
        std::int32_t beat;
    } cases[] = {
        {"signature", common, "", 4096, 1024},
        {"pick-up", common, note("c4:q"), 1024, 1024},
        {"sum of beats", time("<beats>3+2</beats><beat-type>8</beat-type>"), "", 2560, 512},
        {"several signatures",
         time("<beats>2</beats><beat-type>4</beat-type><beats>3</beats><beat-type>8</beat-type>"), "", 3584,
         1024},
        {"free", time("<senza-misura/>"), note("c4:q"), 1024, 1024},
        {"none", attributes("4"), note("c4:q"), 1024, 1024},
    };
    for (const auto& measure : cases) {
        SCOPED_TRACE(measure.name);
        const OpenScore score = open(scoreOf({measure.contents, ""}, measure.attributes));
        EXPECT_EQ(score.document.staffMeasure(1, 1).duration, measure.duration);
        EXPECT_EQ(score.document.staffMeasure(1, 1).beat, measure.beat);
    }
}

TEST(ScoreReading, percussionIsOffTheScales) {
    const std::string drum =
        "<note><unpitched><display-step>E</display-step><display-octave>4</display-octave></unpitched>"
        "<duration>8</duration></note><note><unpitched/><duration>8</duration></note>";
    const OpenScore score = open(scoreOf({drum}, attributes("4 2#")));
    EXPECT_TRUE(score.document.staff(1).unpitched);
    EXPECT_EQ(score.document.staffMeasure(1, 1).key.word(), 0x4000);
    EXPECT_EQ(textOf(score.document), "e4:h b4:h");
    EXPECT_EQ(engine::entryState(score.document.entries({1, 1, 0})[0]).unpitched, 1);

    const OpenScore clef =
        open(scoreOf({note("g4:w")}, attributes("4", "<clef><sign>percussion</sign></clef>")));
    EXPECT_TRUE(clef.document.staff(1).unpitched);
}

// Two parts; the second is shorter, has two staves and is written for a transposing instrument.
const std::string kParts =
    "<part-list><score-part id=\"A\"><part-name>Oboe</part-name></score-part>"
    "<score-part id=\"B\"><part-name></part-name></score-part></part-list>";
std::string timewiseScore() {
    return "<score-timewise><work><work-title>Echo &amp; Answer</work-title></work>"
           "<identification><creator type=\"lyricist\">N. N.</creator><creator type=\"composer\">A. "
           "Author</creator>"
           "</identification>" +
           kParts + "<measure number=\"X1\"><part id=\"A\">" + kCommonAttributes + note("c4:w") +
           "</part><part id=\"B\">" +
           attributes("4 2#", "<staves>2</staves><transpose><chromatic>-2</chromatic></transpose>") +
           note("d4:w") + backup(4) + onStaff("d3:w", 2) +
           "</part></measure><measure number=\"X2\"><part id=\"A\">" + note("e4:w") +
           "</part></measure></score-timewise>";
}

TEST(ScoreReading, partsAndStavesInScoreOrder) {
    const OpenScore score = open(timewiseScore());
    ASSERT_EQ(score.document.staffCount(), 3);
    ASSERT_EQ(score.document.measureCount(), 2);
    EXPECT_EQ(score.document.staff(1).name, "Oboe");
    EXPECT_EQ(score.document.staff(3).name, "B");
    EXPECT_EQ(score.document.measure(2).label, "X2");
    EXPECT_EQ(textOf(score.document, 1), "c4:w | e4:w");
    EXPECT_EQ(textOf(score.document, 2), "d4:w |");
    EXPECT_EQ(textOf(score.document, 3), "d3:w |");
    EXPECT_EQ(score.document.staffMeasure(3, 2).key.word(), 2);
    EXPECT_EQ(score.file.summary().title, "Echo & Answer");
    EXPECT_EQ(score.file.summary().composer, "A. Author");
}

TEST(ScoreReading, strangeThingsAreToldOnce) {
    const OpenScore score = open(scoreOf(
        {note("c4:q") + backup(2) + "<odd/>" + note("c4:q") + backup(2) + "\n<odd/>" + chordNote("e4:q")}));
    EXPECT_EQ(
        score.file.notices(),
        (std::vector<std::string>{
            "test.musicxml:4: a <backup> goes beyond the start of the measure; it is taken to go to the "
            "start (measure 1)",
            "test.musicxml:4: the element <odd> is unknown; it is kept as it is (measure 1)",
            "test.musicxml:5: a chord note follows no note; it is taken as a note of its own (measure 1)"}));
}

}  // namespace
}  // namespace rovescio::test
