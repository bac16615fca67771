// Parsing and printing of scores as text.
#include "support/score_text.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

#include "engine/model/note_state.h"

namespace rovescio::test {

using engine::Document;
using engine::KeySignature;
using engine::SpelledPitch;

namespace {

const std::string kLetters = "cdefgab";
const std::string kValues = "whqest";
const std::string kOrderOfFifths = "fcgdaeb";

void require(bool condition, const std::string& what) {
    if (!condition) throw std::invalid_argument("score text: " + what);
}

int accidentalsAt(const std::string& text, std::size_t& at) {
    int alter = 0;
    for (; at < text.size() && (text[at] == '#' || text[at] == 'b'); ++at) alter += text[at] == '#' ? 1 : -1;
    return alter;
}

SpelledPitch pitchAt(const std::string& text, std::size_t& at) {
    const auto letter = kLetters.find(text.at(at++));
    require(letter != std::string::npos, "no pitch in " + text);
    const int alter = accidentalsAt(text, at);
    std::size_t used = 0;
    const int octave = std::stoi(text.substr(at), &used);
    at += used;
    return {7 * (octave - 4) + static_cast<int>(letter), alter};
}

KeySignature keyFromText(const std::string& text) {
    if (text == "none") return KeySignature::nonStandard();
    const bool minor = std::islower(static_cast<unsigned char>(text[0])) != 0;
    const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    std::size_t at = 1;
    const int alter = accidentalsAt(text, at);
    const int fifths = static_cast<int>(kOrderOfFifths.find(letter)) - 1 + 7 * alter;
    return KeySignature::standard(minor ? fifths - 3 : fifths, minor);
}

std::int32_t valueOf(const std::string& text, std::size_t& at) {
    const auto value = kValues.find(text.at(at++));
    require(value != std::string::npos, "no note value in " + text);
    std::int32_t duration = 4096 >> value;
    for (std::int32_t dot = duration / 2; at < text.size() && text[at] == '.'; ++at, dot /= 2)
        duration += dot;
    return duration;
}

void readNote(const std::string& token, std::size_t& at, const KeySignature& key, EXENTRY& entry) {
    require(entry.noteCount < kMaxNotes, "too many notes in " + token);
    ENOTE& note = entry.notes[entry.noteCount++];
    key.store(pitchAt(token, at), note);
    note.noteId = static_cast<std::uint16_t>(entry.noteCount);
    note.noteFlags = static_cast<std::uint32_t>(entry.noteCount) << 16;
    for (; at < token.size(); ++at) {
        switch (token[at]) {
            case '~':
                note.noteFlags |= NOTE_TIE_START;
                break;
            case '^':
                note.noteFlags |= NOTE_TIE_END;
                break;
            case '\'':
                engine::setCents(note, 50);
                break;
            case '!':
                note.noteFlags |= NOTE_FLAG24;
                break;
            case '+':
                note.noteFlags |= NOTE_FLAG1;
                break;
            default:
                return;
        }
    }
}

EXENTRY entryFromText(const std::string& token, const KeySignature& key) {
    EXENTRY entry{};
    entry.entryFlags = ENTRY_VALID;
    engine::EntryState state;
    std::size_t at = 0;
    if (token[0] == '/') {
        state.grace = engine::Grace::grace;
        at = 1;
    }
    if (token[at] == 'r') {
        ++at;
    } else {
        entry.entryFlags |= ENTRY_NOTE;
        const bool chord = token[at] == '<';
        if (chord) ++at;
        do {
            readNote(token, at, key, entry);
            if (chord && token.at(at) == ',') ++at;
        } while (chord && token.at(at) != '>');
        if (chord) ++at;
    }
    require(token.at(at) == ':', "no value in " + token);
    entry.duration = valueOf(token, ++at);
    if (at < token.size() && token[at] == '*') {
        char colon = 0;
        std::istringstream(token.substr(at + 1)) >> state.actual >> colon >> state.normal;
    }
    engine::setEntryState(entry, state);
    return entry;
}

std::vector<std::vector<std::string>> measuresOf(std::istream& in) {
    std::vector<std::vector<std::string>> measures(1);
    std::string token;
    while (in >> token) {
        // Chords are written with spaces between their notes.
        if (token.find('<') != std::string::npos) {
            std::string more;
            while (token.find('>') == std::string::npos && in >> more) token += "," + more;
        }
        if (token == "|") {
            measures.emplace_back();
        } else {
            measures.back().push_back(token);
        }
    }
    return measures;
}

void setLayer(Document& document, short staff, short layer,
              const std::vector<std::vector<std::string>>& measures) {
    require(measures.size() == static_cast<std::size_t>(document.measureCount()), "wrong number of measures");
    for (short measure = 1; measure <= document.measureCount(); ++measure) {
        const KeySignature& key = document.staffMeasure(staff, measure).key;
        std::vector<EXENTRY> entries;
        std::int64_t elapsed = 0;  // in units of 1/3600, so that common tuplets are exact
        for (const std::string& token : measures[static_cast<std::size_t>(measure - 1)]) {
            EXENTRY entry = entryFromText(token, key);
            entry.entryNumber = document.nextEntryNumber();
            entry.elapsed = static_cast<std::int32_t>(elapsed / 3600);
            const engine::EntryState state = engine::entryState(entry);
            if (state.grace == engine::Grace::none) {
                elapsed += std::int64_t{entry.duration} * 3600 * state.normal / state.actual;
            }
            entries.push_back(entry);
        }
        document.setEntries({staff, measure, layer}, entries);
    }
}

std::string valueText(std::int32_t duration) {
    std::string text;
    std::int32_t value = 4096;
    std::size_t name = 0;
    while (value > duration && name + 1 < kValues.size()) {
        value /= 2;
        ++name;
    }
    text += kValues[name];
    for (std::int32_t rest = duration - value; rest > 0; rest -= value) {
        value /= 2;
        if (value == 0 || rest < value) return std::to_string(duration);
        text += '.';
    }
    return text;
}

std::string entryText(const engine::StoredEntry& entry, const KeySignature& key) {
    const engine::EntryState state = engine::entryState(entry);
    std::string text = state.grace == engine::Grace::none ? "" : "/";
    if (entry.noteCount == 0) text += state.silence == engine::Silence::gap ? '_' : 'r';
    if (entry.noteCount > 1) text += '<';
    for (const ENOTE& note : entry.notes()) {
        if (&note != entry.notes().data()) text += ' ';
        text += textOf(key.spell(note));
        if (engine::centsOf(note) != 0) text += '\'';
        if (note.noteFlags & NOTE_TIE_START) text += '~';
        if (note.noteFlags & NOTE_TIE_END) text += '^';
        if (note.noteFlags & NOTE_FLAG24) text += '!';
        if (note.noteFlags & NOTE_FLAG1) text += '+';
    }
    if (entry.noteCount > 1) text += '>';
    text += ':' + valueText(entry.duration);
    if (state.actual != state.normal) {
        text += '*' + std::to_string(state.actual) + ':' + std::to_string(state.normal);
    }
    return text;
}

}  // namespace

SpelledPitch pitchFromText(const std::string& text) {
    std::size_t at = 0;
    return pitchAt(text, at);
}

std::string textOf(const SpelledPitch& pitch) {
    const std::string signs(static_cast<std::size_t>(std::abs(pitch.alter)), pitch.alter > 0 ? '#' : 'b');
    return kLetters[static_cast<std::size_t>(engine::floorMod(pitch.step, 7))] + signs +
           std::to_string(4 + engine::floorDiv(pitch.step, 7));
}

Document scoreFromText(const std::vector<std::string>& lines, const std::vector<std::string>& measureLabels) {
    struct Line {
        KeySignature key;
        std::int32_t duration;
        std::int32_t beat;
        std::vector<std::vector<std::string>> measures;
    };
    std::vector<Line> parsed;
    Document document;
    for (const std::string& text : lines) {
        std::istringstream in(text);
        std::string key;
        int beats = 0;
        char slash = 0;
        int beatType = 1;
        in >> key >> beats >> slash >> beatType;
        parsed.push_back({keyFromText(key), beats * 4096 / beatType, 4096 / beatType, measuresOf(in)});
        document.addStaff({"staff " + std::to_string(parsed.size()), key == "none"});
    }
    for (std::size_t i = 0; i < parsed.front().measures.size(); ++i)
        document.addMeasure({measureLabels.empty() ? std::to_string(i + 1) : measureLabels.at(i)});
    document.layOut();
    for (short staff = 1; staff <= document.staffCount(); ++staff) {
        const Line& line = parsed[static_cast<std::size_t>(staff - 1)];
        for (short measure = 1; measure <= document.measureCount(); ++measure) {
            document.staffMeasure(staff, measure) = {line.key, line.duration, line.beat, false};
        }
        setLayer(document, staff, 0, line.measures);
    }
    return document;
}

void addLayer(Document& document, short staff, short layer, const std::string& measures) {
    std::istringstream in(measures);
    setLayer(document, staff, layer, measuresOf(in));
}

void editEntries(Document& document, const engine::FrameAddress& address,
                 const std::function<void(std::vector<EXENTRY>&)>& edit) {
    std::vector<EXENTRY> entries = document.entries(address).expanded();
    edit(entries);
    engine::PackedEntries packed(entries);
    document.exchangeEntries(address, packed);
}

std::string textOf(const Document& document, short staff, short layer) {
    std::string text;
    for (short measure = 1; measure <= document.measureCount(); ++measure) {
        if (measure > 1) text += " |";
        for (const engine::StoredEntry& entry : document.entries({staff, measure, layer})) {
            if (!text.empty()) text += ' ';
            text += entryText(entry, document.staffMeasure(staff, measure).key);
        }
    }
    return text;
}

}  // namespace rovescio::test
