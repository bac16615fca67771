// Small MusicXML scores for tests, from as little text as possible.
#pragma once

#include <string>
#include <vector>

#include "engine/model/document.h"
#include "musicxml/score_file.h"

namespace rovescio::test {

// Four divisions to the quarter, C major, 4/4, treble clef.
inline const std::string kCommonAttributes =
    "<attributes><divisions>4</divisions><key><fifths>0</fifths></key>"
    "<time><beats>4</beats><beat-type>4</beat-type></time>"
    "<clef><sign>G</sign><line>2</line></clef></attributes>";

// A partwise score of one part; the first measure begins with the attributes.
std::string scoreOf(const std::vector<std::string>& measures,
                    const std::string& attributes = kCommonAttributes);
// The same of several parts, each with its measures.
std::string scoreOfParts(const std::vector<std::vector<std::string>>& parts,
                         const std::string& attributes = kCommonAttributes);

// A note such as "f#4:q" (value w h q e s) or rest "r:h", with more children after its type.
std::string note(const std::string& text, const std::string& more = "");
// The same as a further note of the chord before it.
std::string chordNote(const std::string& text, const std::string& more = "");
// A note in the fourth octave with the duration as it is given, and with more children after that.
inline std::string timedNote(const std::string& step, const std::string& duration,
                             const std::string& more = "") {
    return "<note><pitch><step>" + step + "</step><octave>4</octave></pitch><duration>" + duration +
           "</duration>" + more + "</note>";
}
// A grace note of such a pitch, with more children in front of its type.
inline std::string graceNote(const std::string& step, int octave, const std::string& more = "") {
    return "<note><grace/><pitch><step>" + step + "</step><octave>" + std::to_string(octave) +
           "</octave></pitch>" + more + "<type>eighth</type></note>";
}
// What makes a note one of a tuplet.
inline std::string tuplet(int actual, int normal) {
    return "<time-modification><actual-notes>" + std::to_string(actual) + "</actual-notes><normal-notes>" +
           std::to_string(normal) + "</normal-notes></time-modification>";
}
// Attributes from words: divisions "4", a key "2#" or "3b", a time "3/8", a clef "F4"; with more elements
// before the clef.
std::string attributes(const std::string& words, const std::string& more = "");
// Directions, and what notes carry.
inline std::string direction(const std::string& type, const std::string& more = "") {
    return "<direction><direction-type>" + type + "</direction-type>" + more + "</direction>";
}
inline std::string wedge(const std::string& type, const std::string& more = "") {
    return direction("<wedge type=\"" + type + "\"/>", more);
}
inline std::string slur(const std::string& type, const std::string& number = "",
                        const std::string& beside = "") {
    const std::string which = number.empty() ? "" : " number=\"" + number + "\"";
    return "<notations>" + beside + "<slur type=\"" + type + "\"" + which + "/></notations>";
}
inline std::string beam(const std::string& value, int level = 1) {
    return "<beam number=\"" + std::to_string(level) + "\">" + value + "</beam>";
}
inline std::string tie(const std::string& type) {
    return "<tie type=\"" + type + "\"/>";
}
inline std::string stem(const std::string& way, const std::string& look = "") {
    return "<stem" + look + ">" + way + "</stem>";
}
inline std::string accidental(const std::string& name, const std::string& look = "") {
    return "<accidental" + look + ">" + name + "</accidental>";
}
// Notes as above, divided by spaces, in one voice.
std::string voice(const std::string& number, const std::string& notes, const std::string& more = "");
// Steps by a number of quarters.
inline std::string backup(int quarters) {
    return "<backup><duration>" + std::to_string(4 * quarters) + "</duration></backup>";
}
inline std::string forward(int quarters) {
    return "<forward><duration>" + std::to_string(4 * quarters) + "</duration></forward>";
}

// A score file that is read, with its document.
struct OpenScore {
    engine::Document document;
    musicxml::ScoreFile file;

    // Puts another pitch into a note of the first measure and tells the document.
    void setPitch(const std::string& pitch, std::size_t entry = 0, int noteId = 1, short layer = 0,
                  short staff = 1);
    // Clears and sets flags of a note of the first measure.
    void setFlags(std::uint32_t cleared, std::uint32_t set, std::size_t entry = 0, int noteId = 1);
    // The plain file as it is written now; fails the test when it cannot be.
    [[nodiscard]] std::string written() const;
};

// Reads bytes that must be a sound score.
OpenScore open(const std::string& bytes);
// What is said about bytes that are none; empty when they are read.
std::string problemOf(const std::string& bytes, const musicxml::ReadOptions& options = {});

}  // namespace rovescio::test
