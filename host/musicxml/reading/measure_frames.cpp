// Maps voices to layers and finishes the entry records.
#include "musicxml/reading/measure_frames.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>
#include <tuple>

#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

// Numbered voices come first, by number; named ones follow by name.
bool labelBefore(std::string_view left, std::string_view right) {
    const std::optional<int> leftNumber = parseInteger(left);
    const std::optional<int> rightNumber = parseInteger(right);
    if (leftNumber && rightNumber && *leftNumber != *rightNumber) return *leftNumber < *rightNumber;
    if (leftNumber.has_value() != rightNumber.has_value()) return leftNumber.has_value();
    return left < right;
}

}  // namespace

void MeasureFrames::clear() {
    entries_.clear();
    for (StaffVoices& voices : voices_) voices.labels.clear();
}

int MeasureFrames::voice(int staff, std::string_view label) {
    const auto index = static_cast<std::size_t>(staff);
    if (index >= voices_.size()) voices_.resize(index + 1);
    std::vector<std::string_view>& labels = voices_[index].labels;
    const auto found = std::find(labels.begin(), labels.end(), label);
    if (found != labels.end()) return static_cast<int>(found - labels.begin());
    if (labels.size() == kMaxVoices) return -1;
    labels.push_back(label);
    return static_cast<int>(labels.size()) - 1;
}

GatheredEntry& MeasureFrames::add() {
    return entries_.emplace_back();
}

void MeasureFrames::rankVoices() {
    for (StaffVoices& voices : voices_) {
        for (std::size_t i = 0; i < voices.labels.size(); ++i) {
            voices.rank[i] = static_cast<int>(
                std::count_if(voices.labels.begin(), voices.labels.end(),
                              [&](std::string_view other) { return labelBefore(other, voices.labels[i]); }));
        }
    }
    for (GatheredEntry& entry : entries_) {
        entry.voice =
            voices_[static_cast<std::size_t>(entry.staff)].rank[static_cast<std::size_t>(entry.voice)];
    }
}

void MeasureFrames::placeVoices(StaffVoices& voices, short measure) {
    std::sort(voices.labels.begin(), voices.labels.end(), labelBefore);
    constexpr std::size_t kNowhere = kMaxVoices;
    for (std::size_t i = 0; i < voices.labels.size(); ++i) {
        const auto holder =
            std::find_if(voices.holders.begin(), voices.holders.end(),
                         [&](const Holder& other) { return other.label == voices.labels[i]; });
        const bool known = holder != voices.holders.end();
        if (known) holder->measure = measure;
        voices.places[i] = known ? static_cast<std::size_t>(holder - voices.holders.begin()) : kNowhere;
    }
    std::size_t secondVoice = engine::kMaxLayers;
    for (std::size_t i = 0; i < voices.labels.size(); ++i) {
        if (voices.places[i] != kNowhere) continue;
        // Layers that no voice has had come first, then the one whose voice has been absent for longest.
        auto* const holder = std::min_element(
            voices.holders.begin(), voices.holders.end(),
            [](const Holder& left, const Holder& right) { return left.measure < right.measure; });
        if (holder->measure == measure) {
            voices.places[i] = secondVoice++;
            continue;
        }
        voices.shared = voices.shared || holder->measure > 0;
        *holder = {voices.labels[i], measure};
        voices.places[i] = static_cast<std::size_t>(holder - voices.holders.begin());
    }
}

void MeasureFrames::orderLayers(std::vector<GatheredFrame>& frames) const {
    std::vector<std::array<short, engine::kMaxLayers>> orders;  // of the staves
    for (const StaffVoices& voices : voices_) {
        std::array<short, engine::kMaxLayers>& order = orders.emplace_back();
        std::iota(order.begin(), order.end(), short{0});
        if (voices.shared) continue;
        std::transform(
            voices.holders.begin(), voices.holders.end(), order.begin(), [&](const Holder& holder) {
                return static_cast<short>(
                    std::count_if(voices.holders.begin(), voices.holders.end(), [&](const Holder& other) {
                        return other.measure > 0 && labelBefore(other.label, holder.label);
                    }));
            });
    }
    for (GatheredFrame& frame : frames) {
        frame.layer = orders[static_cast<std::size_t>(frame.staff)][static_cast<std::size_t>(frame.layer)];
    }
}

EXENTRY MeasureFrames::finish(GatheredEntry& entry, const engine::FrameAddress& address,
                              const engine::KeySignature& key, engine::Document& document,
                              SourceMap& sources) {
    EXENTRY& record = entry.record;
    record.entryNumber = document.nextEntryNumber();
    const auto first = static_cast<std::uint32_t>(sources.notes.size());
    const std::ptrdiff_t elements = std::max<std::ptrdiff_t>(record.noteCount, 1);
    sources.notes.insert(sources.notes.end(), entry.nodes.begin(), entry.nodes.begin() + elements);
    sources.entries.push_back({first, record.duration, record.elapsed, address,
                               static_cast<std::uint8_t>(record.noteCount), false, entry.sharesStem, false,
                               entry.statesLength});

    ENOTE* const end = record.notes + record.noteCount;
    std::sort(record.notes, end, [](const ENOTE& left, const ENOTE& right) {
        return std::tuple(left.displacement, left.alteration) <
               std::tuple(right.displacement, right.alteration);
    });
    for (ENOTE* note = record.notes; note != end; ++note) {
        const engine::SpelledPitch pitch{note->displacement, note->alteration};
        key.store(pitch, *note);
    }
    return record;
}

