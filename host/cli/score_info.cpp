// Overview of a document.
#include "cli/score_info.h"

#include <cstdint>

#include "cli/messages.h"
#include "run/score_info.h"

namespace rovescio::cli {

namespace {

using engine::Document;

// As "1,2".
std::string layerNames(const run::StaffInfo& staff) {
    std::string text;
    for (const short layer : staff.layers) text += (text.empty() ? "" : ",") + std::to_string(layer + 1);
    return text.empty() ? "none" : text;
}

// In order, each but the first with the measure in which it begins.
std::string keyNames(const run::StaffInfo& staff, const Document& document) {
    if (staff.unpitched) return "unpitched";
    std::string text;
    for (const auto& [key, measure] : staff.keys) {
        if (!text.empty()) text += ", ";
        text += keyName(key);
        if (measure > 1) text += " from measure " + document.measure(measure).label;
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
    for (const run::StaffInfo& staff : run::staffInfos(document)) {
        std::string& line = lines.emplace_back("  staff " + std::to_string(staff.number));
        if (!staff.name.empty()) line += "  " + staff.name;
        if (measures > 0) line += "  layers " + layerNames(staff) + "  " + keyNames(staff, document);
    }
    return lines;
}

}  // namespace rovescio::cli
