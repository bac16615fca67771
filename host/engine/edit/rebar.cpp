// The work of a rebar, staff by staff.
#include "engine/edit/rebar.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/edit/accidentals.h"
#include "engine/edit/consequences.h"
#include "engine/edit/pour.h"
#include "engine/model/note_state.h"

namespace rovescio::engine {

namespace {

constexpr int kMaxDots = 2;

// Where entries stood before the open mass edit, by number.
class Origins {
  public:
    struct Place {
        const StoredEntry* entry = nullptr;  // null for an entry that is new
        std::uint32_t index = 0;             // in the order of its layer, grace entries not counted
        short measure = 0;
    };

    Origins(const Document& document, const MassEdits& edits)
        : document_(document), edits_(edits), places_(std::size_t{document.lastEntryNumber()} + 1) {}

    void collect(short staff, short layer, short first, short last) {
        index_ += 2;  // entries of different layers do not follow each other
        for (const short measure : numbers(first, last)) {
            const PackedEntries& entries = edits_.before({staff, measure, layer});
            std::uint32_t owner = 0;
            for (const StoredEntry& entry : entries) {
                const bool grace = entryState(entry).grace != Grace::none;
                places_[entry.entryNumber] = {&entry, grace ? 0 : ++index_, measure};
                if (!grace && !(entry.entryFlags & ENTRY_VOICE2)) {
                    followedUp(waiting_, entry.entryNumber);
                    owner = entry.entryNumber;
                } else if (grace) {
                    waiting_.push_back(+entry.entryNumber);
                }
            }
            followedUp(waiting_, owner);
        }
    }

    [[nodiscard]] const Place& of(const StoredEntry& entry) const {
        static const Place kNone;
        return entry.entryNumber < places_.size() ? places_[entry.entryNumber] : kNone;
    }

    // The note that a grace entry belongs to: the next of its measure, or else the last.
    [[nodiscard]] std::uint32_t ownerOf(const StoredEntry& grace) const {
        const auto found = owners_.find(+grace.entryNumber);
        return found == owners_.end() ? 0 : found->second;
    }

    // A note's written pitch, which it keeps wherever it stands.
    [[nodiscard]] SpelledPitch pitchOf(short staff, const StoredEntry& entry, const ENOTE& note,
                                       short measureNow) const {
        return keyOf(staff, entry, measureNow).spell(note);
    }
    [[nodiscard]] int soundOf(short staff, const StoredEntry& entry, const ENOTE& note,
                              short measureNow) const {
        return engine::soundOf(keyOf(staff, entry, measureNow), note);
    }

  private:
    [[nodiscard]] const KeySignature& keyOf(short staff, const StoredEntry& entry, short measureNow) const {
        const Place& place = of(entry);
        return place.entry ? edits_.keyBefore(staff, place.measure)
                           : document_.staffMeasure(staff, measureNow).key;
    }
    void followedUp(std::vector<std::uint32_t>& graces, std::uint32_t owner) {
        for (const std::uint32_t grace : graces) owners_.emplace(grace, owner);
        graces.clear();
    }

    const Document& document_;
    const MassEdits& edits_;
    std::vector<Place> places_;
    std::unordered_map<std::uint32_t, std::uint32_t> owners_;
    std::vector<std::uint32_t> waiting_;
    std::uint32_t index_ = 0;
};

// The shown layers of one staff of the region.
class StaffRebar {
  public:
    StaffRebar(Document& document, Consequences& consequences, const std::array<bool, kMaxLayers>& layerShown,
               Origins& origins, short staff, short first, short last)
        : document_(document),
          consequences_(consequences),
          edits_(consequences.edits()),
          layerShown_(layerShown),
          origins_(origins),
          staff_(staff),
          first_(first),
          last_(last) {
        for (const short measure : numbers(first, last)) {
            const StaffMeasure& time = document_.staffMeasure(staff, measure);
            metres_.push_back({time.duration, time.beat});
        }
        real_.resize(metres_.size());
    }

