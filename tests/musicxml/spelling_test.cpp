// The same score in other XML is the same music, whatever is done to it.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "engine/interface/session.h"
#include "musicxml/score_builder.h"
#include "support/memory_user_interface.h"
#include "support/reversal.h"
#include "support/score_text.h"
#include "xml/tree_check.h"

namespace rovescio::test {
namespace {

// Writes an element in as many ways as XML has: order and quotes of attributes, white space in tags and
// between elements, comments, instructions, sections and references.
class Respelling {
  public:
    explicit Respelling(unsigned seed) : random_(seed) {}

    std::string of(const xml::Tree& tree, xml::Element element) {
        const std::string tag(element.nameText());
        std::string text = "<" + tag + attributes(tree, element) + space();
        std::string content;
        bool hasChildren = false;
        for (const xml::Element child : element) {
            content += aside() + of(tree, child);
            hasChildren = true;
        }
        if (!hasChildren) content = data(std::string(element.text()));
        if (hasChildren) content += aside();
        if (content.empty() && chance(2)) return text + "/>";
        return text + ">" + content + "</" + tag + space() + ">";
    }

  private:
    bool chance(unsigned of) { return random_() % of == 0; }
    std::string space() { return chance(4) ? std::string(1, " \t\n"[random_() % 3]) : ""; }
    std::string aside() {
        constexpr const char* kAsides[] = {"<!-- <note> </measure> <direction type='start'> -->",
                                           "<?show <tie type=\"start\"?>", "\n  ", "\r\n\t", " "};
        return chance(3) ? kAsides[random_() % std::size(kAsides)] : "";
    }

    std::string attributes(const xml::Tree& tree, const xml::Element& element) {
        std::vector<std::string> list;
        const xml::NodeData& at = tree.data(element.node());
        xml::eachAttribute(tree.source().substr(at.begin, at.contentBegin - at.begin),
                           [&](std::string_view name, std::string_view) {
                               const char quote = chance(2) ? '"' : '\'';
                               list.push_back(" " + space() + std::string(name) + space() + "=" + space() +
                                              quote + referenced(std::string(element.attribute(name))) +
                                              quote);
                           });
        std::shuffle(list.begin(), list.end(), random_);
        std::string text;
        for (const std::string& attribute : list) text += attribute;
        return text;
    }

    // Some characters as references.
    std::string referenced(const std::string& text) {
        std::string result;
        for (const char c : text) {
            const bool may = c > ' ' && c <= '~' && chance(6);
            const bool must = c == '<' || c == '&' || c == '"' || c == '\'';
            result += must || may ? "&#" + std::to_string(static_cast<int>(c)) + ";" : std::string(1, c);
        }
        return result;
    }

    std::string data(const std::string& text) {
        if (text.empty() || !chance(3)) return text.empty() ? text : space() + referenced(text) + space();
        const std::size_t cut = chance(2) ? 0 : text.size();
        return "<!-- 7 --><![CDATA[" + text.substr(0, cut) + "]]>" + referenced(text.substr(cut)) + "<?x?>";
    }

    std::mt19937 random_;
};

std::string respelled(const std::string& bytes, unsigned seed) {
    const xml::Tree tree(bytes, {});
    return "<?xml version='1.0'?>\n" + Respelling(seed).of(tree, tree.rootElement());
}

std::string musicOf(const engine::Document& document) {
    std::string text;
    for (short staff = 1; staff <= document.staffCount(); ++staff) {
        for (short layer = 0; layer < engine::kMaxLayers; ++layer)
            text += textOf(document, staff, layer) + "\n";
    }
    return text;
}

// The music of a score after a retrograde of its first staff, as it is read from what was written.
std::string reversedMusic(const std::string& bytes) {
    OpenScore score = open(bytes);
    MemoryUserInterface front;
    engine::Session session(score.document, front);
    const bool isReversed = reverseStaff(session, 1);
    RC_LOG() << (session.refusal() ? session.refusal()->text() : "");
    RC_ASSERT(isReversed);
    auto written = score.file.write(score.document, musicxml::Container::plain);
    RC_ASSERT(written.ok());
    RC_ASSERT(!score.file.proofread(score.document, *written));
    const std::string music = musicOf(score.document);
    RC_ASSERT(musicOf(open(written->bytes()).document) == music);
    return music;
}

RC_GTEST_PROP(Spelling, changesNoMusic, ()) {
    const std::string tied =
        "<tie type=\"start\"/><type>quarter</type><notations><tied type=\"start\"/></notations>";
    static const std::vector<std::string> scores = [&] {
        std::vector<std::string> list = {
            scoreOf({voice("1", "c5:h f#5:h") + backup(4) + voice("2", "e4:q eb4:h r:q")}),
            scoreOf(
                {note("d4:h") + note("e4:q"), "<note><rest measure=\"yes\"/><duration>16</duration></note>"}),
            scoreOf({note("c4:q") + timedNote("D", "4", tied),
                     timedNote("D", "4", "<tie type=\"stop\"/><type>quarter</type>") + note("f#4:h"),
                     "<direction><direction-type><words>a &lt; b</words></direction-type></direction>" +
                         note("g4:q")})};
        for (const char* name : {"greensleeves", "frere-jacques", "crab-canon"}) {
            std::ifstream file(std::string(EXAMPLES_FOLDER) + "/" + name + ".musicxml");
            list.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        }
        return list;
    }();
    const std::string& score = *rc::gen::elementOf(scores);
    const std::string other = respelled(score, *rc::gen::arbitrary<unsigned>());
    RC_ASSERT(musicOf(open(other).document) == musicOf(open(score).document));
    RC_ASSERT(open(other).written() == other);
    RC_ASSERT(reversedMusic(other) == reversedMusic(score));
}

}  // namespace
}  // namespace rovescio::test