EXENTRY MeasureFrames::finishGap(const Slot& gap, const engine::FrameAddress& address,
                                 engine::Document& document, SourceMap& sources) {
    EXENTRY record{};
    record.entryNumber = document.nextEntryNumber();
    record.entryFlags = ENTRY_VALID;
    // A gap of parts of a unit is told like an entry of a tuplet.
    record.duration = static_cast<std::int32_t>(gap.length.numerator());
    record.elapsed = gap.start.floor();
    engine::setEntryState(record, {.actual = static_cast<std::uint16_t>(gap.length.denominator()),
                                   .silence = engine::Silence::gap});
    sources.entries.push_back({static_cast<std::uint32_t>(sources.notes.size()), record.duration,
                               record.elapsed, address, 0, true, false, false, true});
    return record;
}

// The entries of a voice with the gaps between them. A gap that cannot be counted is left out, so that the
// measure is known to be short.
void MeasureFrames::listVoice(std::span<const std::uint32_t> voice, std::vector<Slot>& slots) {
    constexpr std::int64_t kMaxLength = 1 << 30;
    slots.clear();
    engine::Fraction reached;
    const auto fill = [&](const engine::Fraction& until) {
        if (!(reached < until)) return;
        const engine::Fraction length = until - reached;
        // Less than a unit is the rounding of durations that are no exact fraction.
        const bool countable = length >= engine::Fraction(1) && length.isSound() &&
                               length.denominator() <= std::numeric_limits<std::uint16_t>::max() &&
                               length.numerator() <= kMaxLength;
        if (countable) slots.push_back({nullptr, reached, length});
        reached = until;
    };
    for (const std::uint32_t index : voice) {
        GatheredEntry& entry = entries_[index];
        fill(entry.start);
        slots.push_back({&entry, entry.start, {}});
        const engine::EntryState state = engine::entryState(entry.record);
        if (state.grace == engine::Grace::none) {
            reached += engine::Fraction(entry.record.duration).times(state.normal, state.actual);
        }
    }
    fill(end_);
}

// The second voice of a layer stands directly after the first entry of the
// first voice.
GatheredFrame MeasureFrames::makeFrame(short measure, short layer, std::span<const std::uint32_t> first,
                                       std::span<const std::uint32_t> second, const engine::KeySignature& key,
                                       engine::Document& document, SourceMap& sources) {
    GatheredFrame frame;
    frame.staff = entries_[first.front()].staff;
    frame.measure = measure;
    frame.layer = layer;
    finished_.clear();
    const engine::FrameAddress address{static_cast<short>(frame.staff + 1), measure, layer};
    const auto append = [&](const Slot& slot, std::uint32_t flag) {
        finished_.push_back(slot.entry ? finish(*slot.entry, address, key, document, sources)
                                       : finishGap(slot, address, document, sources));
        finished_.back().entryFlags |= flag;
    };
    listVoice(first, firstVoice_);
    append(firstVoice_.front(), second.empty() ? 0 : ENTRY_STARTS_VOICE2);
    if (!second.empty()) {
        listVoice(second, secondVoice_);
        for (const Slot& slot : secondVoice_) append(slot, ENTRY_VOICE2);
    }
    for (std::size_t i = 1; i < firstVoice_.size(); ++i) append(firstVoice_[i], 0);
    sources.entries.back().endsFrame = true;
    frame.entries = engine::PackedEntries(finished_);
    return frame;
}

void MeasureFrames::layOut(short measure, const engine::Fraction& end,
                           const std::vector<engine::KeySignature>& keys, engine::Document& document,
                           SourceMap& sources, std::vector<GatheredFrame>& frames) {
    end_ = end;
    rankVoices();
    for (StaffVoices& voices : voices_) placeVoices(voices, measure);
    order_.resize(entries_.size());
    std::iota(order_.begin(), order_.end(), 0U);
    const auto place = [&](std::uint32_t index) {
        const GatheredEntry& entry = entries_[index];
        return std::tuple(entry.staff, entry.voice, entry.record.elapsed, index);
    };
    std::sort(order_.begin(), order_.end(),
              [&](std::uint32_t left, std::uint32_t right) { return place(left) < place(right); });

    std::size_t next = 0;
    while (next < order_.size()) {
        const int staff = entries_[order_[next]].staff;
        const StaffVoices& known = voices_[static_cast<std::size_t>(staff)];
        std::array<std::span<const std::uint32_t>, kMaxVoices> voices{};  // by place
        while (next < order_.size() && entries_[order_[next]].staff == staff) {
            const std::size_t begin = next;
            const int voice = entries_[order_[begin]].voice;
            while (next < order_.size() && entries_[order_[next]].staff == staff &&
                   entries_[order_[next]].voice == voice) {
                ++next;
            }
            voices[known.places[static_cast<std::size_t>(voice)]] =
                std::span(order_).subspan(begin, next - begin);
        }
        for (std::size_t rank = 0; rank < known.labels.size(); ++rank) {
            const std::size_t layer = known.places[rank];
            if (layer >= engine::kMaxLayers) continue;
            frames.push_back(makeFrame(measure, static_cast<short>(layer), voices[layer],
                                       voices[layer + engine::kMaxLayers],
                                       keys[static_cast<std::size_t>(staff)], document, sources));
        }
    }
}

}  // namespace rovescio::musicxml