    // Finds out where everything goes; nothing is moved yet.
    Result<Done> plan() {
        for (std::size_t i = 0; i < metres_.size(); ++i) {
            std::ranges::copy(courtesySigns(document_, edits_, staff_, frame(i, 0).measure),
                              std::back_inserter(courtesies_));
        }
        std::ranges::sort(courtesies_);
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            if (layerShown_[static_cast<std::size_t>(layer)]) {
                if (Result<Done> planned = planLayer(layer); !planned) return planned;
            } else {
                for (std::size_t i = 0; i < metres_.size(); ++i) {
                    if (!document_.entries(frame(i, layer)).empty()) markReal(i, layer);
                }
            }
        }
        return Done{};
    }

    void apply() {
        for (Layer& layer : layers_) {
            auto piece = layer.pieces.begin();
            for (std::size_t i = 0; i < metres_.size(); ++i) {
                const auto end = std::find_if(piece, layer.pieces.end(),
                                              [&](const PourPiece& other) { return other.measure != i; });
                std::vector<PourPiece> pieces(piece, end);
                piece = end;
                finish(layer, i, pieces);
            }
            for (std::size_t i = 0; i < metres_.size(); ++i) {
                edits_.replace(frame(i, layer.number), std::move(layer.frames[i]));
            }
        }
        consequences_.noteRebar({staff_, first_, last_});
    }

  private:
    struct Layer {
        short number = 0;
        std::vector<PourItem> items;
        std::vector<PourPiece> pieces;
        std::vector<PackedEntries> frames;
    };

    [[nodiscard]] FrameAddress frame(std::size_t index, short layer) const {
        return {staff_, static_cast<short>(first_ + static_cast<short>(index)), layer};
    }
    void markReal(std::size_t index, short layer) { real_[index] |= 1U << layer; }
    [[nodiscard]] bool hasOtherMusic(std::size_t index, short layer) const {
        return (real_[index] & ~(1U << layer)) != 0;
    }
    static bool isSilent(const PourItem& item, const PourPiece& piece) {
        return item.isRest() && piece.silence != Silence::rest;
    }

    Result<Done> planLayer(short number) {
        Layer& layer = layers_.emplace_back();
        layer.number = number;
        origins_.collect(staff_, number, first_, last_);
        const bool present = mendTies(number);
        if (!present) {
            layers_.pop_back();
            return Done{};
        }
        gather(layer);
        PourResult poured = pour(layer.items, metres_);
        if (!poured.fault.empty()) return refusal(poured.fault, poured.measure, number);
        layer.pieces = std::move(poured.pieces);
        findCuts(layer);
        for (const PourPiece& piece : layer.pieces) {
            if (!isSilent(layer.items[piece.item], piece)) markReal(piece.measure, number);
        }
        return Done{};
    }

    [[nodiscard]] Problem refusal(const std::string& fault, std::size_t index, short layer) const {
        const FrameAddress address = frame(index, layer);
        return {.message = fault + " (staff " + std::to_string(staff_) + ", layer " +
                           std::to_string(layer + 1) + ")",
                .file = {},
                .line = 0,
                .measure = document_.measure(address.measure).label,
                .remedy = "Correct the durations there, or select other measures"};
    }

    // A note that kept its ties while its neighbours changed sides leaves half ties behind: where the two
    // notes were tied the other way round before, they are tied again. False when the layer is empty.
    bool mendTies(short layer) {
        StoredEntry* earlier = nullptr;
        short earlierMeasure = 0;
        bool present = false;
        for (std::size_t i = 0; i < metres_.size(); ++i) {
            if (document_.entries(frame(i, layer)).empty()) continue;
            present = true;
            for (StoredEntry& entry : edits_.editable(frame(i, layer))) {
                if (entryState(entry).grace != Grace::none || (entry.entryFlags & ENTRY_VOICE2)) continue;
                const short measure = frame(i, layer).measure;
                if (earlier) mendTies(*earlier, earlierMeasure, entry, measure);
                earlier = &entry;
                earlierMeasure = measure;
            }
        }
        return present;
    }

