// The entries of one measure of one part, gathered in the order of the text and
// then laid into layers.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "engine/document.h"
#include "engine/fraction.h"
#include "engine/packed_entries.h"
#include "musicxml/source_map.h"

namespace rovescio::musicxml {

// An entry with its source; note pitches are stored relative to C until the
// measure's key is known.
struct GatheredEntry {
    EXENTRY record{};
    engine::Fraction start;                          // exact
    std::array<std::uint32_t, kMaxNotes> offsets{};  // of the notes, by id; the first one for a rest
    int staff = 0;                                   // within the part, from 0
    int voice = 0;                                   // number of the voice on its staff
    bool sharesStem = false;
};

// One frame ready for the document; its entries are numbered.
struct GatheredFrame {
    int staff = 0;  // within the part, from 0
    short measure = 0;
    short layer = 0;
    engine::PackedEntries entries;
};

class MeasureFrames {
  public:
    // Most voices that the layers of one staff hold: two in each.
    static constexpr std::size_t kMaxVoices = std::size_t{2} * engine::kMaxLayers;

    void clear();
    // The number of a voice on a staff; -1 when the staff has too many.
    int voice(int staff, std::string_view label);
    GatheredEntry& add();
    [[nodiscard]] std::vector<GatheredEntry>& entries() { return entries_; }

    // Voices become layers in the order of their labels; where a voice is absent
    // between the measure's start and its end, a gap keeps its time. Numbers the entries,
    // fills their sources (staves still within the part), stores pitches relative
    // to the keys of the staves and appends the frames.
    void layOut(short measure, const engine::Fraction& end, const std::vector<engine::KeySignature>& keys,
                engine::Document& document, SourceMap& sources, std::vector<GatheredFrame>& frames);

  private:
    // The voices of one staff; labels in order of appearance, and where each
    // stands in order of label.
    struct StaffVoices {
        std::vector<std::string_view> labels;
        std::array<int, kMaxVoices> rank{};
    };
    void rankVoices();
    GatheredFrame makeFrame(short measure, short layer, std::span<const std::uint32_t> first,
                            std::span<const std::uint32_t> second, const engine::KeySignature& key,
                            engine::Document& document, SourceMap& sources);
    // An entry of a voice, or a gap before the next one.
    struct Slot {
        GatheredEntry* entry = nullptr;  // null for a gap
        engine::Fraction start;
        engine::Fraction length;  // of a gap
    };
    void listVoice(std::span<const std::uint32_t> voice, std::vector<Slot>& slots);
    EXENTRY finishGap(const Slot& gap, const engine::FrameAddress& address, engine::Document& document,
                      SourceMap& sources);
    EXENTRY finish(GatheredEntry& entry, const engine::FrameAddress& address, const engine::KeySignature& key,
                   engine::Document& document, SourceMap& sources);

    std::vector<GatheredEntry> entries_;
    std::vector<StaffVoices> voices_;   // by staff
    std::vector<std::uint32_t> order_;  // entries by staff, voice and time
    std::vector<EXENTRY> finished_;     // of the frame being made
    std::vector<Slot> firstVoice_;
    std::vector<Slot> secondVoice_;
    engine::Fraction end_;  // of the measure
};

}  // namespace rovescio::musicxml
