// Overview of a document.
#include "cli/score_info.h"

#include <cstdint>

#include "cli/messages.h"

namespace rovescio::cli {

namespace {

using engine::Document;

// The layers in which a staff has entries, as "1,2".
std::string layersUsed(const Document& document, short staff) {
    std::string text;
    for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
        for (const short measure : document.measureNumbers()) {
            if (document.entries({staff, measure, layer}).empty()) continue;
            text += (text.empty() ? "" : ",") + std::to_string(layer + 1);
            break;
        }
    }
    return text.empty() ? "none" : text;
}

// The keys of a staff in order, each with the measure in which it begins.
std::string keysOf(const Document& document, short staff) {
    if (document.staff(staff).unpitched) return "unpitched";
    const engine::KeySignature* key = &document.staffMeasure(staff, 1).key;
    std::string text = keyName(*key);
    for (const short measure : engine::numbers(2, document.measureCount())) {
        const engine::KeySignature& next = document.staffMeasure(staff, measure).key;
        if (next == *key) continue;
        text += ", " + keyName(next) + " from measure " + document.measure(measure).label;
        key = &next;
    }
    return text;
}

}  // namespace

std::string keyName(const engine::KeySignature& key) {
    if (!key.isStandard()) return "non-traditional key";
    const bool minor = (key.word() >> 8) != 0;
    // The tonic on the line of fifths, counted from F.
    const int tonic = static_cast<std::int8_t>(key.word() & 0xFF) + (minor ? 4 : 1);
    const int accidentals = engine::floorDiv(tonic, 7);
    std::string name(1, "FCGDAEB"[engine::floorMod(tonic, 7)]);
    for (int i = 0; i < accidentals; ++i) name += '#';
    for (int i = 0; i > accidentals; --i) name += 'b';
    return name + (minor ? " minor" : " major");
}

std::vector<std::string> scoreInfo(const std::string& name, const Document& document) {
    const auto measures = static_cast<std::size_t>(document.measureCount());
    std::vector<std::string> lines = {name, "  " + counted(measures, "measure")};
    if (measures > 0) {
        lines.back() += ", numbered " + document.measure(1).label + " to " +
                        document.measure(document.measureCount()).label;
    }
    for (const short staff : document.staffNumbers()) {
        std::string& line = lines.emplace_back("  staff " + std::to_string(staff));
        if (!document.staff(staff).name.empty()) line += "  " + document.staff(staff).name;
        if (measures > 0) line += "  layers " + layersUsed(document, staff) + "  " + keysOf(document, staff);
    }
    return lines;
}

}  // namespace rovescio::cli
