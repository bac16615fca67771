// Checks beams and brackets as pairs of begin and end.
#include "musicxml/group_mending.h"

#include <algorithm>
#include <string>
#include <utility>

namespace rovescio::musicxml {

namespace {

using Members = std::vector<GroupMember*>;

std::string_view outerBeam(const GroupMember& member) {
    for (const BeamMark& beam : member.groups.beams) {
        if (beam.number.empty() || beam.number == "1") return beam.value;
    }
    return {};
}

// Flags of a value: one for an eighth.
int levelsOf(std::int32_t value) {
    int levels = 0;
    for (std::int32_t longest = 1024; value < longest; longest /= 2) ++levels;
    return levels;
}

class BeamMender {
  public:
    BeamMender(const Members& members, std::int32_t beat)
        : members_(members), beat_(beat), broken_(members.size()) {}

    void mend() {
        for (GroupMember* const member : members_) {
            if (!member->mirrored) continue;
            for (BeamMark& beam : member->groups.beams) beam.value = mirroredBeam(beam.value);
        }
        findBroken(true);
        findBroken(false);
        for (std::size_t begin = 0; begin < members_.size();) {
            std::size_t end = begin + 1;
            if (broken_[begin]) {
                while (end < members_.size() && broken_[end] &&
                       isSameBeat(*members_[end - 1], *members_[end]))
                    ++end;
                make(begin, end);
            }
            begin = end;
        }
    }

  private:
    // Grace notes have beams of their own between the others.
    void findBroken(bool grace) {
        std::vector<std::size_t> open;
        const auto breakOpen = [&] {
            for (const std::size_t index : open) broken_[index] = true;
            open.clear();
        };
        bool cut = false;
        for (std::size_t i = 0; i < members_.size(); ++i) {
            const GroupMember& member = *members_[i];
            if (member.grace != grace) continue;
            const std::string_view beam = outerBeam(member);
            if (beam.empty()) {
                if (!member.rest) breakOpen();
                continue;
            }
            if (beam == "begin") {
                breakOpen();
                cut = false;
            } else if (open.empty()) {
                broken_[i] = true;
                continue;
            }
            open.push_back(i);
            cut = cut || member.cut;
            if (beam != "end") continue;
            if (cut) breakOpen();
            open.clear();
        }
        breakOpen();
    }

    [[nodiscard]] bool isSameBeat(const GroupMember& earlier, const GroupMember& later) const {
        const auto beatOf = [&](const GroupMember& member) {
            return member.start.floor() / std::max(beat_, 1);
        };
        return earlier.grace == later.grace && beatOf(earlier) == beatOf(later) &&
               (earlier.grace || earlier.start + earlier.length == later.start);
    }

    void make(std::size_t begin, std::size_t end) {
        const auto levels = [&](std::size_t index) {
            return members_[index]->rest ? 0 : levelsOf(members_[index]->value);
        };
        for (std::size_t i = begin; i < end; ++i) {
            std::vector<BeamMark>& beams = members_[i]->groups.beams;
            beams.clear();
            const int before = i > begin ? levels(i - 1) : 0;
            const int behind = i + 1 < end ? levels(i + 1) : 0;
            if (before == 0 && behind == 0) continue;
            for (int level = 1; level <= levels(i); ++level) {
                const char* const value = level <= before && level <= behind ? "continue"
                                          : level <= behind                  ? "begin"
                                          : level <= before                  ? "end"
                                          : behind > 0 && before == 0        ? "forward hook"
                                                                             : "backward hook";
                beams.push_back({std::to_string(level), value});
            }
        }
    }

    const Members& members_;
    std::int32_t beat_;
    std::vector<bool> broken_;
};

class BracketMender {
  public:
    explicit BracketMender(const Members& members) : members_(members) {}

    void mend() {
        for (GroupMember* const member : members_) {
            for (TupletMark& mark : member->groups.tuplets) mark.start = mark.start != member->mirrored;
        }
        for (std::size_t i = 0; i < members_.size(); ++i) visit(i);
        while (!open_.empty()) {
            const Place start = open_.back();
            open_.pop_back();
            close(start);
        }
        for (const auto& [member, mark] : added_) members_[member]->groups.tuplets.push_back(mark);
        for (GroupMember* const member : members_) {
            for (TupletMark& mark : member->groups.tuplets) mark = asItSays(std::move(mark));
        }
    }

  private:
    struct Place {
        std::size_t member = 0;
        std::size_t mark = 0;
    };
    TupletMark& at(const Place& place) { return members_[place.member]->groups.tuplets[place.mark]; }

    void visit(std::size_t index) {
        std::vector<TupletMark>& marks = members_[index]->groups.tuplets;
        for (std::size_t i = 0; i < marks.size(); ++i) {
            const Place here{index, i};
            if (marks[i].start) {
                open_.push_back(here);
                continue;
            }
            const auto start = std::find_if(open_.rbegin(), open_.rend(), [&](const Place& place) {
                return at(place).number == marks[i].number;
            });
            if (start == open_.rend()) {
                openFor(here);
                continue;
            }
            // The start of a group that is read backwards has the bracket's look with it, so the two change
            // places.
            if (members_[index]->mirrored && members_[start->member]->mirrored) {
                std::swap(at(*start).text, marks[i].text);
            }
            open_.erase(std::next(start).base());
        }
    }

    // A bracket that begins in another measure is begun again here.
    void openFor(const Place& stop) {
        std::size_t first = stop.member;
        while (first > 0 && members_[first - 1]->tuplet) --first;
        added_.emplace_back(first, TupletMark{at(stop).number, true, at(stop).text});
    }
    void close(const Place& start) {
        std::size_t last = start.member;
        while (last + 1 < members_.size() && members_[last + 1]->tuplet) ++last;
        added_.emplace_back(last, TupletMark{at(start).number, false, at(start).text});
    }

    // The element's own type is the only place that still can tell the other end.
    static TupletMark asItSays(TupletMark mark) {
        const bool start = mark.start;
        mark.start = mark.text.find("\"start\"") != std::string::npos ||
                     mark.text.find("'start'") != std::string::npos;
        return retyped(std::move(mark), start);
    }

    const Members& members_;
    std::vector<Place> open_;
    std::vector<std::pair<std::size_t, TupletMark>> added_;
};

}  // namespace

void mendGroups(std::vector<GroupMember*>& members, const engine::Metre& metre) {
    BeamMender(members, engine::feltBeat(metre)).mend();
    BracketMender(members).mend();
}

}  // namespace rovescio::musicxml
