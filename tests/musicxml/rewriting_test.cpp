// Measures written again after their notes have changed places.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/interface/session.h"
#include "musicxml/score_builder.h"
#include "support/memory_user_interface.h"
#include "support/reversal.h"

namespace rovescio::test {
namespace {

// A score with its first staff reversed, as it is written.
std::string retrogradeOf(const std::string& score) {
    OpenScore file = open(score);
    MemoryUserInterface front;
    engine::Session session(file.document, front);
    EXPECT_TRUE(reverseStaff(session, 1)) << (session.refusal() ? session.refusal()->text() : "");
    return file.written();
}

std::string ornaments(const std::string& tremolo, const std::string& wave) {
    return "<notations><ornaments><tremolo type=\"" + tremolo + "\">3</tremolo><wavy-line type=\"" + wave +
           "\"/></ornaments></notations>";
}
std::string twoSyllables(const std::string& first, const std::string& second) {
    return "<lyric><syllabic>" + first + "</syllabic><text>a</text><elision/><syllabic>" + second +
           "</syllabic><text>e</text></lyric>";
}
std::string inChord(std::string noteXml) {
    return noteXml.insert(noteXml.find('>') + 1, "<chord/>");
}
std::string offsets(int own, int ofSound) {
    return direction("<words>dolce</words>", "<offset>" + std::to_string(own) + "</offset><sound><offset>" +
                                                 std::to_string(ofSound) + "</offset></sound>");
}
std::string bracket(const std::string& type, const std::string& look = "") {
    return "<notations><tuplet type=\"" + type + "\"" + look + "/></notations>";
}
std::string extension(const std::string& type) {
    return "<lyric number=\"1\"><extend type=\"" + type + "\"/></lyric>";
}
std::string syllable(const std::string& place, const std::string& extend = "") {
    return "<lyric number=\"1\"><syllabic>" + place + "</syllabic><text>la</text>" +
           (extend.empty() ? "" : "<extend type=\"" + extend + "\"/>") + "</lyric>";
}
// An eighth of a triplet.
std::string third(const std::string& step, const std::string& notations) {
    return timedNote(step, "2", "<type>eighth</type>" + tuplet(3, 2) + notations);
}
std::string tripletOf(const std::string& duration) {
    const std::string one = timedNote("F", duration, "<type>eighth</type>" + tuplet(3, 2));
    return one + one + one;
}
std::string ties(const std::string& end, const std::string& sign, const std::string& more) {
    return tie(end) + "<type>quarter</type>" + (sign.empty() ? "" : accidental(sign)) +
           "<notations><tied type=\"" + end + "\"" + more + "/></notations>";
}
// A quarter with a tie in both of its elements around the type.
std::string tiedNote(const std::string& step, const std::string& end, const std::string& more = "") {
    return timedNote(step, "4", ties(end, "", more));
}
// The same of a note with an alteration and perhaps the sign for it.
std::string alteredTie(const std::string& step, int alter, const std::string& end, const std::string& sign,
                       const std::string& more = "") {
    return "<note><pitch><step>" + step + "</step><alter>" + std::to_string(alter) +
           "</alter><octave>4</octave></pitch><duration>4</duration>" + ties(end, sign, more) + "</note>";
}
std::string onStaff(const std::string& text, int staff) {
    return note(text, "<staff>" + std::to_string(staff) + "</staff>");
}

// The first or second half of the triplet's D, tied.
std::string sixth(const std::string& end, const std::string& more) {
    return timedNote("D", "1",
                     tie(end) + "<type>16th</type>" + tuplet(3, 2) + "<notations><tied type=\"" + end + "\"" +
                         (end == "stop" ? " id=\"rovescio-cut-1-2-2\"" : "") + "/>" + more + "</notations>");
}

struct Case {
    const char* name;
    std::vector<std::string> before;
    std::vector<std::string> after;
    std::string attributes = kCommonAttributes;
};

TEST(Rewriting, putsNotesInTheirNewPlaces) {
    const std::string sung =
        "<notations><articulations><accent/></articulations></notations><lyric><text>la</text></lyric>";
    const std::string sungOn = std::string(sung).insert(sung.find("</notations>"), "<tied type=\"start\"/>");
    const std::string words = direction("<words>dolce</words>");
    const std::string harmony =
        "<harmony><root><root-step>C</root-step></root><kind>major</kind><offset>2</offset></harmony>";
    const std::string grace = graceNote("A", 4);
    const std::string dottedRest = "<note><rest/><duration>12</duration><type>half</type><dot/></note>";
    const std::string fermata = "<notations><fermata/></notations>";
    const std::vector<Case> bothWays = {
        {"a rest of several is one note value",
         {note("c4:q") + note("r:q"), dottedRest + note("d4:q")},
         {note("d4:q") + note("r:q"), dottedRest + note("c4:q")}},
        {"what belongs to a note goes with it",
         {note("c4:q", sung) + note("d4:q") + note("e4:h")},
         {note("e4:h") + note("d4:q") + note("c4:q", sung)}},
        {"words keep their hyphens and extensions",
         {note("c4:h", syllable("begin")) + note("d4:q", syllable("end", "start")) +
          note("e4:q", extension("stop"))},
         {note("e4:q", extension("start")) + note("d4:q", syllable("begin", "stop")) +
          note("c4:h", syllable("end"))}},
        {"chords stay together",
         {note("c4:q") + chordNote("e4:q") + note("r:q") + note("d4:h")},
         {note("d4:h") + note("r:q") + note("c4:q") + chordNote("e4:q")}},
        {"comments go with their notes",
         {"<!--c-->" + note("c4:w"), "<!--d-->" + note("d4:w")},
         {"<!--d-->" + note("d4:w"), "<!--c-->" + note("c4:w")}},
        {"ties are reversed",
         {tiedNote("C", "start") + tiedNote("C", "stop") + note("d4:h")},
         {note("d4:h") + tiedNote("C", "start") + tiedNote("C", "stop")}},
        {"a note over the barline is cut and joined again",
         {note("c4:h", sung), note("d4:h", sung) + note("e4:q")},
         {note("e4:q") + timedNote("D", "4", tie("start") + "<type>quarter</type>" + sungOn),
          tiedNote("D", "stop", " id=\"rovescio-cut-1-2-1\"") + note("c4:h", sung)}},
        {"directions keep to the voice that has a note at their time",
         {voice("1", "c5:w") + backup(4) + voice("2", "e4:q d4:q") + words + voice("2", "f4:h")},
         {voice("1", "c5:w") + backup(4) + voice("2", "f4:h") + words + voice("2", "d4:q e4:q")}},
        {"rests and graces under a beam",
         {note("c4:e", beam("begin")) + note("r:e") + grace + note("d4:e", beam("end")) + note("r:e") +
          note("e4:h")},
         {note("e4:h") + note("r:e") + note("d4:e", beam("begin")) + grace + note("r:e") +
          note("c4:e", beam("end"))}},
        {"each part of a cut note has its own sign",
         {note("c4:h"), note("f#4:h", accidental("sharp")) + note("e4:q")},
         {note("e4:q") + alteredTie("F", 1, "start", "sharp"),
          alteredTie("F", 1, "stop", "", " id=\"rovescio-cut-1-2-1\"") + note("c4:h")}},
        {"and its own pitch, in whatever key",
         {attributes("1#") + note("c4:h"), attributes("2b") + note("eb4:h") + note("d4:q")},
         {attributes("1#") + note("d4:q") + alteredTie("E", -1, "start", "flat"),
          attributes("2b") + alteredTie("E", -1, "stop", "", " id=\"rovescio-cut-1-2-1\"") + note("c4:h")}},
        {"a fermata stays with its rest, cut or joined again",
         {note("c4:q") + note("r:q", fermata), note("r:h") + note("d4:q")},
         {note("d4:q") + note("r:q"), note("r:h", fermata) + note("c4:q")}},
        {"a note of a chord keeps a duration of its own",
         {note("c4:q") + chordNote("e4:e") + note("d4:h")},
         {note("d4:h") + note("c4:q") + chordNote("e4:e")}},
        {"a tie is reversed on a note that keeps its measure",
         {note("c4:q") + tiedNote("D", "start"), tiedNote("D", "stop") + note("e4:q"), note("f4:h")},
         {note("f4:h"), note("e4:q") + tiedNote("D", "start"), tiedNote("D", "stop") + note("c4:q")}},
        {"brackets are closed at a barline that cuts, and are whole again",
         {timedNote("F", "9", "<type>quarter</type><dot/>"), third("C", bracket("start")) + third("D", "") +
                                                                 third("E", bracket("stop")) +
                                                                 timedNote("G", "6", "<type>quarter</type>")},
         {timedNote("G", "6", "<type>quarter</type>") + third("E", bracket("start")) +
              sixth("start", "<tuplet type=\"stop\" id=\"rovescio-cut-1-1-1\"/>"),
          sixth("stop", "<tuplet type=\"start\" id=\"rovescio-cut-1-2-1\"/>") + third("C", bracket("stop")) +
              timedNote("F", "9", "<type>quarter</type><dot/>")},
         attributes("6 2/4")},
        {"whole beams are reversed, with their hooks",
         {timedNote("C", "3", "<type>eighth</type><dot/>" + beam("begin")) + chordNote("e4:e") +
          note("d4:s", beam("end") + beam("backward hook", 2)) + note("e4:q") + note("f4:h")},
         {note("f4:h") + note("e4:q") + note("d4:s", beam("begin") + beam("forward hook", 2)) +
          timedNote("C", "3", "<type>eighth</type><dot/>" + beam("end")) + chordNote("e4:e")}},
        {"a chord that is cut is marked once",
         {note("c4:h"), note("d4:h") + chordNote("a4:h") + note("e4:q")},
         {note("e4:q") + tiedNote("D", "start") + inChord(tiedNote("A", "start")),
          tiedNote("D", "stop", " id=\"rovescio-cut-1-2-1\"") + inChord(tiedNote("A", "stop")) +
              note("c4:h")}},
        {"the mark of a cut stays with the later part",
         {note("e4:q") + tiedNote("D", "start"),
          tiedNote("D", "stop", " id=\"rovescio-cut-1-2-1\"") + note("c4:q")},
         {note("c4:q") + tiedNote("D", "start"),
          tiedNote("D", "stop", " id=\"rovescio-cut-1-2-1\"") + note("e4:q")}},
        {"brackets keep their look at their start",
         {third("C", bracket("start", " bracket=\"yes\"")) + third("D", "") + third("E", bracket("stop")) +
          "<note><rest/><duration>6</duration><type>quarter</type></note>"},
         {"<note><rest/><duration>6</duration><type>quarter</type></note>" +
          third("E", bracket("start", " bracket=\"yes\"")) + third("D", "") + third("C", bracket("stop"))},
         attributes("6 2/4")},
        {"grace notes stay behind their note",
         {note("c4:h") + grace + note("d4:h")},
         {note("d4:h") + grace + note("c4:h")}},
        {"voices follow each other",
         {voice("1", "c5:h d5:h") + backup(4) + voice("2", "e4:q f4:h r:q")},
         {voice("1", "d5:h c5:h") + backup(4) + voice("2", "r:q f4:h e4:q")}},
    };
    const std::vector<Case> oneWay = {
        {"directions and harmony keep their time, also behind a chord note that follows none",
         {chordNote("c4:h") + words + note("d4:q") + harmony + note("e4:q")},
         {note("e4:q") + note("d4:q") + words + note("c4:h") + backup(1) + harmony + forward(1)}},
        {"voices that take turns stay two",
         {voice("1", "c5:h") + voice("2", "e4:h")},
         {forward(2) + voice("1", "c5:h") + backup(4) + voice("2", "e4:h") + forward(2)}},
        {"durations with decimals mean what the notes say",
         {kCommonAttributes + timedNote("C", "1.333333", "<type>eighth</type>" + tuplet(3, 2)) +
          timedNote("D", "1.333333", "<type>eighth</type>" + tuplet(3, 2)) +
          timedNote("E", "1.333334", "<type>eighth</type>" + tuplet(3, 2)) + note("f4:q")},
         {attributes("12 0# 4/4 G2") + timedNote("F", "12", "<type>quarter</type>") +
          timedNote("E", "4", "<type>eighth</type>" + tuplet(3, 2)) +
          timedNote("D", "4", "<type>eighth</type>" + tuplet(3, 2)) +
          timedNote("C", "4", "<type>eighth</type>" + tuplet(3, 2))},
         ""},
        {"a voice that goes to a staff which stays keeps its number there",
         {attributes("", "<staves>2</staves>") + onStaff("c4:h", 1) + onStaff("d3:h", 2)},
         {attributes("", "<staves>2</staves>") + forward(2) +
          timedNote("C", "8", "<voice>2</voice><type>half</type><staff>1</staff>") + backup(4) + forward(2) +
          onStaff("d3:h", 2)}},
        {"beams end at the barline",
         {note("g4:e"), note("c4:h.") + note("d4:e", beam("begin")) + note("e4:e", beam("end"))},
         {note("e4:e"), note("d4:e") + note("c4:h.") + note("g4:e")}},
        {"what has a direction points the other way, and places on the page are forgotten",
         {"<note default-x=\"20\" relative-x=\"1\">" +
          note("c4:h", ornaments("start", "stop") + twoSyllables("begin", "middle")).substr(6) +
          note("d4:h")},
         {note("d4:h") + note("c4:h", ornaments("stop", "start") + twoSyllables("middle", "end"))}},
        {"a measure's rest that is cut has values where it fills none",
         {note("c4:q"), "<note><rest measure=\"yes\"/><duration>16</duration></note>"},
         {"<note><rest measure=\"yes\"/><duration>4</duration></note>", dottedRest + note("c4:q")}},
        {"offsets count in the divisions that are needed, and barlines stay last",
         {attributes("2 4/4") + offsets(2, 1) + timedNote("C", "8", "<type>whole</type>") +
              "<barline location=\"right\"/>",
          attributes("3") + tripletOf("1") + timedNote("G", "9", "<type>half</type><dot/>")},
         {attributes("6 4/4") + offsets(6, 3) + timedNote("G", "18", "<type>half</type><dot/>") +
              tripletOf("2") + "<barline location=\"right\"/>",
          attributes("3") + timedNote("C", "12", "<type>whole</type>")},
         ""},
        {"divisions that changed inside hold from the start",
         {attributes("4 4/4") + note("c4:h") + attributes("8") + timedNote("D", "16", "<type>half</type>")},
         {attributes("8 4/4") + timedNote("D", "16", "<type>half</type>") +
          timedNote("C", "16", "<type>half</type>")},
         ""},
        {"an absent voice stays absent at the reversed time",
         {voice("1", "c5:h d5:h") + backup(1) + voice("2", "e4:q")},
         {voice("1", "d5:h c5:h") + backup(4) + voice("2", "e4:q") + forward(3)}},
    };
    for (const bool restored : {true, false}) {
        for (const Case& c : restored ? bothWays : oneWay) {
            SCOPED_TRACE(c.name);
            const std::string before = scoreOf(c.before, c.attributes);
            const std::string after = retrogradeOf(before);
            EXPECT_EQ(after, scoreOf(c.after, c.attributes));
            EXPECT_EQ(retrogradeOf(after) == before, restored);
        }
    }
}

TEST(Rewriting, refusesToCutChordsOfSeveralDurations) {
    OpenScore score = open(scoreOf({note("c4:h"), note("d4:h") + chordNote("a4:q") + note("e4:q")}));
    MemoryUserInterface front;
    engine::Session session(score.document, front);
    ASSERT_TRUE(reverseStaff(session, 1));
    const auto written = score.file.write(score.document, musicxml::Container::plain);
    ASSERT_FALSE(written.ok());
    EXPECT_NE(written.problem().text().find("not that of its chord, which cannot be kept (measure 1)"),
              std::string::npos)
        << written.problem().text();
}

}  // namespace
}  // namespace rovescio::test
