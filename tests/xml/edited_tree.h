// A tree that changes at random, beside a plain model that changes likewise.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "xml/edits.h"
#include "xml/random_tree.h"

namespace rovescio::xml {

class EditedTree {
  public:
    // The text must be sound and outlive this.
    EditedTree(std::string_view text, Choices below) : below_(std::move(below)), tree_(text, kNames) {
        for (const Model* const one : all()) originals_.push_back(*one);
    }

    void change() {
        Model& model = *picked(below_, all());
        const std::string name = someName(below_);
        const int kind = below_(6);
        if (kind == 0 && model.children.empty()) {
            edits_.setText(model.node, model.text = someText(below_));
        } else if (kind == 1) {
            edits_.setAttribute(model.node, name, model.attributes[name] = someText(below_));
        } else if (kind == 2) {
            model.attributes.erase(name);
            edits_.removeAttribute(model.node, name);
        } else if (kind == 3) {
            insert(model);
        } else if (kind == 4) {
            remove(model);
        } else if (bare(model.text).empty()) {
            rearrange(model);
        }
    }

    // What the edits say that the model does not; empty when they agree.
    std::string broken() {
        for (const Model* const model : all()) {
            std::vector<Node> nodes;
            edits_.children(model->node, nodes);
            std::vector<Node> expected;
            for (const Model& child : model->children) expected.push_back(child.node);
            if (nodes != expected) return "other children in <" + model->name + ">";
            for (const auto& [name, value] : model->attributes) {
                if (edits_.attribute(model->node, name) != value) return "another value of " + name;
            }
            if (expected.empty() && bare(edits_.text(model->node)) != bare(model->text))
                return "another text in <" + model->name + ">";
        }
        std::string text;
        if (!edits_.print([&](std::string_view piece) {
                text += piece;
                return true;
            }))
            return "the text is not printed";
        // Copies may have made the tree deeper than any that is read.
        const Tree again(text, kNames, {.depth = text.size()});
        if (!again.isSound()) return again.fault().description + " in " + text;
        const std::string is = shown(modelOf(again, again.root()), bare);
        const std::string expected = shown(root_, bare);
        return is == expected ? "" : "printed as\n" + text + "\n\n" + is + "\n\ninstead of\n" + expected;
    }

  private:
    // White space between elements is the edits' own affair.
    static std::string bare(std::string text) {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; });
        return text;
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
        for (std::size_t i = 0; i < model.children.size(); ++i) number(model.children[i], nodes.at(i));
    }
    Model added() {
        Model model = below_(2) == 0 ? picked(below_, originals_) : someModel(below_, 1);
        number(model, model.node == 0 ? edits_.make(written(below_, model)) : edits_.copy(model.node));
        return model;
    }
    void insert(Model& model) {
        Model child = added();
        const auto count = static_cast<int>(model.children.size());
        const int place = below_(count + 1);
        if (place < count && below_(2) == 0) {
            edits_.insertBefore(model.children[static_cast<std::size_t>(place)].node, child.node);
        } else if (place == 0) {
            edits_.insertFirst(model.node, child.node);
        } else if (place == count) {
            edits_.append(model.node, child.node);
        } else {
            edits_.insertAfter(model.children[static_cast<std::size_t>(place) - 1].node, child.node);
        }
        model.children.insert(model.children.begin() + place, std::move(child));
    }
    void remove(Model& model) {
        if (model.children.empty()) return;
        const int place = below_(static_cast<int>(model.children.size()));
        edits_.remove(model.children[static_cast<std::size_t>(place)].node);
        model.children.erase(model.children.begin() + place);
    }
    // Lists are of elements alone, as text between them would have no place.
    void rearrange(Model& model) {
        std::vector<Model> list = std::exchange(model.children, {});
        if (below_(2) == 0) list.push_back(added());
        std::vector<Node> nodes;
        for (Model& child : list) {
            if (below_(4) == 0) continue;
            const int place = below_(static_cast<int>(nodes.size()) + 1);
            nodes.insert(nodes.begin() + place, child.node);
            model.children.insert(model.children.begin() + place, std::move(child));
        }
        edits_.setChildren(model.node, nodes);
    }

    Choices below_;
    Tree tree_;
    Edits edits_{tree_};
    Model root_ = modelOf(tree_, tree_.root());
    std::vector<Model> originals_;
};

}  // namespace rovescio::xml
