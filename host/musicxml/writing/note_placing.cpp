// The children of a note one by one.
#include "musicxml/writing/note_placing.h"

#include <algorithm>

#include "contract/records.h"
#include "musicxml/file/tag_names.h"
#include "musicxml/rules/note_types.h"
#include "musicxml/rules/numbers.h"
#include "musicxml/writing/note_edits.h"

namespace rovescio::musicxml {

namespace {

class Placing {
  public:
    Placing(xml::Edits& edits, xml::Node note, const NoteShape& shape)
        : edits_(edits), note_(note), shape_(shape) {}

    void apply(NoteScan& scan) {
        edits_.removeAttribute(note_, "default-x");
        edits_.removeAttribute(note_, "relative-x");
        placeChord();
        placeLength();
        if (!shape_.voice.empty()) say(edits_.child(note_, tag("voice")), "voice", shape_.voice);
        placeMarks();
        editTies(edits_, scan.of(note_), shape_.ties, shape_.cutId);
        writeGroups(edits_, note_, shape_.groups ? *shape_.groups : NoteGroups{});
    }

  private:
    // Gives a child, or a new one where there is none, a text.
    void say(xml::Node child, const std::string& name, std::string_view text) {
        if (child == 0) {
            insertIntoNote(edits_, note_,
                           edits_.make("<" + name + ">" + xml::escaped(text) + "</" + name + ">"));
        } else if (!edits_.says(child, text)) {
            edits_.setText(child, text);
        }
    }

    void placeChord() {
        const xml::Node chord = edits_.child(note_, tag("chord"));
        if (chord != 0 && !shape_.chord) edits_.remove(chord);
        if (chord == 0 && shape_.chord) insertIntoNote(edits_, note_, edits_.make("<chord/>"));
    }

    void placeLength() {
        if (!shape_.duration.empty()) {
            const xml::Node duration = edits_.child(note_, tag("duration"));
            const auto said = duration == 0 ? std::nullopt : parseInteger(edits_.text(duration));
            if (said != parseInteger(shape_.duration)) say(duration, "duration", shape_.duration);
        }
        const xml::Node rest = edits_.child(note_, tag("rest"));
        const bool saidMeasure = rest != 0 && edits_.attribute(rest, "measure") == "yes";
        if (rest != 0) placeRest(rest, saidMeasure);
        if (!shape_.value && (!shape_.measureRest || saidMeasure)) return;
        const std::string_view type = shape_.measureRest ? "" : typeName(shape_.value->plain);
        const xml::Node said = edits_.child(note_, tag("type"));
        if (!type.empty()) {
            say(said, "type", type);
        } else if (said != 0) {
            edits_.remove(said);
        }
        placeDots(type.empty() ? 0 : shape_.value->dots);
    }

    void placeDots(int wanted) {
        children_.clear();
        for (const xml::Node child : edits_.children(note_)) {
            if (edits_.name(child) == tag("dot")) children_.push_back(child);
        }
        for (auto dots = static_cast<int>(children_.size()); dots > wanted; --dots) {
            edits_.remove(children_[static_cast<std::size_t>(dots - 1)]);
        }
        for (auto dots = static_cast<int>(children_.size()); dots < wanted; ++dots) {
            insertIntoNote(edits_, note_, edits_.make("<dot/>"));
        }
    }

    void placeRest(xml::Node rest, bool says) {
        if (says && !shape_.measureRest) edits_.removeAttribute(rest, "measure");
        if (!says && shape_.measureRest) edits_.setAttribute(rest, "measure", "yes");
    }

    // The second part of a note that was cut has none of its marks; those of a note in reversed order
    // change direction.
    void placeMarks() {
        if (!shape_.continuation && !shape_.reversed) return;
        children_.clear();
        for (const xml::Node child : edits_.children(note_)) {
            if (edits_.name(child) == tag("lyric") || edits_.name(child) == tag("notations"))
                children_.push_back(child);
        }
        for (const xml::Node child : children_) {
            const xml::Name name = edits_.name(child);
            if (name == tag("lyric") && shape_.continuation) {
                edits_.remove(child);
            } else if (name == tag("lyric")) {
                reverseLyric(child);
            } else if (name == tag("notations") && shape_.continuation) {
                stripNotations(child);
            } else if (name == tag("notations")) {
                reverseOrnaments(child);
            }
        }
    }

    void stripNotations(xml::Node notations) {
        edits_.children(notations, inner_);
        for (const xml::Node mark : inner_) {
            const std::string type = edits_.attribute(mark, "type");
            const bool isTie = edits_.name(mark) == tag("tied") && (type == "start" || type == "stop");
            if (!isTie && edits_.name(mark) != tag("tuplet")) removeFromNotations(edits_, notations, mark);
        }
    }

    void reverseOrnaments(xml::Node notations) {
        edits_.children(notations, inner_);
        for (const xml::Node ornaments : inner_) {
            if (edits_.name(ornaments) != tag("ornaments")) continue;
            edits_.children(ornaments, marks_);
            for (const xml::Node mark : marks_) {
                const xml::Name name = edits_.name(mark);
                if (name == tag("wavy-line") || name == tag("tremolo")) reverseType(edits_, mark);
            }
        }
    }

    // A word's first syllable is now read as its last one. Syllables that share the note change places as
    // well.
    void reverseLyric(xml::Node lyric) {
        edits_.children(lyric, inner_);
        std::vector<xml::Node> syllables;
        std::vector<std::string> parts;
        for (const xml::Node child : inner_) {
            if (edits_.name(child) == tag("extend")) reverseType(edits_, child);
            if (edits_.name(child) != tag("syllabic")) continue;
            syllables.push_back(child);
            parts.push_back(edits_.text(child));
        }
        for (std::size_t i = 0; i < syllables.size(); ++i) {
            const std::string_view part = reversedPart(parts[parts.size() - 1 - i]);
            if (!edits_.says(syllables[i], part)) edits_.setText(syllables[i], part);
        }
    }

    xml::Edits& edits_;
    xml::Node note_;
    const NoteShape& shape_;
    std::vector<xml::Node> children_, inner_, marks_;
};

}  // namespace

void placeNote(xml::Edits& edits, NoteScan& scan, xml::Node note, const NoteShape& shape) {
    Placing(edits, note, shape).apply(scan);
}

xml::Node makeRest(xml::Edits& edits, const NoteShape& shape, int staff) {
    std::string text = shape.measureRest ? "<note><rest measure=\"yes\"/>" : "<note><rest/>";
    text += "<duration>" + shape.duration + "</duration>";
    if (!shape.voice.empty()) text += "<voice>" + xml::escaped(shape.voice) + "</voice>";
    if (shape.value && !shape.measureRest) {
        text += "<type>" + std::string(typeName(shape.value->plain)) + "</type>";
        for (int dot = 0; dot < shape.value->dots; ++dot) text += "<dot/>";
    }
    if (staff > 0) text += "<staff>" + std::to_string(staff) + "</staff>";
    return edits.make(text + "</note>");
}

}  // namespace rovescio::musicxml
