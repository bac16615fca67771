// Scores that nothing changed come out byte for byte.
#include <gtest/gtest.h>

#include <utility>

#include "musicxml/score_builder.h"

namespace rovescio::test {
namespace {

// UTF-16 of ASCII text.
std::string wide(const std::string& text, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : text) {
        if (bigEndian) bytes += '\0';
        bytes += c;
        if (!bigEndian) bytes += '\0';
    }
    return bytes;
}

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string plainScore() {
    return scoreOf({note("c4:h") + note("d4:h"), note("e4:w")});
}

TEST(RoundTrip, bytesStayTheSame) {
    const std::string odd =
        "<?xml version='1.0' encoding='UTF-8' standalone=\"no\"?>\n"
        "<!DOCTYPE score-partwise PUBLIC \"-//Recordare//DTD MusicXML 4.0 Partwise//EN\"\n"
        "  \"http://www.musicxml.org/dtds/partwise.dtd\" [ <!ATTLIST note id CDATA #IMPLIED> ]>\n"
        "<!-- a comment with <note> and > in it --><?page break?>\n" +
        scoreOf({"<direction placement=\"above\"><direction-type><words>L\xC3\xA9g\xC3\xA8rement &amp; "
                 "\xE2\x99\xAD "
                 "&#x266D;</words></direction-type></direction>\n\t  " +
                 note("c4:w", "<lyric><text><![CDATA[</note>]]></text></lyric><play id = 'a>b' />") +
                 "<?eof > ?><barline><bar-style>light-heavy</bar-style></barline><custom:thing/>"});
    const std::string notes =
        note("c4:q", accidental("natural", " cautionary=\"yes\"") + stem("down", " default-y=\"3\"")) +
        note("f#5:q", accidental("sharp") + stem("up")) +
        "<note><pitch><step>B</step><alter>0</alter><octave>4</octave></pitch><duration>8</duration>"
        "<tie type=\"start\"/><notations><tied type=\"start\"/><tied type=\"let-ring\"/></notations></note>";
    const std::pair<const char*, std::string> cases[] = {
        {"plain", plainScore()},
        {"signs, stems and ties", scoreOf({notes, note("c4:w")})},
        {"markup of every kind", odd},
        {"carriage returns", replaceAll(plainScore(), "\n", "\r\n")},
        {"byte order mark", "\xEF\xBB\xBF" + plainScore()},
        {"UTF-16, little end first",
         wide("<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + plainScore(), false)},
        {"UTF-16, big end first", wide(plainScore(), true)},
        {"UTF-16 without a mark", wide(plainScore(), false).substr(2)},
        {"Latin-1",
         "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + replaceAll(plainScore(), "Flute", "Fl\xF6te")},
        {"Windows-1252", "<?xml version=\"1.0\" encoding='windows-1252'?>" + replaceAll(plainScore(), "Flute",
                                                                                        "\x93"
                                                                                        "A\x94")},
        {"text behind the root element", plainScore() + "\n<!-- end --><?done?>\n\n"},
    };
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        OpenScore score = open(bytes);
        EXPECT_EQ(score.written(), bytes);
        for (const short measure : score.document.measureNumbers()) {
            engine::PackedEntries entries = score.document.entries({1, measure, 0}).copy();
            score.document.exchangeEntries({1, measure, 0}, entries);
        }
        EXPECT_EQ(score.written(), bytes) << "with frames exchanged for themselves";
    }
}

// An edit in each encoding must land at the right place and in the right bytes.
TEST(RoundTrip, editsAreEncodedLikeTheFile) {
    const std::string latin =
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + replaceAll(plainScore(), "Flute", "Fl\xF6te");
    const std::pair<std::string, std::string> cases[] = {
        {wide(plainScore(), true), wide(replaceAll(plainScore(), "<step>C</step>", "<step>G</step>"), true)},
        {latin, replaceAll(latin, "<step>C</step>", "<step>G</step>")},
    };
    for (const auto& [before, after] : cases) {
        OpenScore score = open(before);
        score.setPitch("g4");
        EXPECT_EQ(score.written(), after);
    }
}

}  // namespace
}  // namespace rovescio::test