    void mendTies(StoredEntry& earlier, short earlierMeasure, StoredEntry& later, short laterMeasure) {
        const Origins::Place& from = origins_.of(later);
        const Origins::Place& to = origins_.of(earlier);
        if (!from.entry || !to.entry || to.index != from.index + 1) return;
        for (ENOTE& note : earlier.notes()) {
            for (ENOTE& next : later.notes()) {
                const bool half =
                    ((note.noteFlags & NOTE_TIE_START) != 0) != ((next.noteFlags & NOTE_TIE_END) != 0);
                if (!half || origins_.soundOf(staff_, earlier, note, earlierMeasure) !=
                                 origins_.soundOf(staff_, later, next, laterMeasure)) {
                    continue;
                }
                if (!hadFlag(*from.entry, next, NOTE_TIE_START) || !hadFlag(*to.entry, note, NOTE_TIE_END)) {
                    continue;
                }
                note.noteFlags |= NOTE_TIE_START;
                next.noteFlags |= NOTE_TIE_END;
            }
        }
    }

    static bool hadFlag(const StoredEntry& before, const ENOTE& now, std::uint32_t flag) {
        return std::ranges::any_of(before.notes(), [&](const ENOTE& note) {
            return note.noteId == now.noteId && (note.noteFlags & flag) != 0;
        });
    }

    void gather(Layer& layer) {
        std::uint32_t lastTimed = 0;
        for (std::size_t i = 0; i < metres_.size(); ++i) {
            for (const StoredEntry& entry : std::as_const(document_).entries(frame(i, layer.number))) {
                PourItem item{&entry};
                item.aside = (entry.entryFlags & ENTRY_VOICE2) != 0;
                if (entryState(entry).grace != Grace::none) {
                    item.graceOfBefore = lastTimed != 0 && origins_.ownerOf(entry) == lastTimed;
                } else if (!item.aside) {
                    lastTimed = entry.entryNumber;
                }
                layer.items.push_back(item);
            }
        }
    }

    // Makes the frame of one measure.
    void finish(Layer& layer, std::size_t index, std::vector<PourPiece>& pieces) {
        const bool otherMusic = hasOtherMusic(index, layer.number);
        const bool silent = std::ranges::all_of(
            pieces, [&](const PourPiece& piece) { return isSilent(layer.items[piece.item], piece); });
        if (silent) {
            // The first silent layer of a staff without music keeps a rest.
            if (otherMusic || pieces.empty()) {
                layer.frames.emplace_back();
                return;
            }
            markReal(index, layer.number);
        }
        for (PourPiece& piece : pieces) {
            if (piece.silence != Silence::filler) continue;
            piece.silence = otherMusic ? Silence::gap : Silence::rest;
            piece.loose = true;
        }
        if (silent && pieces.size() > 1) pieces.front().loose = true;
        groupRests(pieces, layer.items, metres_[index]);
        joinCut(layer, index, pieces);
        std::size_t bytes = 0;
        for (const PourPiece& piece : pieces) {
            bytes += PackedEntries::bytesFor(layer.items[piece.item].entry->noteCount);
        }
        PackedEntries entries = PackedEntries::withRoom(bytes);
        for (const PourPiece& piece : pieces) entries.append(entryOf(layer, index, piece));
        layer.frames.push_back(std::move(entries));
    }

