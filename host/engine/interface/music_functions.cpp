// Host functions on the selection, the score's structure, playback and note names.
#include <cctype>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "contract/data_records.h"
#include "engine/interface/functions.h"
#include "engine/interface/playback_list.h"
#include "engine/interface/session.h"

namespace rovescio::engine::functions {

short SX_GetCurERegions(std::uint64_t* slot, EREGION* region, EREGION* secondRegion) {
    const Session& session = Session::current();
    if (slot) *slot = 0;
    // The second region is the whole score, whatever is selected.
    EREGION whole{};
    whole.start = {0, 1, 1, 0};
    whole.end = {0, session.document.staffCount(), session.document.measureCount(), 0x7FFFFFFF};
    if (secondRegion) *secondRegion = whole;
    if (!session.selection) return 0;
    if (region) *region = *session.selection;
    return 1;
}

void SX_RedrawMusic(const EREGION*) {
    Session::current().userInterface().redraw();
}

short SX_GetMaxLayers() {
    return kMaxLayers;
}

short SX_GetShowLayer(short layer) {
    if (layer < 0 || layer >= kMaxLayers) return 0;
    return Session::current().layerShown[static_cast<std::size_t>(layer)];
}

short SX_SlotToInst(short slot, std::uint16_t staffList) {
    const Session& session = Session::current();
    if (staffList == 0) return slot >= 1 && slot <= session.document.staffCount() ? slot : short{0};
    const EDATAKEY key{staffList, static_cast<std::uint16_t>(slot - 1)};
    const auto* record = slot >= 1 ? session.records.find(kPlaybackStaffTag, key) : nullptr;
    if (!record || record->size() < 2) return 0;
    return static_cast<short>(std::to_integer<unsigned>((*record)[0]) |
                              std::to_integer<unsigned>((*record)[1]) << 8);
}

short SX_InstToSlot(short staff, std::uint16_t staffList) {
    const Session& session = Session::current();
    if (staffList == 0) return staff >= 1 && staff <= session.document.staffCount() ? staff : short{0};
    for (const short slot : numbers(1, std::numeric_limits<short>::max())) {
        const short found = SX_SlotToInst(slot, staffList);
        if (found == 0) break;
        if (found == staff) return slot;
    }
    return 0;
}

short SX_GetKeySig(short measure, short staff, short, std::intptr_t) {
    const Document& document = Session::current().document;
    return document.has(staff, measure) ? static_cast<short>(document.staffMeasure(staff, measure).key.word())
                                        : short{0};
}

// Staff 0 asks for the measure's own length: that of the topmost staff.
std::int32_t SX_GetMeasureDuration(short staff, short measure) {
    const Document& document = Session::current().document;
    const short asked = staff == 0 ? short{1} : staff;
    return document.has(asked, measure) ? document.staffMeasure(asked, measure).duration : 0;
}

void SX_Playback(short startMeasure, short endMeasure, short, std::uint16_t staffList) {
    std::vector<short> staves;
    for (const short slot : numbers(1, std::numeric_limits<short>::max())) {
        const short staff = SX_SlotToInst(slot, staffList);
        if (staff == 0) break;
        staves.push_back(staff);
    }
    Session::current().userInterface().play(startMeasure, endMeasure, staves);
}

short SX_ListenToMidi(SXWindow, void* buffer) {
    return Session::current().userInterface().listenToMidi(static_cast<std::uint8_t*>(buffer));
}

// Letter, accidentals (# or b, repeated), octave number; "C4" is 60. -1 for anything else.
short SX_StringToMidiNote(const char* name) {
    static constexpr int kHeights[7] = {9, 11, 0, 2, 4, 5, 7};  // A to G
    if (!name) return -1;
    const int letter = std::toupper(static_cast<unsigned char>(*name)) - 'A';
    if (letter < 0 || letter > 6) return -1;
    int note = kHeights[letter];
    const char* rest = name + 1;
    for (; *rest == '#' || *rest == 'b'; ++rest) note += *rest == '#' ? 1 : -1;
    char* end = nullptr;
    const long octave = std::strtol(rest, &end, 10);
    if (end == rest || *end != '\0' || octave < -1 || octave > 9) return -1;
    note += 12 * (static_cast<int>(octave) + 1);
    return static_cast<short>(note >= 0 && note <= 127 ? note : -1);
}

// Fonts are numbered as they are asked for; a score file needs no more.
short SX_FontNameToNum_UTF16(const char16_t* name) {
    static std::vector<std::u16string> fonts;
    if (!name) return 0;
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        if (fonts[i] == name) return static_cast<short>(i + 1);
    }
    fonts.emplace_back(name);
    return static_cast<short>(fonts.size());
}

short SX_EndScorixEdit() {
    return 1;
}

short SX_IsMachO() {
    return 1;
}

}  // namespace rovescio::engine::functions
