// A walk over the frames of the selection for what the check of a retrograde looks for.
#include "cli/retrograde_check.h"

#include <algorithm>
#include <span>

namespace rovescio::cli {

std::vector<std::string> retrogradeObstacles(engine::Session& session, const Selection& selection) {
    std::vector<std::string> lines;
    const auto report = [&](const engine::FrameAddress& address, bool layered, const std::string& what) {
        std::string line = "measure " + session.document.measure(address.measure).label + ", staff " +
                           std::to_string(address.staff);
        if (layered) line += ", layer " + std::to_string(address.layer + 1);
        line += ": " + what;
        if (std::find(lines.begin(), lines.end(), line) == lines.end()) lines.push_back(std::move(line));
    };
    Selection allLayers = selection;
    allLayers.layers.fill(true);
    forEachFrame(allLayers, [&](const EREGION& region, const engine::FrameAddress& address) {
        EXTGF2005a* const frame = session.frames.load(address);
        if (frame == nullptr) return;
        if (frame->headerWord != 0) report(address, false, "the clef or key changes inside the measure");
        for (const EXENTRY& entry : std::span(frame->entries, static_cast<std::size_t>(frame->entryCount))) {
            if (!contains(region, address, entry.elapsed)) continue;
            if (entry.entryFlags & ENTRY_VOICE2) report(address, true, "a second voice in the layer");
            if (entry.updateFlags & ENTRY_HAS_SHAPES) {
                report(address, true, "a slur, hairpin or other line begins or ends");
            }
        }
        session.frames.free(frame);
    });
    return lines;
}

}  // namespace rovescio::cli
