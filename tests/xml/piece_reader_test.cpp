// A text that comes in pieces is read like the whole.
#include "xml/piece_reader.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace rovescio::xml {
namespace {

constexpr std::string_view kScore =
    "\xEF\xBB\xBF<?xml version='1.0'?><!-- a --><score><list><name>x &lt; y</name></list>"
    "<part id='P>1'><bar n='1'><note><step>C</step></note><note/></bar>]]<!-- > --><bar n='2'>"
    "<![CDATA[</bar>]]>\xC3\xA9</bar></part><part id='P2'></part>\n<part "
    "id=\"P3\"><bar/></part></score>\n<?end?>";

// What stands at depth 3, with its text and that of the elements in it, and what is opened above.
std::string describe(const Element& element) {
    std::string text = std::string(element.nameText()) + "[" + std::string(element.attribute("n")) +
                       std::string(element.attribute("id")) + "]" + std::string(element.text());
    for (const Element child : element) text += "(" + describe(child) + ")";
    return text;
}

std::string readPieces(std::string_view text, std::size_t size, std::size_t worthALook, ParseFault& fault) {
    std::string seen;
    PieceReader reader(
        {}, 3,
        [&](const Element& element) {
            seen += "<" + std::string(element.nameText()) + std::string(element.attribute("id"));
        },
        [&](const Element& element) {
            seen += " " + std::string(element.parent().nameText()) + "/" + describe(element);
        },
        worthALook);
    for (std::size_t at = 0; at < text.size(); at += size) reader.read(text.substr(at, size));
    fault = reader.finish();
    return seen;
}

TEST(PieceReader, ReadsTheSameHoweverTheTextIsCut) {
    for (std::size_t size = 1; size <= kScore.size(); ++size) {
        for (const std::size_t worthALook : {1U, 40U, 1000U}) {
            ParseFault fault;
            EXPECT_EQ(
                readPieces(kScore, size, worthALook, fault),
                "<score<list list/name[]x < y<partP>1 part/bar[1](note[](step[]C))(note[]) part/bar[2]</bar>"
                "\xC3\xA9<partP2<partP3 part/bar[]");
            EXPECT_EQ(fault.kind, ParseFault::Kind::none) << size << " " << worthALook << fault.description;
        }
    }
}

TEST(PieceReader, FindsWhatTheWholeIsRefusedFor) {
    const std::pair<std::string, std::string> cases[] = {
        {"<a><b><c></b></a>", "the end tag </b> does not belong to <c>"},
        {"<a><b><c/></b>", "the text ends inside <a>"},
        {"<a><b><c>", "the text ends inside <c>"},
        {"<a><b/></a><a/>", "there is a second element after the root element"},
        {"<a><b/></a>x", "there is text after the last element"},
        {"<a><b/></a>\x01", "there is a control character"},
        {"<a><b><c>\xC3</c></b></a>", "there are bytes that are not a character"},
        {"", "this is not XML"},
    };
    for (const auto& [text, description] : cases) {
        for (const std::size_t size : {std::size_t{1}, std::size_t{7}, text.size() + 1}) {
            ParseFault fault;
            readPieces(text, size, 1, fault);
            EXPECT_EQ(fault.description, description) << text;
        }
        EXPECT_EQ(Tree(text, {}).fault().description, description);
    }
}

}  // namespace
}  // namespace rovescio::xml
