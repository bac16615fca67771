// Places entries one after the other.
#include "engine/edit/pour.h"

#include <algorithm>
#include <limits>
#include <span>

namespace rovescio::engine {

namespace {

constexpr int kMaxDots = 2;      // of a rest that stays as it is
constexpr int kDotsOfPiece = 1;  // of a part of a note

EntryState stateOf(const PourItem& item) {
    return entryState(*item.entry);
}

Fraction scaled(std::int32_t duration, const EntryState& state) {
    return Fraction(duration).times(state.normal, state.actual);
}

class Pour {
  public:
    Pour(const std::vector<PourItem>& items, const std::vector<Metre>& measures)
        : items_(items), measures_(measures) {}

    PourResult run() {
        result_.pieces.reserve(items_.size());
        for (std::uint32_t index = 0; index < items_.size() && result_.fault.empty(); ++index) place(index);
        placeWaiting();
        const bool full = measure_ + 1 == measures_.size() && position_ == length();
        if (result_.fault.empty() && !full) fail("the notes do not fill the measure");
        return std::move(result_);
    }

  private:
    [[nodiscard]] Fraction length() const { return measures_[measure_].length; }

    void fail(std::string fault) {
        result_.fault = std::move(fault);
        result_.measure = measure_;
    }

    void add(std::uint32_t item, std::int32_t duration, Fraction start) {
        if (++inMeasure_ > std::numeric_limits<std::int16_t>::max()) fail("too many notes in one measure");
        result_.pieces.push_back({.item = item,
                                  .firstItem = item,
                                  .lastItem = item,
                                  .measure = static_cast<std::uint32_t>(measure_),
                                  .start = start,
                                  .duration = duration,
                                  .silence = stateOf(items_[item]).silence});
    }

    void place(std::uint32_t index) {
        const PourItem& item = items_[index];
        if (item.aside) {
            add(index, item.entry->duration, Fraction(item.entry->elapsed));
        } else if (stateOf(item).grace != Grace::none) {
            if (item.graceOfBefore) {
                add(index, item.entry->duration, position_);
            } else {
                waiting_.push_back(index);
            }
        } else {
            placeTimed(index);
        }
    }

    // Grace entries stand in the measure of the note that they belong to.
    void placeWaiting() {
        for (const std::uint32_t index : waiting_) add(index, items_[index].entry->duration, position_);
        waiting_.clear();
    }

    void placeTimed(std::uint32_t index) {
        const EntryState state = stateOf(items_[index]);
        Fraction remaining = scaled(items_[index].entry->duration, state);
        bool continues = false;
        do {
            if (position_ == length() && remaining > Fraction(0)) {
                if (measure_ + 1 == measures_.size())
                    return fail("there are more notes than the measure holds");
                ++measure_;
                position_ = 0;
                inMeasure_ = 0;
            }
            if (!continues) placeWaiting();
            const Fraction room = length() - position_;
            if (!room.isSound()) return fail("the ratios of its tuplets are too complex");
            const bool cut = room < remaining;
            const Fraction taken = cut ? room : remaining;
            if (!cut && !continues) {
                add(index, items_[index].entry->duration, position_);
                result_.pieces.back().loose = isLoose(items_[index]);
                position_ += taken;
                return;
            }
            if (!placePieces(index, taken, state, continues, cut)) return;
            continues = true;
            remaining -= taken;
        } while (remaining > Fraction(0));
    }

    // A rest without a value of its own says only how long it is silent.
    [[nodiscard]] bool isLoose(const PourItem& item) const {
        const bool wholeMeasure = position_ == Fraction(0) && Fraction(item.entry->duration) == length();
        return item.isRest() && !wholeMeasure && !isWritable(item.entry->duration, kMaxDots);
    }