    // Joins runs of pieces that are one note, as far as one note value can express them.
    void joinCut(const Layer& layer, std::size_t index, std::vector<PourPiece>& pieces) const {
        std::vector<PourPiece> joined;
        for (std::size_t first = 0; first < pieces.size();) {
            std::size_t end = first + 1;
            std::size_t writable = end;
            std::int32_t duration = pieces[first].duration;
            for (; end < pieces.size() && areOne(layer, index, pieces[end - 1], pieces[end]); ++end) {
                duration += pieces[end].duration;
                if (isWritable(duration, kMaxDots)) writable = end + 1;
            }
            joined.push_back(pieces[first]);
            for (std::size_t i = first + 1; i < writable; ++i) join(layer, joined.back(), pieces[i]);
            first = writable;
        }
        pieces = std::move(joined);
    }

    static void join(const Layer& layer, PourPiece& whole, const PourPiece& more) {
        whole.duration += more.duration;
        whole.continued = more.continued;
        whole.lastItem = more.lastItem;
        const bool wholeIsMarked = entryState(*layer.items[whole.item].entry).marked;
        if (whole.renumbered || (!wholeIsMarked && !more.renumbered)) {
            whole.item = more.item;
            whole.renumbered = more.renumbered;
        }
    }

    // Whether two pieces of one measure are tied where only a cut had divided them.
    [[nodiscard]] bool areOne(const Layer& layer, std::size_t index, const PourPiece& earlier,
                              const PourPiece& later) const {
        if (!later.cutBefore || later.continues || earlier.continued) return false;
        const StoredEntry& first = *layer.items[earlier.lastItem].entry;
        const StoredEntry& second = *layer.items[later.item].entry;
        const EntryState one = entryState(first);
        const EntryState two = entryState(second);
        if (one.actual != two.actual || one.normal != two.normal) return false;
        if (one.marked && two.marked && !earlier.renumbered) return false;
        const short measure = frame(index, layer.number).measure;
        return std::ranges::equal(first.notes(), second.notes(), [&](const ENOTE& a, const ENOTE& b) {
            return (a.noteFlags & NOTE_TIE_START) != 0 && (b.noteFlags & NOTE_TIE_END) != 0 &&
                   centsOf(a) == centsOf(b) &&
                   origins_.pitchOf(staff_, first, a, measure) ==
                       origins_.pitchOf(staff_, second, b, measure);
        });
    }

    // Remembers where ties join the parts of a note that was cut, now or before.
    void findCuts(Layer& layer) const {
        const PourPiece* earlier = nullptr;
        for (PourPiece& piece : layer.pieces) {
            const PourItem& item = layer.items[piece.item];
            if (item.aside) continue;
            const bool sounds = !item.isRest() && entryState(*item.entry).grace == Grace::none;
            piece.cutBefore =
                sounds && (piece.continues ||
                           (earlier != nullptr && wereOne(*layer.items[earlier->item].entry, *item.entry)));
            earlier = sounds ? &piece : nullptr;
        }
    }

    [[nodiscard]] bool wereOne(const StoredEntry& first, const StoredEntry& second) const {
        if (document_.originOf(first.entryNumber) == document_.originOf(second.entryNumber)) return true;
        const Origins::Place& to = origins_.of(first);
        const Origins::Place& from = origins_.of(second);
        if (!to.entry || !from.entry) return false;
        return (to.index == from.index + 1 && entryState(*to.entry).cut) ||
               (from.index == to.index + 1 && entryState(*from.entry).cut);
    }

    [[nodiscard]] bool isCourtesy(const StoredEntry& entry, const ENOTE& note) const {
        return (note.noteFlags & kCourtesySign) != 0 ||
               std::ranges::binary_search(courtesies_, numberOf(entry, note));
    }

