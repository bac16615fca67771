// Changes to trees, against models that change likewise.
#include "xml/edits.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <tuple>

#include "xml/edited_tree.h"

namespace rovescio::xml {
namespace {

RC_GTEST_PROP(Edits, PrintWhatTheyHold, ()) {
    const Choices below = [](int count) { return *rc::gen::inRange(0, count); };
    const std::string text = written(below, someModel(below, 3));
    EditedTree edited(text, below);
    for (int i = below(30); i > 0; --i) edited.change();
    RC_ASSERT(edited.broken() == "");
}

TEST(Edits, LeaveTheRestAsItIs) {
    const std::string text = "<r>\n <a x='1' >t</a>\n <!-- b -->\n <b/>\n <?c?><c><d/></c>\n <e />\n</r>";
    const std::string last = "\n <!-- b -->\n <b/>\n <?c?><c><d/></c>\n <e />";
    const std::tuple<std::function<void(Edits&)>, std::string, std::string> cases[] = {
        {[](Edits& edits) { edits.setText(2, "<"); }, "'1' >t</a>", "'1' >&lt;</a>"},
        {[](Edits& edits) { edits.setAttribute(3, "y", "'"); }, "<b/>", "<b y=\"&apos;\"/>"},
        {[](Edits& edits) { edits.insertFirst(6, edits.make("<a/>")); }, "<e />", "<e><a/></e>"},
        {[](Edits& edits) { edits.insertAfter(2, edits.copy(5)); }, "</a>", "</a>\n <d/>"},
        // Comments outlive their elements.
        {[](Edits& edits) { edits.remove(3); }, "\n <b/>", ""},
        {[](Edits& edits) {
             edits.setChildren(1, std::array<Node, 3>{2, 4, 6});
         },
         last, "\n <?c?><c><d/></c>\n <e />\n <!-- b -->"},
        // They go where these go, also when that list is made first.
        {[](Edits& edits) {
             edits.setChildren(6, std::array<Node, 1>{3});
             edits.setChildren(1, std::array<Node, 3>{2, 4, 6});
         },
         last, "\n <?c?><c><d/></c>\n <e>\n <!-- b -->\n <b/></e>"},
        {[](Edits& edits) {
             edits.remove(3);
             edits.setChildren(1, std::array<Node, 2>{2, 6});
             edits.setChildren(6, std::array<Node, 1>{4});
         },
         last, "\n <e>\n <!-- b -->\n <?c?><c><d/></c></e>"},
    };
    for (const auto& [change, from, to] : cases) {
        const Tree tree(text, {});
        Edits edits(tree);
        change(edits);
        std::string wanted = text;
        EXPECT_EQ(edits.print(tree.root()), wanted.replace(text.find(from), from.size(), to));
    }
}

}  // namespace
}  // namespace rovescio::xml