    bool placePieces(std::uint32_t index, const Fraction& taken, const EntryState& state, bool continues,
                     bool cut) {
        const Fraction nominal = taken.times(state.actual, state.normal);
        if (!nominal.isSound() || !nominal.isWhole()) {
            fail("the barline would split a tuplet where no note value can express it");
            return false;
        }
        std::vector<std::int32_t> values = {nominal.floor()};
        // Plain rests are grouped later.
        const bool grouped = items_[index].isRest() && state.actual == state.normal;
        if (!grouped && !isWritable(values.front(), kDotsOfPiece)) {
            const bool plain = state.actual == state.normal && position_.isWhole();
            values = plain ? splitByMetre(position_.floor(), values.front(), measures_[measure_])
                           : splitPlainly(values.front());
        }
        for (std::size_t i = 0; i < values.size(); ++i) {
            add(index, values[i], position_);
            PourPiece& piece = result_.pieces.back();
            piece.continues = piece.renumbered = continues || i > 0;
            piece.continued = cut || i + 1 < values.size();
            piece.loose = items_[index].isRest();
            position_ += scaled(values[i], state);
        }
        return true;
    }

    const std::vector<PourItem>& items_;
    const std::vector<Metre>& measures_;
    std::size_t measure_ = 0;
    int inMeasure_ = 0;  // entries so far; a frame counts them with 16 bits
    Fraction position_;
    std::vector<std::uint32_t> waiting_;  // grace entries before their note
    PourResult result_;
};

}  // namespace

Fraction lengthOf(const StoredEntry& entry) {
    const EntryState state = entryState(entry);
    return state.grace != Grace::none ? Fraction(0) : scaled(entry.duration, state);
}

PourResult pour(const std::vector<PourItem>& items, const std::vector<Metre>& measures) {
    return Pour(items, measures).run();
}

namespace {

using Run = std::span<const PourPiece>;

// A run of rests in the values that its metre asks for. A rest with marks of its own, such as a fermata,
// stays the one that they stand at; empty when two of these would have to share a value.
std::vector<PourPiece> regrouped(Run run, const std::vector<std::int32_t>& values,
                                 const std::vector<PourItem>& items) {
    std::vector<PourPiece> grouped;
    Fraction position = run.front().start;
    bool firstIsUsed = false;
    for (const std::int32_t value : values) {
        const Fraction end = position + Fraction(value);
        const PourPiece* marked = nullptr;
        for (const PourPiece& piece : run) {
            const bool isHere = piece.start >= position && piece.start < end;
            if (!isHere || piece.renumbered || !stateOf(items[piece.item]).marked) continue;
            if (marked != nullptr) return {};
            marked = &piece;
        }
        PourPiece rest = marked != nullptr ? *marked : run.front();
        if (marked == nullptr || marked == &run.front()) {
            rest.renumbered = rest.renumbered || firstIsUsed;
            firstIsUsed = true;
        }
        rest.start = position;
        rest.duration = value;
        grouped.push_back(rest);
        position = end;
    }
    return grouped;
}

}  // namespace

void groupRests(std::vector<PourPiece>& pieces, const std::vector<PourItem>& items, const Metre& metre) {
    const auto isPlainRest = [&](const PourPiece& piece) {
        const PourItem& item = items[piece.item];
        const EntryState state = stateOf(item);
        return item.isRest() && !item.aside && state.actual == state.normal && state.grace == Grace::none &&
               piece.silence != Silence::gap && piece.start.isWhole();
    };
    std::vector<PourPiece> grouped;
    for (auto run = pieces.begin(); run != pieces.end();) {
        const auto end = std::find_if_not(run, pieces.end(), isPlainRest);
        if (std::none_of(run, end, [](const PourPiece& piece) { return piece.loose; })) {
            const auto next = end == run ? run + 1 : end;
            grouped.insert(grouped.end(), run, next);
            run = next;
            continue;
        }
        std::int32_t length = 0;
        for (auto piece = run; piece != end; ++piece) length += piece->duration;
        const std::int32_t position = run->start.floor();
        const bool wholeMeasure = position == 0 && length == metre.length;
        const std::vector<PourPiece> rests = regrouped(
            {run, end}, wholeMeasure ? std::vector{length} : splitByMetre(position, length, metre), items);
        if (rests.empty()) {
            grouped.insert(grouped.end(), run, end);
        } else {
            grouped.insert(grouped.end(), rests.begin(), rests.end());
        }
        run = end;
    }
    pieces = std::move(grouped);
}

}  // namespace rovescio::engine
