// Beams and brackets out of a note and into it.
#include "musicxml/writing/note_groups.h"

#include <algorithm>
#include <utility>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/note_reading.h"
#include "musicxml/writing/note_parts.h"

namespace rovescio::musicxml {

namespace {

void writeBeams(xml::Edits& edits, xml::Node note, const std::vector<BeamMark>& wanted) {
    std::vector<xml::Node> there;
    for (const xml::Node child : edits.children(note)) {
        if (edits.name(child) == tag("beam")) there.push_back(child);
    }
    if (there.empty() && wanted.empty()) return;
    std::vector<BeamMark> missing = wanted;
    for (const xml::Node beam : there) {
        const std::string number = edits.attribute(beam, "number");
        const auto same = std::ranges::find(missing, number, &BeamMark::number);
        if (same == missing.end()) {
            edits.remove(beam);
            continue;
        }
        if (!edits.says(beam, same->value)) edits.setText(beam, same->value);
        missing.erase(same);
    }
    for (const BeamMark& beam : missing) {
        const std::string number = beam.number.empty() ? "" : " number=\"" + xml::escaped(beam.number) + "\"";
        insertIntoNote(edits, note, edits.make("<beam" + number + ">" + beam.value + "</beam>"));
    }
}

// The element that a mark stands for.
xml::Node makeTuplet(xml::Edits& edits, const TupletMark& mark) {
    const xml::Node made = edits.make(mark.text);
    const char* const type = mark.start ? "start" : "stop";
    if (edits.attribute(made, "type") != type) edits.setAttribute(made, "type", type);
    if (!mark.newId.empty()) edits.setAttribute(made, "id", mark.newId);
    return made;
}

void writeTuplets(xml::Edits& edits, xml::Node note, const std::vector<TupletMark>& wanted) {
    const std::vector<xml::Node> there = inNotations(edits, note, tag("tuplet"));
    for (std::size_t i = 0; i < std::max(there.size(), wanted.size()); ++i) {
        if (i >= wanted.size()) {
            removeFromNotations(edits, edits.parent(there[i]), there[i]);
            continue;
        }
        const xml::Node made = makeTuplet(edits, wanted[i]);
        if (i >= there.size()) {
            insertIntoNotations(edits, note, made);
        } else if (edits.print(made) != edits.print(there[i])) {
            edits.insertAfter(there[i], made);
            edits.remove(there[i]);
        }
    }
}

}  // namespace

NoteGroups readGroups(const xml::Edits& edits, xml::Node note) {
    NoteGroups groups;
    bool notations = false;
    for (const xml::Node child : edits.children(note)) {
        switch (edits.name(child)) {
            case tag("chord"):
                groups.inChord = true;
                break;
            case tag("voice"):
                groups.voice = edits.text(child);
                break;
            case tag("beam"):
                groups.beams.push_back({edits.attribute(child, "number"), edits.text(child)});
                break;
            case tag("notations"):
                notations = true;
                break;
            default:
                break;
        }
    }
    if (!notations) return groups;
    for (const xml::Node tuplet : inNotations(edits, note, tag("tuplet"))) {
        if (edits.attribute(tuplet, "id").starts_with(kCutId)) continue;
        const std::string number = edits.attribute(tuplet, "number");
        groups.tuplets.push_back({.number = number.empty() ? "1" : number,
                                  .start = edits.attribute(tuplet, "type") == "start",
                                  .text = edits.print(tuplet)});
    }
    return groups;
}

void writeGroups(xml::Edits& edits, xml::Node note, const NoteGroups& groups) {
    writeBeams(edits, note, groups.beams);
    writeTuplets(edits, note, groups.tuplets);
}

std::string_view reversedPart(std::string_view value) {
    if (value == "begin") return "end";
    if (value == "end") return "begin";
    if (value == "forward hook") return "backward hook";
    return value == "backward hook" ? "forward hook" : value;
}

void reverseType(xml::Edits& edits, xml::Node element) {
    const std::string type = edits.attribute(element, "type");
    if (type == "start" || type == "stop") {
        edits.setAttribute(element, "type", type == "start" ? "stop" : "start");
    }
}

}  // namespace rovescio::musicxml
