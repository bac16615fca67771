// Scores brought to sound: what MIDI files of small scores let hear, against what a musician would expect.
#include "playback/midi_file.h"

#include <gtest/gtest.h>

#include <numeric>

#include "musicxml/score_builder.h"
#include "playback/heard.h"

namespace rovescio::test {
namespace {

using engine::PlaybackRequest;

// All measures of all staves, unless the request names some.
HeardFile heardOf(const std::string& score, PlaybackRequest request = {0, 0, {}},
                  std::array<bool, 4> layers = {true, true, true, true}) {
    const OpenScore read = open(score);
    if (request.startMeasure == 0) request.startMeasure = 1;
    if (request.endMeasure == 0) request.endMeasure = read.document.measureCount();
    if (request.staves.empty()) {
        request.staves.resize(static_cast<std::size_t>(read.document.staffCount()));
        std::iota(request.staves.begin(), request.staves.end(), short{1});
    }
    const auto file = playback::makeMidiFile(read.document, read.file.performance(), request, layers);
    EXPECT_TRUE(file.ok());
    return hear(file.value().bytes);
}

std::string dynamics(const std::string& mark, const std::string& more = "") {
    return direction("<dynamics><" + mark + "/></dynamics>", more);
}

const std::string kTieStart = tie("start");
const std::string kTieStop = tie("stop");
const std::string kTransposed = attributes("4 2# 2/4",
                                           "<transpose><diatonic>-1</diatonic><chromatic>-2</"
                                           "chromatic><octave-change>-1</octave-change></transpose>");

TEST(MidiFileTest, NotesSoundWhenAndAsLongAsWritten) {
    const std::string grace = graceNote("C", 5);
    const std::string tiedGrace = graceNote("E", 4, kTieStart);
    const struct {
        const char* what;
        std::vector<std::string> measures;
        const char* heard;
        std::string attributes = kCommonAttributes;
    } cases[] = {
        {"a tie over the barline, and a note of the chord without one",
         {note("c4:w", kTieStart) + chordNote("e4:w"), note("c4:h", kTieStop) + note("e4:h")},
         "0+6:60 0+4:64 6+2:64"},
        {"a tie of three notes, struck again without one; a tie that leads nowhere",
         {note("c4:q", kTieStart) + note("c4:q", kTieStop + kTieStart) + note("c4:q", kTieStop) +
          note("c4:q", kTieStart)},
         "0+3:60 3+1:60"},
        {"a tie into another voice",
         {voice("1", "c5:h e5:h") + backup(4) + voice("2", "r:h") + voice("2", "g4:h", kTieStart),
          voice("1", "g4:h", kTieStop) + voice("1", "r:h")},
         "0+2:72 2+4:67 2+2:76"},
        {"a short measure is as long as what it holds", {note("c4:q"), note("d4:q")}, "0+1:60 1+1:62"},
        {"an instrument in B flat, an octave down", {note("d5:h")}, "0+2:60", kTransposed},
        {"grace notes take from the note before and leave the beat alone",
         {note("g4:h") + grace + grace + note("a4:h")},
         "0+1.75:67 1.75+0.125:72 1.875+0.125:72 2+2:69"},
        {"at most half of it",
         {note("g4:s") + grace + grace + note("a4:h")},
         "0+0.125:67 0.125+0.0625:72 0.1875+0.0625:72 0.25+2:69"},
        {"from what follows at the start; not from a rest or a tied note",
         {grace + note("g4:q") + note("r:q") + grace + note("a4:h", kTieStart),
          grace + note("a4:w", kTieStop)},
         "0+0.125:72 0.125+0.875:67 1.875+0.125:72 2+6:69 3.875+0.125:72"},
        {"after-graces at the end; one that is tied to the chord after it",
         {note("g4:w") + grace, note("r:h") + tiedGrace + grace + note("e4:h", kTieStop)},
         "0+3.875:67 3.875+0.125:72 5.75+2.25:64 5.875+0.125:72"},
        {"what is too low for MIDI sounds an octave higher", {note("c-1:w") + note("b-2:w")}, "0+4:0 4+4:11"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(heardOf(scoreOf(c.measures, c.attributes)).notes(), c.heard) << c.what;
    }
}

// Ticks that make all times whole, and so lengths that add up.
TEST(MidiFileTest, TupletsAreExact) {
    const std::pair<int, int> cases[] = {{4, 960},  {5, 960},  {6, 960},    {7, 959},
                                         {11, 957}, {13, 949}, {1021, 1021}};
    for (const auto& [actual, ticks] : cases) {
        std::string measure;
        for (int i = 0; i < actual; ++i) {
            measure += timedNote("C", "4", "<type>quarter</type>" + tuplet(actual, 4));
        }
        const HeardFile file = heardOf(scoreOf({measure, note("c4:q")}, attributes(std::to_string(actual))));
        EXPECT_EQ(file.ticksPerQuarter % ticks, 0) << actual << " in " << file.ticksPerQuarter;
        const auto& notes = file.tracks.at(1).notes;
        ASSERT_EQ(notes.size(), static_cast<std::size_t>(actual) + 1);
        EXPECT_DOUBLE_EQ(notes.back().start, 4) << actual;
        for (int i = 0; i < actual; ++i) {
            EXPECT_DOUBLE_EQ(notes[static_cast<std::size_t>(i)].start, 4.0 * i / actual) << actual;
        }
    }
}

TEST(MidiFileTest, LoudnessFollowsMarksAndHairpins) {
    const std::string four = note("c4:q") + note("c4:q") + note("c4:q") + note("c4:q");
    const auto spread = [](const std::string& a, const std::string& b, const std::string& c,
                           const std::string& d) {
        return a + note("c4:q") + b + note("c4:q") + c + note("c4:q") + d + note("c4:q");
    };
    const struct {
        const char* what;
        std::vector<std::string> measures;
        std::vector<int> velocities;
    } cases[] = {
        {"mezzo-forte before any mark; a mark holds",
         {four, dynamics("p") + four},
         {80, 80, 80, 80, 49, 49, 49, 49}},
        {"the file's own number wins", {dynamics("p", "<sound dynamics=\"50\"/>") + four}, {45, 45, 45, 45}},
        {"an accent is for its note alone",
         {spread(dynamics("p"), dynamics("sfz"), "", dynamics("fp"))},
         {49, 112, 49, 96}},
        {"marks count by their time, wherever they are in the text",
         {spread("", "", dynamics("sfz"), "") + backup(4) + dynamics("sfz")},
         {112, 80, 112, 80}},
        {"what a fortepiano leaves", {spread(dynamics("f"), dynamics("fp"), "", "")}, {96, 96, 49, 49}},
        {"straight from mark to mark",
         {dynamics("p") + wedge("crescendo") + four, wedge("stop") + dynamics("f") + four},
         {49, 61, 73, 84, 96, 96, 96, 96}},
        {"one grade where no mark tells more, and it stays",
         {dynamics("f") + spread(wedge("diminuendo"), "", wedge("stop"), "")},
         {96, 88, 80, 80}},
        {"a mark of the other direction is no goal",
         {dynamics("mf") + spread(wedge("crescendo"), "", wedge("stop") + dynamics("p"), "")},
         {80, 88, 49, 49}},
        {"a mark inside cuts the hairpin",
         {dynamics("p") + spread(wedge("crescendo"), "", dynamics("f"), wedge("stop"))},
         {49, 73, 96, 96}},
    };
    for (const auto& c : cases) {
        std::vector<int> velocities;
        const auto notes = heardOf(scoreOf(c.measures)).tracks.at(1).notes;
        for (const auto& heard : notes) velocities.push_back(heard.velocity);
        EXPECT_EQ(velocities, c.velocities) << c.what;
    }
}

TEST(MidiFileTest, TemposAndSignaturesStandWhereTheyChange) {
    const std::string metronome = direction(
        "<metronome><beat-unit>quarter</beat-unit><beat-unit-dot/><per-minute>c. "
        "40</per-minute></metronome>");
    const std::vector<std::string> measures = {
        "<sound tempo=\"100\"/>" + note("c4:h") + metronome + note("c4:h"),
        attributes("3/8") +
            direction("<words>Presto</words>", "<offset sound=\"yes\">2</offset><sound tempo=\"150\"/>") +
            note("c4:e") + note("c4:q"),
        note("c4:q") + note("c4:e")};
    using Events = std::vector<std::string>;
    const HeardFile all = heardOf(scoreOf(measures));
    EXPECT_EQ(all.format, 1);
    EXPECT_EQ(all.end, 7);
    EXPECT_EQ(all.tracks.at(0).events,
              (Events{"0 tempo 600000", "0 4/4", "0 key 0", "2 tempo 1000000", "4 3/8", "4.5 tempo 400000"}));
    EXPECT_EQ(heardOf(scoreOf(measures), {3, 3, {}}).tracks.at(0).events,
              (Events{"0 tempo 400000", "0 3/8", "0 key 0"}))
        << "what was in force before holds at the start";
    EXPECT_EQ(heardOf(scoreOf({note("d5:h")}, kTransposed)).tracks.at(0).events,
              (Events{"0 tempo 500000", "0 2/4", "0 key 0"}))
        << "D major for an instrument in B flat sounds in C";
}

// Two staves of a piano and a drummer who changes instruments.
TEST(MidiFileTest, PlaysTheStavesAskedForWithTheirSounds) {
    const std::string score =
        R"(<score-partwise><work><work-title>Duo</work-title></work><part-list>
        <score-part id="P1"><part-name>Organ</part-name><score-instrument id="I1"/><midi-instrument id="I1">
        <midi-channel>1</midi-channel><midi-program>20</midi-program></midi-instrument></score-part>
        <score-part id="P2"><part-name>Drums</part-name><score-instrument id="D1"/>
        <score-instrument id="D2"/><score-instrument id="D3"/>
        <midi-instrument id="D1"><midi-unpitched>36</midi-unpitched></midi-instrument>
        <midi-instrument id="D2"><midi-unpitched>43</midi-unpitched></midi-instrument>
        <midi-instrument id="D3"><midi-program>15</midi-program></midi-instrument></score-part></part-list>
        <part id="P1"><measure number="1">
        <attributes><divisions>4</divisions><staves>2</staves></attributes>)" +
        note("c5:h", "<staff>1</staff>") + note("d5:h", kTieStart + "<staff>1</staff>") + backup(4) +
        voice("5", "c3:w", "<staff>2</staff>") + "</measure><measure number=\"2\">" +
        note("d5:h", kTieStop + "<staff>1</staff>") + note("e5:h", "<staff>1</staff>") + backup(4) +
        voice("2", "g4:w", "<staff>1</staff>") + backup(4) + voice("5", "d3:w", "<staff>2</staff>") +
        R"(</measure></part><part id="P2">
        <measure number="1"><attributes><divisions>1</divisions></attributes>
        <note><rest/><duration>4</duration></note></measure>
        <measure number="2"><note><unpitched/><duration>1</duration><instrument id="D1"/></note>
        <note><unpitched/><duration>2</duration><instrument id="D2"/></note>
        <note><pitch><step>A</step><octave>4</octave></pitch><duration>1</duration><instrument id="D3"/></note>
        </measure></part></score-partwise>)";
    const HeardFile all = heardOf(score);
    EXPECT_EQ(all.notes(), "0+4:48 0+2:72 2+4:74 4+1:35 4+4:50 4+4:67 5+2:42 6+2:76 7+1:69");
    ASSERT_EQ(all.tracks.size(), 4U);
    EXPECT_EQ(all.tracks[0].name + all.tracks[1].name + all.tracks[2].name + all.tracks[3].name,
              "DuoOrganOrganDrums");
    EXPECT_EQ(all.tracks[1].events, std::vector<std::string>{"0 channel 0 program 19"});
    EXPECT_EQ(all.tracks[2].events, std::vector<std::string>{}) << "the same instrument";
    EXPECT_EQ(all.tracks[3].events, std::vector<std::string>{"0 channel 1 program 14"});
    EXPECT_EQ(all.tracks[3].notes.front().channel, 9);

    EXPECT_EQ(heardOf(score, {2, 2, {1}}, {true, false, true, true}).notes(), "0+2:74 2+2:76")
        << "only the staves, measures and layers asked for; a tie from before sounds anew";
}

// The greatest numbers that staves and measures can have.
TEST(MidiFileTest, GoesToTheLastMeasureAndStaff) {
    constexpr std::size_t kMost = 32767;
    const std::vector<std::string> measures(kMost, note("c4:w"));
    EXPECT_EQ(heardOf(scoreOf(measures)).tracks.at(1).notes.size(), kMost);
    const std::string staves = attributes("4", "<staves>32767</staves>");
    EXPECT_EQ(heardOf(scoreOf({note("c4:w")}, staves)).tracks.size(), kMost + 1);
}

}  // namespace
}  // namespace rovescio::test
