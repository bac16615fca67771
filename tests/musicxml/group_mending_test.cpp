// Beams and tuplet brackets of notes that have got new neighbours.
#include "musicxml/writing/group_mending.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace rovescio::musicxml {
namespace {

// A note to each word: "t" for one of a tuplet, "r" for one in reversed order, "<" and ">" for the ends
// of its brackets, then after "/" its beams, outermost first: begin, continue, end, forward or backward hook.
constexpr std::string_view kBeams[] = {"begin", "continue", "end", "forward hook", "backward hook"};

std::string beamNamed(char letter) {
    const bool hook = letter == 'f' || letter == 'k';
    for (const std::string_view name : kBeams) {
        if (hook ? name == (letter == 'f' ? "forward hook" : "backward hook") : name[0] == letter)
            return std::string(name);
    }
    return {};
}

// The notes with their brackets and beams mended; "*" is an end that was made. Notes of the tuplet last a
// third of a quarter, others a quarter, and with beams what one or two levels say.
std::string mended(const std::string& notes) {
    std::vector<GroupMember> members;
    std::istringstream words(notes);
    engine::Fraction reached;
    for (std::string word; words >> word;) {
        GroupMember& member = members.emplace_back();
        const std::string head = word.substr(0, word.find('/'));
        const std::string beams = word.substr(std::min(word.size(), head.size() + 1));
        for (const char c : head) {
            member.tuplet |= c == 't';
            member.reversed |= c == 'r';
            if (c != '<' && c != '>') continue;
            const std::string type = c == '<' ? "start" : "stop";
            member.groups.tuplets.push_back({"1", c == '<', "<tuplet type=\"" + type + "\"/>"});
        }
        for (const char c : beams) {
            const std::string level = std::to_string(member.groups.beams.size() + 1);
            member.groups.beams.push_back({level, beamNamed(c)});
        }
        member.value = beams.size() > 1 ? 256 : 512;
        member.start = reached;
        member.length = member.tuplet ? engine::Fraction(1024, 3) : engine::Fraction(member.value);
        reached += member.length;
    }
    std::vector<GroupMember*> pointers;
    pointers.reserve(members.size());
    for (GroupMember& member : members) pointers.push_back(&member);
    int made = 0;
    mendGroups(pointers, {4096, 1024}, [&] { return "made-" + std::to_string(++made); });
    std::string text;
    for (const GroupMember& member : members) {
        text += text.empty() ? "" : " ";
        for (const TupletMark& mark : member.groups.tuplets) {
            text += mark.start ? "<" : ">";
            if (mark.newId.starts_with("made-")) text += "*";
        }
        text += member.groups.beams.empty() ? "." : "/";
        for (const BeamMark& beam : member.groups.beams) {
            text += beam.value == "backward hook" ? 'k' : beam.value[0];
        }
    }
    return text;
}

TEST(GroupMending, KeepsWhatIsWholeAndClosesWhatIsCut) {
    const std::pair<const char*, const char*> cases[] = {
        {"t< t t>", "<. . >."},
        {"tr> tr tr<", "<. . >."},
        {"tr<> tr<>", "<>. <>."},
        {"tr> tr< tr> tr<", "<. >. <. >."},
        // A part of the tuplet is reversed: one bracket, and what fits of the old ends.
        {"tr tr< t>", "<*. . >."},
        {"t< tr> tr", "<. . >*."},
        // The rest of it is in another measure.
        {". tr> tr", ". <. >*."},
        {"tr< . .", "<*>. . ."},
        {"t< t t> tr>", "<. . >. <>*."},
        // No tuplet, no bracket.
        {"> .", ". ."},
        {"r/e r/c r/b", "/b /c /e"},
        {"/b /c .", "/b /e ."},
        // Half of a beamed group is reversed, and the second beam with it.
        {"/bb r/c r/ce /e", "/bf /c /ek ."},
        // Faults that were in the text stay there.
        {"r/e r/cb r/b", "/b /ce /e"},
    };
    for (const auto& [before, after] : cases) EXPECT_EQ(mended(before), after) << before;
}

}  // namespace
}  // namespace rovescio::musicxml
