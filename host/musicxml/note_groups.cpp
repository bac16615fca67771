// Reading and turning of beams and brackets.
#include "musicxml/note_groups.h"

#include <utility>

#include "musicxml/note_reading.h"
#include "musicxml/tag_names.h"

namespace rovescio::musicxml {

void readGroup(TextWalk& walk, std::string_view text, NoteGroups& groups) {
    switch (walk.tagNumber()) {
        case tag("chord"):
            groups.inChord = true;
            break;
        case tag("voice"):
            groups.voice = walk.value();
            break;
        case tag("beam"): {
            std::string number(walk.attribute("number"));
            groups.beams.push_back({std::move(number), walk.value()});
            break;
        }
        case tag("notations"):
            for (const std::size_t inner = walk.enter(); walk.next(inner);) {
                if (walk.tagNumber() != tag("tuplet") || walk.attribute("id").starts_with(kCutId)) continue;
                const std::string_view number = walk.attribute("number");
                TupletMark mark{
                    number.empty() ? "1" : std::string(number), walk.attribute("type") == "start", {}};
                const Element element = walk.whole();
                mark.text = text.substr(element.begin, element.end - element.begin);
                groups.tuplets.push_back(std::move(mark));
            }
            break;
        default:
            break;
    }
}

std::string turned(std::string_view element) {
    std::string text(element);
    const Attribute type = findAttribute(text, 0, "type");
    if (!type.exists() || (type.value != "start" && type.value != "stop")) return text;
    const std::string_view other = type.value == "start" ? "stop" : "start";
    const std::size_t begin = type.end - 1 - type.value.size();
    return text.replace(begin, type.value.size(), other);
}

std::string_view mirroredPart(std::string_view value) {
    if (value == "begin") return "end";
    if (value == "end") return "begin";
    if (value == "forward hook") return "backward hook";
    return value == "backward hook" ? "forward hook" : value;
}

std::string withId(std::string_view element, std::string_view id) {
    std::string text(element);
    const Attribute old = findAttribute(text, 0, "id");
    if (old.exists()) text.erase(old.begin, old.end - old.begin);
    return text.insert(text.find_first_of(" \t\r\n/>", 1), " id=\"" + std::string(id) + "\"");
}

TupletMark retyped(TupletMark mark, bool start) {
    if (mark.start != start) mark.text = turned(mark.text);
    mark.start = start;
    return mark;
}

}  // namespace rovescio::musicxml
