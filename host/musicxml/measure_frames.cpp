// Maps voices to layers and finishes the entry records.
#include "musicxml/measure_frames.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <tuple>

#include "musicxml/numbers.h"

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

EXENTRY MeasureFrames::finish(GatheredEntry& entry, const engine::FrameAddress& address,
                              const engine::KeySignature& key, engine::Document& document,
                              SourceMap& sources) {
    EXENTRY& record = entry.record;
    record.entryNumber = document.nextEntryNumber();
    const auto first = static_cast<std::uint32_t>(sources.notes.size());
    const std::ptrdiff_t elements = std::max<std::ptrdiff_t>(record.noteCount, 1);
    sources.notes.insert(sources.notes.end(), entry.offsets.begin(), entry.offsets.begin() + elements);
    sources.entries.push_back({first, record.duration, record.elapsed, address,
                               static_cast<std::uint8_t>(record.noteCount), entry.sharesStem, false});

    ENOTE* const end = record.notes + record.noteCount;
    std::sort(record.notes, end, [](const ENOTE& left, const ENOTE& right) {
        return std::tuple(left.displacement, left.alteration) <
               std::tuple(right.displacement, right.alteration);
    });
    for (ENOTE* note = record.notes; note != end; ++note) {
        key.store({note->displacement, note->alteration}, *note);
    }
    return record;
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
    const auto append = [&](std::uint32_t index, std::uint32_t flag) {
        entries_[index].record.entryFlags |= flag;
        finished_.push_back(finish(entries_[index], address, key, document, sources));
    };
    append(first.front(), second.empty() ? 0 : ENTRY_STARTS_VOICE2);
    for (const std::uint32_t index : second) append(index, ENTRY_VOICE2);
    for (const std::uint32_t index : first.subspan(1)) append(index, 0);
    sources.entries.back().endsFrame = true;
    frame.entries = engine::PackedEntries(finished_);
    return frame;
}

void MeasureFrames::layOut(short measure, const std::vector<engine::KeySignature>& keys,
                           engine::Document& document, SourceMap& sources,
                           std::vector<GatheredFrame>& frames) {
    rankVoices();
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
        std::array<std::span<const std::uint32_t>, kMaxVoices> voices{};
        while (next < order_.size() && entries_[order_[next]].staff == staff) {
            const std::size_t begin = next;
            const int voice = entries_[order_[begin]].voice;
            while (next < order_.size() && entries_[order_[next]].staff == staff &&
                   entries_[order_[next]].voice == voice) {
                ++next;
            }
            voices[static_cast<std::size_t>(voice)] = std::span(order_).subspan(begin, next - begin);
        }
        for (std::size_t layer = 0; layer < engine::kMaxLayers && !voices[layer].empty(); ++layer) {
            frames.push_back(makeFrame(measure, static_cast<short>(layer), voices[layer],
                                       voices[layer + engine::kMaxLayers],
                                       keys[static_cast<std::size_t>(staff)], document, sources));
        }
    }
}

}  // namespace rovescio::musicxml
