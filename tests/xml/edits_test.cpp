// Changes to trees, against plain lists of children.
#include "xml/edits.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "xml/random_tree.h"

namespace rovescio::xml {
namespace {

constexpr std::array<std::string_view, 4> kNames = {"note", "n", "\xC3\xA9-1", "a-rather-long-name:x"};

// A tree and its edits beside the same tree as a plain model.
class Editing {
  public:
    explicit Editing(const std::string& text, Model model) : tree_(text, kNames), root_(std::move(model)) {
        number(root_, 1);
        for (const Model* const one : all()) originals_.push_back(*one);
    }

    void change() {
        Model& model = *pick(all());
        const std::string name(kNames[static_cast<std::size_t>(below(4))]);
        const int kind = below(6);
        if (kind == 0 && model.children.empty()) {
            edits_.setText(model.node, model.texts[0] = someText());
        } else if (kind == 1) {
            edits_.setAttribute(model.node, name, model.attributes[name] = someText());
        } else if (kind == 2) {
            model.attributes.erase(name);
            edits_.removeAttribute(model.node, name);
        } else if (kind == 3) {
            insert(model);
        } else if (kind == 4) {
            remove(model);
        } else {
            rearrange(model);
        }
    }

    void check() {
        for (const Model* const model : all()) {
            std::vector<Node> nodes;
            edits_.children(model->node, nodes);
            std::vector<Node> expected;
            for (const Model& child : model->children) expected.push_back(child.node);
            RC_ASSERT(nodes == expected);
            for (const auto& [name, value] : model->attributes)
                RC_ASSERT(edits_.attribute(model->node, name) == value);
            if (expected.empty()) RC_ASSERT(bare(edits_.text(model->node)) == bare(model->texts[0]));
        }
        const std::string text = edits_.print(tree_.root());
        RC_LOG() << text;
        const Tree again(text, kNames);
        RC_ASSERT(again.isSound());
        expectModel(again.rootElement(), root_, bare);
    }

  private:
    // White space between elements is the edits' own affair.
    static std::string bare(std::string text) {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
        return text;
    }
    template <class T>
    static T pick(const std::vector<T>& from) {
        return from[static_cast<std::size_t>(below(static_cast<int>(from.size())))];
    }
    static void list(Model& model, std::vector<Model*>& all) {
        all.push_back(&model);
        for (Model& child : model.children) list(child, all);
    }
    std::vector<Model*> all() {
        std::vector<Model*> elements;
        list(root_, elements);
        return elements;
    }
    // Gives the model's elements the numbers of the tree's.
    void number(Model& model, Node node) {
        model.node = node;
        std::vector<Node> nodes;
        edits_.children(node, nodes);
        RC_ASSERT(nodes.size() == model.children.size());
        for (std::size_t i = 0; i < nodes.size(); ++i) number(model.children[i], nodes[i]);
    }
    Model added() {
        Model model = below(2) == 0 ? pick(originals_) : someModel(1);
        number(model, model.node == 0 ? edits_.make(written(model)) : edits_.copy(model.node));
        return model;
    }
    void insert(Model& model) {
        Model child = added();
        const auto count = static_cast<int>(model.children.size());
        const int place = below(count + 1);
        if (place < count && below(2) == 0) {
            edits_.insertBefore(model.children[static_cast<std::size_t>(place)].node, child.node);
        } else if (place == 0) {
            edits_.insertFirst(model.node, child.node);
        } else if (place == count) {
            edits_.append(model.node, child.node);
        } else {
            edits_.insertAfter(model.children[static_cast<std::size_t>(place) - 1].node, child.node);
        }
        model.texts.insert(model.texts.begin() + place, "");
        model.children.insert(model.children.begin() + place, std::move(child));
    }
    void remove(Model& model) {
        if (model.children.empty()) return;
        const int place = below(static_cast<int>(model.children.size()));
        edits_.remove(model.children[static_cast<std::size_t>(place)].node);
        model.children.erase(model.children.begin() + place);
        model.texts[static_cast<std::size_t>(place)] += model.texts[static_cast<std::size_t>(place) + 1];
        model.texts.erase(model.texts.begin() + place + 1);
    }
    // Lists are of elements alone, as text between them would have no place.
    void rearrange(Model& model) {
        for (const std::string& text : model.texts) {
            if (!bare(text).empty()) return;
        }
        std::vector<Model> list = std::exchange(model.children, {});
        if (below(2) == 0) list.push_back(added());
        std::vector<Node> nodes;
        for (Model& child : list) {
            if (below(4) == 0) continue;
            const int place = below(static_cast<int>(nodes.size()) + 1);
            nodes.insert(nodes.begin() + place, child.node);
            model.children.insert(model.children.begin() + place, std::move(child));
        }
        edits_.setChildren(model.node, nodes);
        model.texts.assign(model.children.size() + 1, "");
    }

    Tree tree_;
    Edits edits_{tree_};
    Model root_;
    std::vector<Model> originals_;
};

RC_GTEST_PROP(Edits, PrintWhatTheyHold, ()) {
    const Model model = someModel(3);
    const std::string text = written(model);
    Editing editing(text, model);
    for (int i = below(30); i > 0; --i) editing.change();
    editing.check();
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
