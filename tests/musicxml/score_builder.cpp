// Building and opening of small scores.
#include "musicxml/score_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "support/score_text.h"

namespace rovescio::test {

using engine::Document;
using musicxml::ScoreFile;

namespace {

struct Value {
    char name;
    int divisions;
    const char* type;
};
constexpr Value kValues[] = {
    {'w', 16, "whole"}, {'h', 8, "half"}, {'q', 4, "quarter"}, {'e', 2, "eighth"}, {'s', 1, "16th"}};

std::string noteXml(const std::string& before, const std::string& text, const std::string& more) {
    const std::size_t colon = text.find(':');
    std::string place = "<rest/>";
    if (text[0] != 'r') {
        const engine::SpelledPitch pitch = pitchFromText(text.substr(0, colon));
        const auto letter = static_cast<std::size_t>(engine::floorMod(pitch.step, 7));
        const int octave = 4 + engine::floorDiv(pitch.step, 7);
        place = std::string("<pitch><step>").append("CDEFGAB", letter, 1).append("</step>");
        if (pitch.alter != 0) place.append("<alter>").append(std::to_string(pitch.alter)).append("</alter>");
        place.append("<octave>").append(std::to_string(octave)).append("</octave></pitch>");
    }
    const Value* const value = std::ranges::find(kValues, text.at(colon + 1), &Value::name);
    if (value == std::end(kValues)) throw std::invalid_argument("no note value in " + text);
    return "<note>" + before + place + "<duration>" + std::to_string(value->divisions) + "</duration><type>" +
           value->type + "</type>" + more + "</note>";
}

void change(Document& document, const engine::FrameAddress& address, std::size_t entry, int noteId,
            const std::function<void(ENOTE&)>& edit) {
    editEntries(document, address, [&](std::vector<EXENTRY>& entries) {
        EXENTRY& changed = entries.at(entry);
        for (ENOTE* found = changed.notes; found != changed.notes + changed.noteCount; ++found) {
            if (found->noteId == noteId) edit(*found);
        }
    });
}

}  // namespace

std::string scoreOf(const std::vector<std::string>& measures, const std::string& attributes) {
    return scoreOfParts({measures}, attributes);
}

std::string scoreOfParts(const std::vector<std::vector<std::string>>& parts, const std::string& attributes) {
    std::string list;
    std::string music;
    for (const auto& measures : parts) {
        const std::string id = " id=\"P" + std::to_string(&measures - parts.data() + 1) + "\">";
        list += "<score-part" + id + "<part-name>Flute</part-name></score-part>";
        music += "<part" + id + "\n";
        int number = 0;
        for (const std::string& measure : measures) {
            music += "<measure number=\"" + std::to_string(++number) + "\">";
            music += (number == 1 ? attributes : "") + measure + "</measure>\n";
        }
        music += "</part>\n";
    }
    return "<score-partwise version=\"4.0\">\n<part-list>" + list + "</part-list>\n" + music +
           "</score-partwise>\n";
}

std::string note(const std::string& text, const std::string& more) {
    return noteXml("", text, more);
}

std::string chordNote(const std::string& text, const std::string& more) {
    return noteXml("<chord/>", text, more);
}

std::string attributes(const std::string& words, const std::string& more) {
    std::string text;
    std::string clef;
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        const std::string number = word.substr(0, word.find_first_not_of("0123456789"));
        const std::string rest = word.substr(number.size());
        if (rest.empty()) {
            text += "<divisions>" + number + "</divisions>";
        } else if (rest == "#" || rest == "b") {
            text += "<key><fifths>" + (rest == "b" ? "-" + number : number) + "</fifths></key>";
        } else if (rest[0] == '/') {
            text += "<time><beats>" + number + "</beats><beat-type>" + rest.substr(1) + "</beat-type></time>";
        } else {
            clef = "<clef><sign>" + word.substr(0, word.size() - 1) + "</sign><line>" + word.back() +
                   "</line></clef>";
        }
    }
    return "<attributes>" + text + more + clef + "</attributes>";
}

std::string voice(const std::string& number, const std::string& notes, const std::string& more) {
    std::istringstream in(notes);
    std::string text;
    for (std::string token; in >> token;) {
        std::string xml = note(token, more);
        // A voice is given between the duration and the type.
        xml.insert(xml.find("<type>"), "<voice>" + number + "</voice>");
        text += xml;
    }
    return text;
}

void OpenScore::setPitch(const std::string& pitch, std::size_t entry, int noteId, short layer, short staff) {
    const engine::KeySignature& key = document.staffMeasure(staff, 1).key;
    change(document, {staff, 1, layer}, entry, noteId,
           [&](ENOTE& changed) { key.store(pitchFromText(pitch), changed); });
}

void OpenScore::setFlags(std::uint32_t cleared, std::uint32_t set, std::size_t entry, int noteId) {
    change(document, {1, 1, 0}, entry, noteId,
           [&](ENOTE& changed) { changed.noteFlags = (changed.noteFlags & ~cleared) | set; });
}

std::string OpenScore::written() const {
    auto written = file.write(document, musicxml::Container::plain);
    const auto fault = written ? file.proofread(document, *written) : written.problem();
    if (!fault) return written->bytes();
    ADD_FAILURE() << fault->text();
    return {};
}

OpenScore open(const std::string& bytes) {
    Document document;
    auto file = ScoreFile::read(bytes, "test.musicxml", document);
    if (!file) throw std::invalid_argument(file.problem().text());
    return {std::move(document), std::move(*file)};
}

std::string problemOf(const std::string& bytes, const musicxml::ReadOptions& options) {
    Document document;
    const auto file = ScoreFile::read(bytes, "test.musicxml", document, options);
    return file ? "" : file.problem().text();
}

}  // namespace rovescio::test
