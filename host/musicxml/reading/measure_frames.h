// The entries of the measures of one part, one measure after the other, gathered in
// the order of the text and then laid into layers.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "engine/model/document.h"
#include "engine/model/fraction.h"
#include "engine/model/packed_entries.h"
#include "musicxml/reading/source_map.h"

namespace rovescio::musicxml {

// An entry with its source; note pitches are stored relative to C until the
// measure's key is known.
struct GatheredEntry {
    EXENTRY record{};
    engine::Fraction start;                    // exact
    std::array<xml::Node, kMaxNotes> nodes{};  // of the notes, by id; the first one for a rest
    int staff = 0;                             // within the part, from 0
    int voice = 0;                             // of its staff; a number given by MeasureFrames
    bool sharesStem = false;
    bool statesLength = true;  // each of its notes has the duration of the entry, exactly
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

    // Begins a measure. The layers of the voices stay theirs.
    void clear();
    // The number of a voice on a staff in this measure; -1 when the staff has too many. The label
    // must last as long as the part is read.
    int voice(int staff, std::string_view label);
    GatheredEntry& add();
    [[nodiscard]] std::vector<GatheredEntry>& entries() { return entries_; }

    // A voice keeps its layer from measure to measure, so that what goes over a barline goes on in it.
    // New voices get the lowest layers left, in the order of their labels; where none is left, those
    // of voices that the measure does not have, or else a place as second voice. Where a voice is
    // absent between the measure's start and its end, a gap keeps its time. Numbers the entries,
    // fills their sources (staves still within the part), stores pitches relative to the keys of the
    // staves and appends the frames, in the order of their voices. Measures count upwards from 1.
    void layOut(short measure, const engine::Fraction& end, const std::vector<engine::KeySignature>& keys,
                engine::Document& document, SourceMap& sources, std::vector<GatheredFrame>& frames);
    // After the last measure, puts the layers of each staff into the order of their voices' labels
    // where no layer had more than one voice.
    void orderLayers(std::vector<GatheredFrame>& frames) const;

  private:
    // The voice that has a layer.
    struct Holder {
        std::string_view label;
        short measure = 0;  // the last one with the voice; 0 for a layer that no voice has had
    };
    struct StaffVoices {
        std::vector<std::string_view> labels;              // of the measure, in order of appearance
        std::array<int, kMaxVoices> rank{};                // where they stand in order of label
        std::array<std::size_t, kMaxVoices> places{};      // by rank: layers, then those of second voices
        std::array<Holder, engine::kMaxLayers> holders{};  // by layer
        bool shared = false;                               // a layer went from one voice to another
    };
    void rankVoices();
    static void placeVoices(StaffVoices& voices, short measure);
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
