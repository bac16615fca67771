// Small trees with every kind of text in them, to be written in many ways.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "xml/tree.h"
#include "xml/tree_check.h"

namespace rovescio::xml {

// What decides: a number from 0 to below the one given.
using Choices = std::function<int(int)>;

struct Model {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::string text;  // before, between and behind the children
    std::vector<Model> children;
    Node node = 0;
};

constexpr std::array<std::string_view, 4> kNames = {"note", "n", "\xC3\xA9-1", "a-rather-long-name:x"};

template <class T>
const T& picked(const Choices& below, const std::vector<T>& from) {
    return from[static_cast<std::size_t>(below(static_cast<int>(from.size())))];
}

inline std::string someName(const Choices& below) {
    return std::string(kNames[static_cast<std::size_t>(below(kNames.size()))]);
}

inline std::string someText(const Choices& below) {
    static const std::vector<std::string> kPieces{
        "a",         "<",   "&", ">",     "\"", "'", "]]>",
        "--",        "?>",  "é", "&amp;", "\n", " ", "\xF0\x9D\x84\x9E",
        "<![CDATA[", "<!--"};
    std::string text;
    for (int i = below(5); i > 0; --i) text += picked(below, kPieces);
    return text;
}

inline Model someModel(const Choices& below, int depth) {
    Model model{someName(below), {}, someText(below), {}, 0};
    for (int i = below(4); i > 0; --i) model.attributes[someName(below)] = someText(below);
    for (int i = depth == 0 ? 0 : below(4); i > 0; --i) {
        model.children.push_back(someModel(below, depth - 1));
        model.text += someText(below);
    }
    return model;
}

inline std::string space(const Choices& below, int atLeast) {
    static const char* const kSpaces[] = {"", " ", "\n", "\t ", "\r\n"};
    return kSpaces[atLeast + below(5 - atLeast)];
}

inline std::string spelled(const Choices& below, const std::string& text) {
    if (text.find("]]>") == std::string::npos && below(3) == 0) return "<![CDATA[" + text + "]]>";
    std::string result;
    for (const char c : text) {
        const bool needsIt = c == '<' || c == '&' || c == '>';
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && below(4) == 0) {
            result += "&#" + std::to_string(byte) + ";";
        } else {
            result += needsIt ? escaped({&c, 1}) : std::string(1, c);
        }
        if (below(12) == 0) result += byte < 0x80 ? (below(2) == 0 ? "<!-- & -->" : "<?p <x> ?>") : "";
    }
    return result;
}

inline std::string written(const Choices& below, const Model& model) {
    std::string text = "<" + model.name;
    for (const auto& [name, value] : model.attributes) {
        const char quote = below(2) == 0 ? '"' : '\'';
        text +=
            space(below, 1) + name + space(below, 0) + "=" + space(below, 0) + quote + escaped(value) + quote;
    }
    text += space(below, 0);
    if (model.children.empty() && model.text.empty() && below(2) == 0) return text + "/>";
    text += ">";
    std::size_t from = 0;
    for (const Model& child : model.children) {
        std::size_t to =
            from + static_cast<std::size_t>(below(static_cast<int>(model.text.size() - from) + 1));
        while (to < model.text.size() && (model.text[to] & 0xC0) == 0x80) ++to;
        text += spelled(below, model.text.substr(from, to - from)) + written(below, child);
        from = to;
    }
    return text + spelled(below, model.text.substr(from)) + "</" + model.name + space(below, 0) + ">";
}

// The model of an element that was read.
inline Model modelOf(const Tree& tree, Node node) {
    const Element element(tree, node);
    const NodeData& data = tree.data(node);
    Model model{std::string(element.nameText()), {}, std::string(element.text()), {}, node};
    eachAttribute(tree.source().substr(data.begin, data.contentBegin - data.begin),
                  [&](std::string_view name, std::string_view) {
                      model.attributes.emplace(name, element.attribute(name));
                  });
    for (const Element child : element) model.children.push_back(modelOf(tree, child.node()));
    return model;
}

// All that a model says, to compare; `seen` is what counts of a text.
inline std::string shown(const Model& model, std::string (*seen)(std::string)) {
    std::string text = model.name;
    for (const auto& [name, value] : model.attributes)
        text.append(" ").append(name).append("=").append(value);
    text += " {" + seen(model.text);
    for (const Model& child : model.children) text += "\n" + shown(child, seen);
    return text + "}";
}

}  // namespace rovescio::xml
