// Keys that are neither major nor minor.
#include "run/key_limits.h"

#include <map>
#include <set>

namespace rovescio::run {

namespace {

using dialogs::Transformation;
using engine::FrameAddress;

bool movesByInterval(const Transformation& transformation) {
    return transformation.transposition &&
           transformation.transposition->kind != dialogs::Transposition::Kind::diatonic;
}

bool mirrors(const Transformation& transformation) {
    return transformation.inversion && transformation.inversion->hasAxis();
}

// What is not done in other keys: "transposed", "inverted" or both; empty when everything is.
std::string limitedSteps(const Transformation& transformation) {
    const bool moves = movesByInterval(transformation);
    if (!mirrors(transformation)) return moves ? "transposed" : "";
    return moves ? "transposed or inverted" : "inverted";
}

}  // namespace

bool reaches(const Transformation& transformation, const engine::KeySignature& key) {
    const int limited = (movesByInterval(transformation) ? 1 : 0) + (mirrors(transformation) ? 1 : 0);
    return key.isStandard() || limited < transformation.stepCount();
}

std::vector<std::string> notesLeft(const engine::Document& document, const Selection& selection,
                                   const Transformation& transformation) {
    const std::string steps = limitedSteps(transformation);
    if (steps.empty()) return {};
    std::map<short, std::set<short>> left;  // measures by staff
    forEachFrame(selection, [&](const EREGION& region, const FrameAddress& address) {
        const bool other = !document.staffMeasure(address.staff, address.measure).key.isStandard();
        if (!other || document.staff(address.staff).unpitched) return;
        for (const engine::StoredEntry& entry : document.entries(address)) {
            const bool isNote =
                (entry.entryFlags & ENTRY_NOTE) != 0 && contains(region, address, entry.elapsed);
            if (isNote) left[address.staff].insert(address.measure);
        }
    });
    std::vector<std::string> lines;
    for (const auto& [staff, measures] : left) {
        std::string line = "staff " + std::to_string(staff);
        line.append(measures.size() == 1 ? ", measure " : ", measures ");
        line.append(measureRuns(document, measures));
        lines.push_back(line.append(": the notes were not ")
                            .append(steps)
                            .append(", since their key is neither major nor minor"));
    }
    return lines;
}

engine::Problem nothingReached(const Transformation& transformation) {
    return engine::problemWith(
        "nothing in the selection can be " + limitedSteps(transformation) + ", nothing was written",
        std::string("Staves without pitches and keys that are neither major nor minor stay as they "
                    "are") +
            (movesByInterval(transformation) ? "; {steps} moves the notes in such keys" : ""));
}

}  // namespace rovescio::run
