// Small trees with every kind of text in them, to be written in many ways.
#pragma once

#include <rapidcheck.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "xml/tree.h"

namespace rovescio::xml {

struct Model {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::vector<std::string> texts;  // one more than children
    std::vector<Model> children;
    Node node = 0;
};

inline int below(int count) {
    return *rc::gen::inRange(0, count);
}

inline std::string someText() {
    static const std::vector<std::string> kPieces{
        "a",         "<",   "&", ">",     "\"", "'", "]]>",
        "--",        "?>",  "é", "&amp;", "\n", " ", "\xF0\x9D\x84\x9E",
        "<![CDATA[", "<!--"};
    std::string text;
    for (int i = below(5); i > 0; --i)
        text += kPieces[static_cast<std::size_t>(below(static_cast<int>(kPieces.size())))];
    return text;
}

inline Model someModel(int depth) {
    static const char* const kNames[] = {"note", "n", "é-1", "a-rather-long-name:x"};
    Model model{kNames[below(4)], {}, {someText()}, {}, 0};
    for (int i = below(4); i > 0; --i) model.attributes[kNames[below(4)]] = someText();
    for (int i = depth == 0 ? 0 : below(4); i > 0; --i) {
        model.children.push_back(someModel(depth - 1));
        model.texts.push_back(someText());
    }
    return model;
}

inline std::string space(int atLeast) {
    static const char* const kSpaces[] = {"", " ", "\n", "\t ", "\r\n"};
    return kSpaces[atLeast + below(5 - atLeast)];
}

inline std::string spelled(const std::string& text) {
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

inline std::string written(const Model& model) {
    std::string text = "<" + model.name;
    for (const auto& [name, value] : model.attributes) {
        const char quote = below(2) == 0 ? '"' : '\'';
        text += space(1) + name + space(0) + "=" + space(0) + quote + escaped(value) + quote;
    }
    text += space(0);
    if (model.children.empty() && model.texts[0].empty() && below(2) == 0) return text + "/>";
    text += ">" + spelled(model.texts[0]);
    for (std::size_t i = 0; i < model.children.size(); ++i) {
        text += written(model.children[i]) + spelled(model.texts[i + 1]);
    }
    return text + "</" + model.name + space(0) + ">";
}

inline std::string trimmedText(const std::string& text) {
    const std::size_t first = std::min(text.find_first_not_of(" \n"), text.size());
    return text.substr(first, text.find_last_not_of(" \n") + 1 - first);
}

// `seen` is what counts of a text.
template <class Seen = std::string (*)(const std::string&)>
void expectModel(const Element& element, const Model& model, const Seen& seen = trimmedText) {
    RC_ASSERT(element.nameText() == model.name);
    for (const auto& [name, value] : model.attributes) RC_ASSERT(element.attribute(name) == value);
    std::string text;
    for (const std::string& piece : model.texts) text += piece;
    RC_ASSERT(seen(std::string(element.text())) == seen(text));
    std::size_t count = 0;
    for (const Element child : element) {
        RC_ASSERT(count < model.children.size());
        expectModel(child, model.children[count++], seen);
    }
    RC_ASSERT(count == model.children.size());
}

}  // namespace rovescio::xml
