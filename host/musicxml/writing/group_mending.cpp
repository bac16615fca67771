// Checks beams and brackets as pairs of begin and end.
#include "musicxml/writing/group_mending.h"

#include <algorithm>
#include <string>
#include <utility>

namespace rovescio::musicxml {

namespace {

using Members = std::vector<GroupMember*>;

// What a member's text says about its beam of a level, from 1 outside; empty when it has none.
std::string_view beamOf(const GroupMember& member, std::size_t level) {
    for (const BeamMark& beam : member.groups.beams) {
        if (beam.number.empty() ? level == 1 : beam.number == std::to_string(level)) return beam.value;
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
            if (!member->reversed) continue;
            for (BeamMark& beam : member->groups.beams) beam.value = reversedPart(beam.value);
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
            const std::string_view beam = beamOf(member, 1);
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
            if (cut || !innerBeamsFit(open)) breakOpen();
            open.clear();
        }
        breakOpen();
    }

    // Whether each beam inside a group that begins there also ends there. A group that is reversed
    // in part is looked at; any other is as it was.
    [[nodiscard]] bool innerBeamsFit(const std::vector<std::size_t>& group) const {
        const auto isReversed = [&](std::size_t index) { return members_[index]->reversed; };
        if (std::ranges::all_of(group, isReversed) || std::ranges::none_of(group, isReversed)) return true;
        std::size_t levels = 0;
        for (const std::size_t index : group) levels = std::max(levels, members_[index]->groups.beams.size());
        for (std::size_t level = 2; level <= levels; ++level) {
            bool running = false;
            for (const std::size_t index : group) {
                const std::string_view beam = beamOf(*members_[index], level);
                const bool arrives = beam == "continue" || beam == "end";
                if (arrives != running) return false;
                running = beam == "continue" || beam == "begin";
            }
            if (running) return false;
        }
        return true;
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
    BracketMender(const Members& members, const IdSource& nextId) : members_(members), nextId_(nextId) {}

    void mend() {
        for (GroupMember* const member : members_) {
            if (!member->reversed) continue;
            std::vector<TupletMark>& marks = member->groups.tuplets;
            for (TupletMark& mark : marks) mark.start = !mark.start;
            std::reverse(marks.begin(), marks.end());
        }
        pair();
        if (!loose_.empty()) replaceLoose();
    }

  private:
    struct Place {
        std::size_t member = 0;
        std::size_t mark = 0;
    };
    struct Bracket {
        std::size_t first = 0;
        std::size_t last = 0;
        std::string number;
    };
    TupletMark& at(const Place& place) { return members_[place.member]->groups.tuplets[place.mark]; }

    // Finds the brackets that are whole, and the ends that have lost the other one.
    void pair() {
        std::vector<Place> open;
        for (std::size_t index = 0; index < members_.size(); ++index) {
            std::vector<TupletMark>& marks = members_[index]->groups.tuplets;
            for (std::size_t i = 0; i < marks.size(); ++i) {
                const Place here{index, i};
                if (marks[i].start) {
                    open.push_back(here);
                    continue;
                }
                const auto start = std::find_if(open.rbegin(), open.rend(), [&](const Place& place) {
                    return at(place).number == marks[i].number;
                });
                if (start == open.rend()) {
                    loose_.push_back(here);
                    continue;
                }
                // The start of a group that is read backwards has the bracket's look with it, so the two
                // change places.
                if (members_[index]->reversed && members_[start->member]->reversed) {
                    std::swap(at(*start).text, marks[i].text);
                }
                whole_.push_back({start->member, index, marks[i].number});
                open.erase(std::next(start).base());
            }
        }
        loose_.insert(loose_.end(), open.begin(), open.end());
    }

    // Puts a bracket over the notes of a tuplet around each loose end. The end stays if it is where the
    // bracket ends.
    void replaceLoose() {
        std::vector<std::pair<Bracket, TupletMark>> made;  // with a loose end
        std::vector<std::vector<bool>> gone(members_.size());
        for (const Place& place : loose_) {
            gone[place.member].resize(members_[place.member]->groups.tuplets.size());
            gone[place.member][place.mark] = true;
            if (!members_[place.member]->tuplet) continue;
            Bracket bracket = around(place);
            const bool known = std::ranges::any_of(made, [&](const auto& other) {
                return other.first.first == bracket.first && other.first.number == bracket.number;
            });
            if (!known) made.emplace_back(std::move(bracket), at(place));
        }
        std::vector<std::vector<TupletMark>> kept(members_.size());
        for (std::size_t index = 0; index < members_.size(); ++index) {
            std::vector<TupletMark>& marks = members_[index]->groups.tuplets;
            for (std::size_t i = gone[index].size(); i-- > 0;) {
                if (!gone[index][i]) continue;
                kept[index].push_back(std::move(marks[i]));
                marks.erase(marks.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        for (const auto& [bracket, look] : made) {
            std::vector<TupletMark>& first = members_[bracket.first]->groups.tuplets;
            first.insert(first.begin(), endOf(bracket, look, true, kept[bracket.first]));
            members_[bracket.last]->groups.tuplets.push_back(endOf(bracket, look, false, kept[bracket.last]));
        }
    }

    TupletMark endOf(const Bracket& bracket, const TupletMark& look, bool start,
                     const std::vector<TupletMark>& kept) const {
        const auto own = std::ranges::find_if(kept, [&](const TupletMark& mark) {
            return mark.start == start && mark.number == bracket.number;
        });
        return own != kept.end() ? *own : TupletMark{bracket.number, start, look.text, nextId_()};
    }

    // The notes of a tuplet around a place that follow each other and have no whole bracket of that number.
    [[nodiscard]] Bracket around(const Place& place) {
        Bracket bracket{place.member, place.member, at(place).number};
        const auto belongs = [&](std::size_t index) {
            return members_[index]->tuplet && std::ranges::none_of(whole_, [&](const Bracket& other) {
                       return other.number == bracket.number && other.first <= index && index <= other.last;
                   });
        };
        for (std::size_t i = place.member; i-- > 0 && follows(i);) {
            if (members_[i]->grace) continue;
            if (!belongs(i)) break;
            bracket.first = i;
        }
        for (std::size_t i = place.member + 1; i < members_.size() && follows(i - 1); ++i) {
            if (members_[i]->grace) continue;
            if (!belongs(i)) break;
            bracket.last = i;
        }
        return bracket;
    }

    // Whether the next member begins where this one ends, or with it.
    [[nodiscard]] bool follows(std::size_t index) const {
        const GroupMember& earlier = *members_[index];
        const GroupMember& later = *members_[index + 1];
        return earlier.start == later.start || earlier.start + earlier.length == later.start;
    }

    const Members& members_;
    const IdSource& nextId_;
    std::vector<Bracket> whole_;
    std::vector<Place> loose_;
};

}  // namespace

void mendGroups(std::vector<GroupMember*>& members, const engine::Metre& metre, const IdSource& nextId) {
    BeamMender(members, engine::feltBeat(metre)).mend();
    BracketMender(members, nextId).mend();
}

}  // namespace rovescio::musicxml
