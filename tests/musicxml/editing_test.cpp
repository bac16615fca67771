// What a change of the document's notes does to the text, and what it leaves alone.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "engine/model/note_state.h"
#include "musicxml/score_builder.h"
#include "support/score_text.h"

namespace rovescio::test {
namespace {

// An edit of a measure's first note, and the measure before and after it.
struct Edit {
    const char* name;
    std::string before;
    std::string after;
    const char* pitch = nullptr;
    std::uint32_t cleared = 0;
    std::uint32_t set = 0;
};

void expectEdits(const std::vector<Edit>& edits) {
    for (const Edit& edit : edits) {
        SCOPED_TRACE(edit.name);
        OpenScore score = open(scoreOf({edit.before}));
        if (edit.pitch != nullptr) score.setPitch(edit.pitch);
        score.setFlags(edit.cleared, edit.set);
        EXPECT_EQ(score.written(), scoreOf({edit.after}));
    }
}

TEST(NoteEdits, pitch) {
    const auto whole = [](const std::string& pitch, const std::string& more = "") {
        return "<note>" + pitch + "<duration>16</duration><type>whole</type>" + more + "</note>";
    };
    const std::string before = "<pitch><step>C</step><octave>4</octave></pitch>";
    const std::string after = "<pitch><step>D</step><octave>4</octave></pitch>";
    const std::string more =
        "<notations><articulations><accent/></articulations></notations>"
        "<lyric><text>C</text></lyric><!-- <step>C</step> -->";
    const std::string comment = "<!-- </note> <pitch> --><pitch id='\">'>";
    expectEdits({
        {"step", note("c4:w"), note("e4:w"), "e4"},
        {"step and octave", note("c4:w"), note("b3:w"), "b3"},
        {"another alteration", note("c#4:w"), note("ebb4:w"), "ebb4"},
        {"a new alteration stands on a line of its own",
         whole("\n\t<pitch>\n\t\t<step>C</step>\n\t\t<octave>4</octave>\n\t</pitch>"),
         whole("\n\t<pitch>\n\t\t<step>C</step>\n\t\t<alter>1</alter>\n\t\t<octave>4</octave>\n\t</pitch>"),
         "c#4"},
        {"an alteration that ends takes its line with it",
         whole("<pitch>\n  <step>C</step>\n  <alter>1</alter>\n  <octave>4</octave></pitch>"),
         whole("<pitch>\n  <step>D</step>\n  <octave>4</octave></pitch>"), "d4"},
        {"a quarter-tone keeps its fraction",
         whole("<pitch><step>C</step><alter>-0.5</alter><octave>4</octave></pitch>"),
         whole("<pitch><step>D</step><alter>1.5</alter><octave>4</octave></pitch>"), "d#4"},
        {"a fraction that was mirrored",
         whole("<pitch><step>C</step><alter>0.125</alter><octave>4</octave></pitch>"),
         whole("<pitch><step>C</step><alter>-1.125</alter><octave>4</octave></pitch>"), "cbb4",
         engine::flagsOfCents(13), engine::flagsOfCents(87)},
        {"values in unusual form",
         whole("<pitch ><step><!-- do --><![CDATA[C]]></step><octave > 4 </octave></pitch>"),
         whole("<pitch ><step>D</step><octave >5</octave></pitch>"), "d5"},
        {"marks inside of quotes and comments", whole(comment + before.substr(7)),
         whole(comment + after.substr(7)), "d4"},
        {"lyrics, articulations and comments stay", whole(before, more), whole(after, more), "d4"},
        {"a stem that turns ends elsewhere", note("c5:w", stem("down", " default-y=\"3\"")),
         note("a4:w", stem("up")), "a4"},
        {"and so do those that turn with it",
         note("e5:e", stem("down") + beam("begin")) +
             note("b4:e", stem("down", " default-y=\"3\"") + beam("end")),
         note("d4:e", stem("up") + beam("begin")) + note("b4:e", stem("up") + beam("end")), "d4"},
        {"stems of both directions stay",
         note("e5:e", stem("down") + beam("begin")) + note("b4:e", stem("up") + beam("end")),
         note("d4:e", stem("down") + beam("begin")) + note("b4:e", stem("up") + beam("end")), "d4"},
        {"the stem of a grace note ends elsewhere too",
         graceNote("C", 5, stem("up", " default-y=\"3\"")) + note("c4:w"),
         graceNote("D", 5, stem("up")) + note("c4:w"), "d5"},
    });
}

TEST(NoteEdits, accidentals) {
    const std::string red = " color=\"red\"";
    const auto quarter = [](const std::string& alter, const std::string& more) {
        return "<note><pitch><step>C</step><alter>" + alter +
               "</alter><octave>4</octave></pitch><duration>16</duration><type>whole</type>" + more +
               "</note>";
    };
    expectEdits({
        {"shown before the stem", note("c4:w", "<dot/><stem>none</stem>"),
         note("c4:w", "<dot/>" + accidental("natural") + "<stem>none</stem>"), "c4", 0, NOTE_FLAG24},
        {"hidden", note("c#4:w", accidental("sharp")), note("c#4:w"), "c#4", NOTE_FLAG24},
        {"another sign, attributes stay", note("c#4:w", accidental("sharp", red)),
         note("dbb4:w", accidental("flat-flat", red)), "dbb4"},
        {"an unmoved note keeps its sign", note("c4:w", accidental("natural-sharp")),
         note("c4:w", accidental("natural-sharp")), "c4"},
        {"quarter tones keep their family of signs", quarter("-0.5", accidental("slash-flat")),
         quarter("0.5", accidental("slash-quarter-sharp")), "c4"},
        {"finer ones have no sign", quarter("0.25", accidental("natural-up")),
         quarter("1.25", accidental("other")), "c#4"},
        {"or take the usual one", quarter("0.5", accidental("natural-up")),
         quarter("3.5", accidental("other")), "c###4"},
        {"a sign stays with its alteration", note("c#4:w", accidental("natural-sharp")),
         note("c#5:w", accidental("natural-sharp")), "c#5"},
        {"double sharp", note("c#4:w", accidental("sharp")), note("f##4:w", accidental("double-sharp")),
         "f##4"},
        {"beyond the signs", note("c#4:w", accidental("sharp")), note("c####4:w", accidental("other")),
         "c####4"},
    });
}

TEST(NoteEdits, ties) {
    const std::string start = "<tied type=\"start\"/>";
    const std::string stop = "<tied type=\"stop\"/>";
    const auto with = [](const std::string& notations) {
        return note("c4:w", "<notations>" + notations + "</notations>");
    };
    const auto notated = [](const std::string& notations) {
        return "<notations>" + notations + "</notations>";
    };
    const auto sounding = [](const std::string& ties) {
        return timedNote("C", "16", ties + "\n<tie type=\"start\"/><voice>1</voice><type>whole</type>");
    };
    expectEdits({
        {"the only notation goes whole", note("c4:w", "\n<notations>\n" + start + "\n</notations>"),
         note("c4:w"), nullptr, NOTE_TIE_START},
        {"both ends", with(stop + start), note("c4:w"), nullptr, NOTE_TIES},
        {"the other end stays", with(stop + "\n " + start), with(stop), nullptr, NOTE_TIE_START},
        {"other notations stay", with(start + "<fermata/>"), with("<fermata/>"), nullptr, NOTE_TIE_START},
        {"a tie that the score lacks", note("c4:w"),
         timedNote("C", "16", "<tie type=\"start\"/><type>whole</type>" + notated(start)), nullptr, 0,
         NOTE_TIE_START},
        {"an end becomes a start", with("<tied type=\"stop\" color=\"red\"/>"),
         timedNote(
             "C", "16",
             "<tie type=\"start\"/><type>whole</type>" + notated("<tied type=\"start\" color=\"red\"/>")),
         nullptr, NOTE_TIE_END, NOTE_TIE_START},
        {"the sounding tie too", sounding("\n<tie type=\"stop\"/>"), sounding(""), nullptr, NOTE_TIE_END},
    });
}

// A note with a stem, and its beam when one is named.
std::string stemmed(const std::string& text, const std::string& way, const std::string& group = "") {
    return note(text, stem(way) + (group.empty() ? "" : beam(group)));
}

// The directions of all stems in a text, in order.
std::string stemsIn(const std::string& text) {
    std::string stems;
    for (std::size_t at = 0; (at = text.find("</stem>", at)) != std::string::npos; ++at) {
        const std::size_t begin = text.rfind('>', at) + 1;
        stems += (stems.empty() ? "" : " ") + text.substr(begin, at - begin);
    }
    return stems;
}

TEST(StemEdits, followTheRuleWhereTheyDidBefore) {
    const struct {
        const char* name;
        std::string measure;
        std::size_t entry;
        const char* pitch;
        const char* stems;
    } cases[] = {
        {"across the middle line", stemmed("c5:w", "down"), 0, "a4", "up"},
        {"against the rule before", stemmed("c5:w", "up"), 0, "a4", "up"},
        {"to the middle line", stemmed("a4:w", "up"), 0, "b4", "up"},
        {"no stem", stemmed("c5:w", "none"), 0, "a4", "none"},
        {"the farthest note of a chord decides",
         note("g4:w", stem("up")) + chordNote("c5:w", stem("up")) + chordNote("d5:w", stem("up")), 0, "a4",
         "down down down"},
        {"the upper note of a chord decided before",
         note("g4:w", stem("down")) + chordNote("f5:w", stem("down")), 0, "c4", "up up"},
        {"a chord across staves",
         note("c5:w", stem("down") + "<staff>1</staff>") +
             chordNote("c3:w", stem("down") + "<staff>2</staff>"),
         0, "a4", "down down"},
        {"a chord that lies evenly", note("g4:w", stem("up")) + chordNote("c5:w", stem("up")), 0, "a4",
         "up up"},
        {"a beamed group turns as one",
         stemmed("e5:e", "down", "begin") + stemmed("b4:e", "down", "continue") +
             stemmed("f5:e", "down", "end") + stemmed("c5:e", "down"),
         1, "d4", "up up up down"},
        {"a group that the barline cuts",
         stemmed("e5:e", "down", "begin") + stemmed("f5:e", "down", "continue"), 1, "d4", "down down"},
        {"bass clef", attributes("F4") + stemmed("c3:w", "up"), 0, "f3", "down"},
        {"the clef inside the measure", stemmed("c5:h", "down") + attributes("F4") + stemmed("c3:h", "up"), 1,
         "f3", "down down"},
        {"a clef that sounds an octave lower",
         attributes("",
                    "<clef><sign>G</sign><line>2</line><clef-octave-change>-1</clef-octave-change></clef>") +
             stemmed("c4:w", "down"),
         0, "a3", "up"},
        {"a clef that leaves its line to be known",
         attributes("", "<clef><sign>G</sign></clef>") + stemmed("c5:w", "down"), 0, "a4", "up"},
        {"tablature has other rules", attributes("TAB5") + stemmed("c5:w", "down"), 0, "a4", "down"},
        {"two voices", stemmed("c5:w", "up") + backup(4) + voice("2", "r:w"), 0, "a4", "up"},
        {"two voices, by the rule", stemmed("c5:w", "down") + backup(4) + voice("2", "r:w"), 0, "a4", "down"},
        {"a grace note", graceNote("A", 4, stem("up")), 0, "c5", "up"},
    };
    for (const auto& stem : cases) {
        SCOPED_TRACE(stem.name);
        OpenScore score = open(scoreOf({stem.measure}));
        score.setPitch(stem.pitch, stem.entry);
        EXPECT_EQ(stemsIn(score.written()), stem.stems);
    }
}

TEST(ScoreWriting, whatDoesNotMoveWithTheNotesIsTold) {
    const std::string harmony = "<harmony><root><root-step>C</root-step></root><kind>major</kind></harmony>";
    const std::string fret = "<notations><technical><string>2</string><fret>1</fret></technical></notations>";
    const OpenScore still = open(scoreOf({harmony + note("c4:h", fret) + note("d4:h")}));
    EXPECT_TRUE(still.file.write(still.document, musicxml::Container::plain).value().notices().empty());
    OpenScore moved = open(scoreOf({harmony + note("c4:h", fret) + note("d4:h")}));
    moved.setPitch("e4");
    moved.setPitch("f4", 1);
    EXPECT_EQ(
        moved.file.write(moved.document, musicxml::Container::plain).value().notices(),
        (std::vector<std::string>{
            "test.musicxml:4: chord symbols and figured bass stay as they are where notes changed (measure "
            "1)",
            "test.musicxml:4: string and fret numbers stay as they are where notes changed (measure 1)"}));
}

TEST(ScoreWriting, emptiedFrames) {
    const std::string upper = voice("1", "c5:w");
    OpenScore score = open(scoreOf({upper + backup(4) + voice("2", "e4:h f4:h"), note("e4:w")}));
    editEntries(score.document, {1, 1, 1}, [](std::vector<EXENTRY>& entries) { entries.clear(); });
    EXPECT_EQ(score.written(), scoreOf({upper, note("e4:w")}));
}

// What cannot be written is refused as a whole.
TEST(ScoreWriting, refusals) {
    const std::string bytes = scoreOf({note("c4:h") + note("d4:h") + chordNote("f4:h"), note("e4:w")});
    const std::string short_ =
        "test.musicxml:4: the notes of staff 1 do not add up to the measure's length (measure 1). Correct "
        "the durations there, or select other measures.";
    const std::string chord =
        "test.musicxml:4: notes were added to chords or taken from them, which cannot be written (measure "
        "1). Choose another transformation.";
    using Entries = std::vector<EXENTRY>;
    const struct {
        const char* name;
        void (*edit)(Entries&);
        std::string message;
    } cases[] = {
        {"removed at the end", [](Entries& entries) { entries.pop_back(); }, short_},
        {"removed at the start", [](Entries& entries) { entries.erase(entries.begin()); }, short_},
        {"duration", [](Entries& entries) { entries[0].duration = 1024; }, short_},
        {"note became a rest",
         [](Entries& entries) {
             entries[0].noteCount = 0;
             entries[0].entryFlags &= ~ENTRY_NOTE;
         },
         chord},
        {"note ids", [](Entries& entries) { entries[0].notes[0].noteId = 2; }, chord},
        {"a note id twice", [](Entries& entries) { entries[1].notes[1].noteId = 1; }, chord},
        {"octave", [](Entries& entries) { entries[0].notes[0].displacement = -29; },
         "test.musicxml:4: a note would leave the octaves 0 to 9, the only ones that the file format has "
         "(measure 1). Choose a smaller interval or a nearer axis."},
    };
    for (const auto& refusal : cases) {
        SCOPED_TRACE(refusal.name);
        OpenScore score = open(bytes);
        editEntries(score.document, {1, 1, 0}, refusal.edit);
        const auto written = score.file.write(score.document, musicxml::Container::plain);
        ASSERT_FALSE(written.ok());
        EXPECT_EQ(written.problem().text(), refusal.message);
    }
}

// Whatever pitches and accidentals the document is given, the written score reads as the same.
RC_GTEST_PROP(ScoreWriting, readsBackAsWritten, ()) {
    const int fifths = *rc::gen::inRange(-7, 8);
    const std::string key =
        attributes("4 " + std::to_string(std::abs(fifths)) + (fifths < 0 ? "b F4" : "# F4"));
    OpenScore score = open(scoreOf({stemmed("c#3:e", "up", "begin") + stemmed("eb3:e", "up", "end") +
                                    note("g3:q", accidental("natural")) + chordNote("b3:q") + note("r:h")},
                                   key));
    const engine::KeySignature& signature = score.document.staffMeasure(1, 1).key;
    engine::PackedEntries entries = score.document.entries({1, 1, 0}).copy();
    for (engine::StoredEntry& entry : entries) {
        for (ENOTE& note : entry.notes()) {
            signature.store({*rc::gen::inRange(-28, 35), *rc::gen::inRange(-4, 5)}, note);
            note.noteFlags = *rc::gen::element(0U, NOTE_FLAG24);
        }
        // The host keeps the notes of a chord sorted.
        std::ranges::sort(entry.notes(), [](const ENOTE& left, const ENOTE& right) {
            return std::pair(left.displacement, left.alteration) <
                   std::pair(right.displacement, right.alteration);
        });
    }
    score.document.exchangeEntries({1, 1, 0}, entries);
    const std::string written = score.written();
    const OpenScore again = open(written);
    RC_ASSERT(textOf(again.document) == textOf(score.document));
    RC_ASSERT(again.written() == written);
}

}  // namespace
}  // namespace rovescio::test