    [[nodiscard]] EXENTRY entryOf(const Layer& layer, std::size_t index, const PourPiece& piece) {
        const StoredEntry& source = *layer.items[piece.item].entry;
        const short measure = frame(index, layer.number).measure;
        EXENTRY entry = source.expanded();
        if (piece.renumbered) entry.entryNumber = document_.continuationOf(source.entryNumber);
        entry.duration = piece.duration;
        entry.elapsed = piece.start.floor();
        EntryState state = entryState(source);
        state.silence = piece.silence;
        state.cut = piece.cutBefore;
        if (piece.renumbered) state.marked = false;
        setEntryState(entry, state);
        const KeySignature& key = document_.staffMeasure(staff_, measure).key;
        const auto arrivals = layer.items[piece.firstItem].entry->notes();
        const auto departures = layer.items[piece.lastItem].entry->notes();
        for (std::size_t i = 0; i < static_cast<std::size_t>(entry.noteCount); ++i) {
            ENOTE& note = entry.notes[i];
            key.store(origins_.pitchOf(staff_, source, note, measure), note);
            const std::uint32_t arrives =
                piece.continues ? NOTE_TIE_END : arrivals[i].noteFlags & NOTE_TIE_END;
            const std::uint32_t leaves =
                piece.continued ? NOTE_TIE_START : departures[i].noteFlags & NOTE_TIE_START;
            // A reminder goes with its note, and stands at its beginning.
            const bool reminds = !piece.continues && isCourtesy(source, note);
            note.noteFlags = (note.noteFlags & ~(NOTE_TIES | kCourtesySign)) | arrives | leaves |
                             (reminds ? kCourtesySign : 0);
        }
        if (entry.noteCount > 0) entry.reserved13 |= kDecideAccidentals;
        return entry;
    }

    Document& document_;
    Consequences& consequences_;
    MassEdits& edits_;
    const std::array<bool, kMaxLayers>& layerShown_;
    Origins& origins_;
    const short staff_;
    const short first_;
    const short last_;
    std::vector<Metre> metres_;
    std::vector<NoteNumber> courtesies_;  // notes of the region that showed a reminder
    std::vector<unsigned> real_;          // by measure, a bit for each layer with music
    std::vector<Layer> layers_;
};

// Keeps the written pitches of a frame that was not poured again, but whose measure has got another key.
void respell(Document& document, MassEdits& edits, const FrameAddress& address) {
    const KeySignature& now = std::as_const(document).staffMeasure(address.staff, address.measure).key;
    const KeySignature& before = edits.keyBefore(address.staff, address.measure);
    if (now == before || std::as_const(document).entries(address).empty()) return;
    for (StoredEntry& entry : edits.editable(address)) {
        for (ENOTE& note : entry.notes()) now.store(before.spell(note), note);
        if (entry.noteCount > 0) entry.reserved13 |= kDecideAccidentals;
    }
}

}  // namespace

Result<Done> rebar(Document& document, Consequences& consequences,
                   const std::array<bool, kMaxLayers>& layerShown, const EREGION& region) {
    MassEdits& edits = consequences.edits();
    const short first = std::max<short>(region.start.measure, 1);
    const short last = std::min(region.end.measure, document.measureCount());
    const short firstStaff = std::max<short>(region.start.slot, 1);
    const short lastStaff = std::min(region.end.slot, document.staffCount());
    if (region.start.staffList != 0 || last < first || !edits.isOpen()) {
        Problem problem;
        problem.message = "no music was named that could be laid out again";
        return problem;
    }

    Origins origins(document, edits);
    std::vector<StaffRebar> staves;
    for (const short staff : numbers(firstStaff, lastStaff)) {
        staves.emplace_back(document, consequences, layerShown, origins, staff, first, last);
        if (Result<Done> planned = staves.back().plan(); !planned) return planned;
    }
    for (StaffRebar& staff : staves) staff.apply();
    for (const short staff : document.staffNumbers()) {
        const bool inRegion = staff >= firstStaff && staff <= lastStaff;
        for (short layer = 0; layer < kMaxLayers; ++layer) {
            if (inRegion && layerShown[static_cast<std::size_t>(layer)]) continue;
            for (const short measure : numbers(first, last)) {
                respell(document, edits, {staff, measure, layer});
            }
        }
    }
    return Done{};
}

}  // namespace rovescio::engine
