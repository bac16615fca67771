// Files that cannot be read, and the one line that each is answered with.
#include <gtest/gtest.h>

#include "musicxml/score_builder.h"

namespace rovescio::test {
namespace {

// A name, the file and what is said of it.
using ProblemCase = std::tuple<const char*, std::string, std::string>;

std::string withNote(const std::string& children) {
    return scoreOf({"\n<note>" + children + "</note>"});
}

std::string withAttributes(const std::string& children) {
    return scoreOf({"\n<attributes>" + children + "</attributes>"});
}

std::string nested(int depth) {
    std::string text = "<score-partwise>\n";
    for (int i = 0; i < depth; ++i) text += "<a>";
    for (int i = 0; i < depth; ++i) text += "</a>";
    return text + "</score-partwise>";
}

std::vector<ProblemCase> xmlProblems() {
    const std::string sound = scoreOf({note("c4:w")});
    const std::string brokeOff = "the file ends in the middle of the score";
    const std::string getAgain = ". It was probably cut off while it was copied or saved: get it again.";
    const std::string repair = "Export the score again, or repair that line in a text editor.";
    return {
        {"empty", "", "1: the file is empty. Give a MusicXML score."},
        {"not XML", "%PDF-1.7 pages\n",
         "1: this is not an XML file. Give a MusicXML score, for example one exported by a notation "
         "program."},
        {"cut off in an element", sound.substr(0, sound.find("</measure>")), "4: " + brokeOff + getAgain},
        {"wrong end tag", "<score-partwise>\n<part-list>\n</part></score-partwise>",
         "3:1: the XML is not well-formed: the end tag </part> does not belong to <part-list>. " + repair},
        {"bytes that are not the UTF-8 they claim", "<score-partwise>\n  <!-- Fl\xF6te -->",
         "2:10: the XML is not well-formed: there are bytes that are not a character. " + repair},
        {"nested too deep", nested(300),
         "2: this is more than any score needs: elements are nested more than 256 deep. Split the score, or "
         "export it again."},
        {"entities", "<!DOCTYPE x [\n<!ENTITY a \"aaaa\">\n]>\n<score-partwise/>",
         "2:1: the document type declares entities, which could expand without bound. Remove the "
         "declarations "
         "between [ and ] in the DOCTYPE line."},
        {"unknown encoding", "<?xml version=\"1.0\" encoding=\"EBCDIC-XY\"?><score-partwise/>",
         "1: the encoding \"EBCDIC-XY\" is unknown. Export the score again as UTF-8."},
        {"ambiguous encoding", "<?xml version=\"1.0\" encoding=\"UTF-7\"?><score-partwise/>",
         "1: the encoding UTF-7 does not allow the file to be written back unchanged. Export the score again "
         "as "
         "UTF-8."},
        {"broken UTF-16", std::string("\xFF\xFE<\0\n\0\0\xD8x\0", 10),
         "2: the file is not in the encoding UTF-16LE that it declares. Export the score again as UTF-8."},
    };
}

std::vector<ProblemCase> scoreProblems() {
    const std::string pitchRemedy =
        " (measure 1). Correct the note's pitch in a notation program or text editor.";
    const std::string noteRemedy = " (measure 1). Correct the note in a notation program or text editor.";
    const std::string pitch = "<pitch><step>C</step><octave>4</octave></pitch>";
    std::string manyNotes = "\n";
    for (int i = 0; i <= 16'000; ++i) manyNotes += note("c4:s");
    std::string voices;
    for (int i = 1; i <= 9; ++i) voices += (i > 1 ? backup(4) : "\n") + voice(std::to_string(i), "c4:w");
    return {
        {"another format", "\n<opus version=\"4.0\"><title/></opus>",
         "2: this is XML but not a score: its root element is <opus>. Give a file whose root is "
         "<score-partwise> or <score-timewise>."},
        {"no part", "<score-partwise>\n<part-list/></score-partwise>",
         "1: the score has no part. Give a score with music in it."},
        {"no measure", scoreOf({}), "1: the score has no measure. Give a score with music in it."},
        {"unlisted part", "<score-partwise><part-list/>\n<part id=\"P9\"/></score-partwise>",
         "2: the part \"P9\" is not in the part list. Add a <score-part> with that id to the <part-list>."},
        {"part twice",
         "<score-partwise><part-list><score-part id=\"A\"/></part-list><part id=\"A\"/>\n<part "
         "id=\"A\"/></score-partwise>",
         "2: the part \"A\" appears twice. Give every <part> an id of its own."},
        {"no duration", withNote(pitch),
         "5: a note has no duration (measure 1). Give it a <duration>; only grace notes have none."},
        {"duration in words", withNote(pitch + "<duration>long</duration>"),
         "5: the duration \"long\" is not a positive number" + noteRemedy},
        {"negative duration", withNote(pitch + "<duration>-4</duration>"),
         "5: the duration \"-4\" is not a positive number" + noteRemedy},
        {"endless duration", withNote(pitch + "<duration>99999999999999999999</duration>"),
         "5: the duration \"99999999999999999999\" is not a positive number" + noteRemedy},
        {"duration of years", withNote(pitch + "<duration>999999999</duration>"),
         "5: the duration of a note is too large or too fine (measure 1). Correct the note's <duration> "
         "or the <divisions> of the part."},
        {"measure of years",
         scoreOf({"\n" + timedNote("C", "4000000") + timedNote("C", "4000000") + timedNote("C", "4000000")}),
         "5: the measure is too long (measure 1). Correct the durations in it."},
        {"backup without duration", scoreOf({"\n<backup/>"}),
         "5: the duration of a <backup> is missing or unusable: \"\" (measure 1). Give it a positive number "
         "of divisions."},
        {"no divisions", withAttributes("<divisions>0</divisions>"),
         "5: the divisions of a quarter note, \"0\", are not a usable positive number (measure 1). Set "
         "<divisions> to the number of durations that make a quarter note."},
        {"step", withNote("<pitch><step>H</step><octave>4</octave></pitch>"),
         "5: the step \"H\" is not one of the letters A to G" + pitchRemedy},
        {"step and more", withNote("<pitch><step>Cis</step><octave>4</octave></pitch>"),
         "5: the step \"Cis\" is not one of the letters A to G" + pitchRemedy},
        {"no step", withNote("<pitch><octave>4</octave></pitch>"),
         "5: the step \"\" is not one of the letters A to G" + pitchRemedy},
        {"octave", withNote("<pitch><step>C</step><octave>four</octave></pitch>"),
         "5: the octave \"four\" is not an octave number" + pitchRemedy},
        {"alter", withNote("<pitch><step>C</step><alter>1000</alter><octave>4</octave></pitch>"),
         "5: the alteration \"1000\" is not a number of semitones" + pitchRemedy},
        {"key", withAttributes("<key><fifths>sharp</fifths></key>"),
         "5: the key signature \"sharp\" is not a number of sharps or flats (measure 1). Correct the key "
         "signature; flats are negative."},
        {"staff", withNote(pitch + "<duration>4</duration><staff>0</staff>"),
         "5: the staff \"0\" is not a staff number (measure 1). Number the staves of a part from 1."},
        {"too many staves", withAttributes("<staves>99999</staves>"),
         "5: the part \"Flute\" has more than 32767 staves (measure 1). Split the score, or correct "
         "the staff numbers."},
        {"too many notes", scoreOf({manyNotes}),
         "5: a measure of part \"Flute\" has more than 16000 notes and rests (measure 1). Divide the "
         "measure."},
        {"too many voices", scoreOf({voices}),
         "5: staff 1 of part \"Flute\" has more than 8 voices (measure 1). Move voices of this measure to "
         "another staff."},
    };
}

TEST(ScoreProblems, areToldWithTheirLineAndWhatToDo) {
    for (const auto& problems : {xmlProblems(), scoreProblems()}) {
        for (const auto& [name, bytes, message] : problems) {
            SCOPED_TRACE(name);
            EXPECT_EQ(problemOf(bytes), "test.musicxml:" + message);
        }
    }
}

TEST(ScoreProblems, moreMeasuresThanTheHostCounts) {
    const std::vector<std::string> measures(32768, "");
    EXPECT_EQ(
        problemOf(scoreOf(measures)),
        "test.musicxml:32771: the score has more than 32767 measures (measure 32768). Split the score.");
}

}  // namespace
}  // namespace rovescio::test
