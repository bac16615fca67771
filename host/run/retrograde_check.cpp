// A walk over the frames of the selection for what the check of a retrograde looks for.
#include "run/retrograde_check.h"

#include <array>
#include <map>
#include <set>
#include <span>
#include <tuple>
#include <utility>

#include "engine/edit/pour.h"
#include "engine/model/fraction.h"

namespace rovescio::run {

namespace {

enum Obstacle : std::size_t { kChangeInside, kSecondVoice, kShape, kLength };
constexpr std::array<const char*, 4> kNames = {
    "the clef or key changes inside the measure", "a layer has a second voice",
    "slurs, hairpins or other lines begin or end", "the notes overlap or do not fill the measure"};

// The measures of a layer whose notes are more or less than the measure holds. What one has too much and
// another too little does no harm: the layer is poured as one.
struct Misfits {
    engine::Fraction surplus;
    std::set<short> measures;

    void add(const engine::Document& document, const engine::FrameAddress& address) {
        const engine::PackedEntries& entries = document.entries(address);
        if (entries.empty()) return;  // the plug-in fills it with a rest
        engine::Fraction length;
        for (const engine::StoredEntry& entry : entries) {
            if (!(entry.entryFlags & ENTRY_VOICE2)) length += engine::lengthOf(entry);
        }
        const engine::Fraction room(document.staffMeasure(address.staff, address.measure).duration);
        if (length == room) return;
        surplus += length - room;
        measures.insert(address.measure);
    }
};

}  // namespace

std::vector<std::string> retrogradeObstacles(engine::Session& session, const Selection& selection) {
    std::map<std::pair<short, std::size_t>, std::set<short>> found;  // measures by staff and kind
    Selection allLayers = selection;
    allLayers.layers.fill(true);
    forEachFrame(allLayers, [&](const EREGION& region, const engine::FrameAddress& address) {
        EXTGF2005a* const frame = session.frames.load(address);
        if (frame == nullptr) return;
        const auto add = [&](Obstacle kind) { found[{address.staff, kind}].insert(address.measure); };
        if (frame->headerWord != 0) add(kChangeInside);
        for (const EXENTRY& entry : std::span(frame->entries, static_cast<std::size_t>(frame->entryCount))) {
            if (!contains(region, address, entry.elapsed)) continue;
            if (entry.entryFlags & ENTRY_VOICE2) add(kSecondVoice);
            if (entry.updateFlags & ENTRY_HAS_SHAPES) add(kShape);
        }
        session.frames.free(frame);
    });
    std::map<std::tuple<const EREGION*, short, short>, Misfits> layers;  // by region, staff and layer
    forEachFrame(selection, [&](const EREGION& region, const engine::FrameAddress& address) {
        layers[{&region, address.staff, address.layer}].add(session.document, address);
    });
    for (const auto& [layer, misfits] : layers) {
        if (misfits.surplus == engine::Fraction(0)) continue;
        found[{std::get<1>(layer), kLength}].insert(misfits.measures.begin(), misfits.measures.end());
    }
    std::vector<std::string> lines;
    lines.reserve(found.size());
    for (const auto& [place, measures] : found) {
        lines.push_back("staff " + std::to_string(place.first) +
                        (measures.size() == 1 ? ", measure " : ", measures ") +
                        measureRuns(session.document, measures) + ": " + kNames[place.second]);
    }
    return lines;
}

}  // namespace rovescio::run
