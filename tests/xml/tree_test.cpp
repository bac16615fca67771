// What a tree says about the elements of a text.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "xml/edits.h"
#include "xml/random_tree.h"
#include "xml/tree.h"
#include "xml/tree_check.h"

namespace rovescio::xml {
namespace {

constexpr std::string_view kVocabulary[] = {"note", "pitch", "step", "alter"};

TEST(Tree, KnowsThePlacesOfElements) {
    const std::string text =
        "\xEF\xBB\xBF<?xml version='1.0'?>\n<note a='>'>\n <pitch><step>C</step><alter/></pitch >"
        "<new x='1'><!-- <note> --></new></note> ";
    const Tree tree(text, kVocabulary);
    EXPECT_EQ(TreeCheck(tree).broken(), "");
    const std::pair<std::string_view, Name> nodes[] = {{"<pitch><step>C</step><alter/></pitch >", 1},
                                                       {"<step>C</step>", 2},
                                                       {"<alter/>", 3},
                                                       {"<new x='1'><!-- <note> --></new>", 4}};
    ASSERT_EQ(tree.size(), std::size(nodes) + 2) << tree.fault().description;
    for (Node node = 2; node < tree.size(); ++node) {
        const NodeData& data = tree.data(node);
        EXPECT_EQ(text.substr(data.begin, data.end - data.begin), nodes[node - 2].first);
        EXPECT_EQ(data.name, nodes[node - 2].second);
        EXPECT_EQ(data.isPlain, node != 5);
    }
    EXPECT_EQ(tree.rootElement().offset(), text.find("<note"));
    EXPECT_EQ(tree.rootElement().child(4).attribute("x"), "1");
    EXPECT_FALSE(tree.rootElement().child(2).exists());
    EXPECT_EQ(tree.rootElement().child(1).child(2).text(), "C");
}

TEST(Tree, DecodesCharacterData) {
    const std::pair<std::string, std::string> table[] = {
        {"<a/>", ""},
        {"<a></a>", ""},
        {"<a>\n\t C \r\n D </a>", "C \r\n D"},
        {"<a> &lt;b&gt; &amp;amp; </a>", "<b> &amp;"},
        {"<a>&#x20AC;&#233;&#x1D11E;&quot;&apos;</a>", "\xE2\x82\xAC\xC3\xA9\xF0\x9D\x84\x9E\"'"},
        {"<a>1<!-- 2 <&> -->3<?p 4 ?>5<![CDATA[ <6> &amp; ]]>7</a>", "135 <6> &amp; 7"},
        {"<a><![CDATA[]]]]><![CDATA[>]]></a>", "]]>"},
        {"<a> 1 <b>2</b>3<b/> <c>4<!----></c>5 </a>", "1 3 5"},
        {"<a> <b>2</b> </a>", ""},
    };
    for (const auto& [text, expected] : table) {
        const Tree tree(text, {});
        ASSERT_TRUE(tree.isSound()) << text;
        EXPECT_EQ(tree.rootElement().text(), expected) << text;
    }
    EXPECT_EQ(decoded("1 < 2 & 3 &x; <![CDATA[4"), "1 < 2 & 3 &x; 4");
}

TEST(Tree, FindsAndDecodesAttributes) {
    const std::string text =
        "<a x=\"'1'\" xx = '2' lines='3\t4\r\n5\n6&#10;7' escaped='&lt;&#65;&amp;lt;'\n empty=''>z='8'</a>";
    const Tree tree(text, {});
    const std::map<std::string, std::string> table = {
        {"x", "'1'"}, {"xx", "2"}, {"lines", "3 4 5 6\n7"}, {"escaped", "<A&lt;"}, {"empty", ""},
        {"z", ""},    {"a", ""}};
    for (const auto& [name, value] : table) {
        EXPECT_EQ(tree.attribute(1, name), value) << name;
        EXPECT_EQ(Edits(tree).attribute(1, name), value) << name;
    }

    EXPECT_EQ(TreeCheck(tree).broken(), "");
    for (const char* const tag : {"<a>", "<a/>", "<a />", "<x/>", "<a y='x='/>"}) {
        EXPECT_FALSE(findAttribute(tag, "x").exists()) << tag;
    }
}

TEST(Tree, ParsesFragments) {
    const std::string text = "<note><new/></note>";
    const Tree tree(text, kVocabulary);
    std::vector<NodeData> nodes(3);
    ASSERT_TRUE(tree.parseFragment("<pitch><step>C</step><new/></pitch>", 100, 50, nodes));
    ASSERT_EQ(nodes.size(), 6U);
    for (const char* const bad :
         {"", "C", "<step>", "<step>C</alter>", "<step/> ", "<step/><step/>", "<other/>",
          "<step><other/></step>", "<!----><step/>", "<step>\x01</step>"}) {
        EXPECT_FALSE(tree.parseFragment(bad, 0, 1, nodes)) << bad;
        EXPECT_EQ(nodes.size(), 6U) << bad;
    }
}

std::string trimmed(std::string text) {
    text.erase(0, text.find_first_not_of(" \n"));
    return text.erase(text.find_last_not_of(" \n") + 1);
}

RC_GTEST_PROP(Tree, ComesBackFromEverySpelling, ()) {
    const Choices below = [](int count) { return *rc::gen::inRange(0, count); };
    const Model model = someModel(below, 3);
    const std::string text = written(below, model);
    const Tree tree(text, kVocabulary);
    RC_ASSERT(tree.fault().description.empty());
    RC_ASSERT(shown(modelOf(tree, tree.root()), trimmed) == shown(model, trimmed));
    RC_ASSERT(TreeCheck(tree).broken().empty());
}

}  // namespace
}  // namespace rovescio::xml
