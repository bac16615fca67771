// A small plug-in that transposes by a second and is right in everything but the one fault it is built with.
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "contract/descriptor.h"
#include "contract/host_parameters.h"
#include "contract/records.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

constexpr bool faulty(std::string_view fault) {
    return fault == FAULT;
}

constexpr std::uint32_t kVersion = faulty("version word") ? 1 : kKitVersion;
constexpr std::uint32_t kTable = 20134;

}  // namespace

EXPORTED CFBundleRef gScorixBundle;
EXPORTED std::uint32_t QorVersion;
CFBundleRef gScorixBundle = nullptr;
std::uint32_t QorVersion = 0;

namespace host {
#define HOST_FUNCTION(result, name, ...)                                                                    \
    inline result name(HOST_DECLARATIONS(__VA_ARGS__)) {                                                    \
        using Procedure = result (*)(HOST_TYPES_AND_VERSION(__VA_ARGS__));                                  \
        return reinterpret_cast<Procedure>(CFBundleGetFunctionPointerForName(gScorixBundle, CFSTR(#name)))( \
            HOST_NAMES_AND_VERSION(kVersion, __VA_ARGS__));                                                 \
    }
#define HOST_GUARDED(result, name, ...) HOST_FUNCTION(result, name, __VA_ARGS__)
#define HOST_KIT_FUNCTION(result, name, ...)
#define HOST_KIT_GUARDED(result, name, ...)
#include "contract/host_functions.def"
}  // namespace host

namespace {

std::intptr_t kind = 1;  // of the transposition: 1 none, 2 diatonic, 3 chromatic

void transpose(ENOTE& note) {
    constexpr int kHeights[] = {0, 2, 4, 5, 7, 9, 11, 12};  // of a major scale
    const int degree = (note.displacement % 7 + 7) % 7;
    const int step = kHeights[degree + 1] - kHeights[degree];
    if (kind == 3) note.alteration = static_cast<std::int16_t>(note.alteration + 2 - step);
    if (!faulty("wrong pitch")) ++note.displacement;
}

void transpose(const EREGION& region, short slot, short measure, short layer) {
    EXTGF2005a* frame = host::SX_LoadTGF(0, slot, measure, layer, 0);
    if (!frame && !faulty("null frame used")) return;
    for (EXENTRY* entry = frame->entries; entry < frame->entries + frame->entryCount; ++entry) {
        const bool early = measure == region.start.measure && entry->elapsed < region.start.position;
        const bool late = measure == region.end.measure && entry->elapsed > region.end.position;
        if ((early || late) && !faulty("selection exceeded")) continue;
        std::for_each_n(entry->notes, entry->noteCount, [](ENOTE& note) { transpose(note); });
        if (faulty("notes beyond the count")) entry->notes[entry->noteCount].noteId = 1;
    }
    host::SX_SaveTGF(frame);
    EXENTRY* entries = frame->entryCount > 0 ? frame->entries : nullptr;
    if (!faulty("frame not freed")) host::SX_FreeTGF(frame);
    if (faulty("frame freed twice")) host::SX_FreeTGF(frame);
    if (faulty("frame written after free") && entries) entries->duration = 0;
    if (faulty("frame used after free")) host::SX_SaveTGF(frame);
}

void apply(SXWindow dialog) {
    if (kind == 1) {
        volatile bool waits = faulty("endless loop");
        while (waits) {
        }
        if (faulty("exit")) std::exit(0);
        if (!faulty("choice not told")) host::SX_AlertMessage(dialog, 0, kTable << 16 | 13, nullptr);
        return;
    }
    EREGION region{};
    if (!host::SX_GetCurERegions(nullptr, &region, nullptr) && !faulty("selection not told")) {
        host::SX_AlertMessage(dialog, 0, kTable << 16 | (faulty("string missing") ? 99U : 2U), nullptr);
        return;
    }
    SXMassEdit edit = faulty("no mass edit") ? nullptr : host::SX_StartMassEdit(nullptr, 100);
    if (faulty("no mass edit")) transpose(region, 1, 1, 0);
    bool cancelled = false;
    for (short measure = region.start.measure; measure <= region.end.measure && !cancelled; ++measure) {
        for (short slot = region.start.slot; slot <= region.end.slot && !cancelled; ++slot) {
            cancelled = !faulty("no progress") && !host::SX_MassEditProgress(edit, 0, 0, 0, -1);
            for (short layer = 0; layer < host::SX_GetMaxLayers() && !cancelled; ++layer)
                transpose(region, slot, measure, layer);
        }
    }
    if (!faulty("edit not ended")) host::SX_EndMassEdit(edit, cancelled && !faulty("cancel kept"));
    if (faulty("edit ended twice")) host::SX_EndMassEdit(edit, 0);
    if (faulty("progress outside")) host::SX_MassEditProgress(edit, 0, 0, 0, -1);
    if (!cancelled && !faulty("not redrawn")) host::SX_RedrawMusic(&region);
}

void play() {
    EREGION region{};
    if (!host::SX_GetCurERegions(nullptr, &region, nullptr)) return;
    const auto each = [&](auto action) {
        for (short slot = region.start.slot; slot <= region.end.slot; ++slot) action(slot);
    };
    each([](short slot) {
        EDATAKEY key{0xFFF9, static_cast<std::uint16_t>(slot - 1)};
        EDTPlaybackStaff record{slot, {}};
        std::uint32_t size = sizeof record;
        host::SX_CreateEData(0x534F4975, &key, &record, &size);
    });
    host::SX_Playback(1, faulty("plays all") ? short{3} : region.end.measure, 0, 0xFFF9);
    each([](short) {
        EDATAKEY key{0xFFF9, 0};
        if (!faulty("records left")) host::SX_DeleteEData(0x534F4975, &key);
    });
}

int intervalDialog(SXWindow dialog, std::uint16_t message, short item, std::uint32_t, void*) {
    if (message != kDialogCommand || item != 1) return 0;
    kind = host::SX_GetDlgItemVal(dialog, 3, faulty("wrong value kind") ? kCheckValue : kPopupValue);
    host::SX_EndDialog(dialog);
    return 1;
}

int mainDialog(SXWindow dialog, std::uint16_t message, short item, std::uint32_t, void*) {
    if (message != kDialogCommand) return 0;
    if (item == 1) apply(dialog);
    if (item == 2 && !faulty("not closed")) host::SX_EndDialog(dialog);
    if (item == 3) play();
    if (item == 7) host::SX_Dialog(20150, intervalDialog, dialog, 0, nullptr);
    return 1;
}

}  // namespace

EXPORTED int main(int, char**) {
    gScorixBundle = CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.NotationEngine"));
    return gScorixBundle != nullptr && !faulty("host not found");
}

// A name of the host's in one of the plug-ins.
EXPORTED void FURTHER_EXPORT() {}

// Each entry point and its alias.
#define ENTRY_POINT(result, name, alias, parameters, arguments) \
    EXPORTED result name parameters;                            \
    EXPORTED result alias parameters;                           \
    result alias parameters {                                   \
        return name arguments;                                  \
    }                                                           \
    result name parameters

ENTRY_POINT(std::uint32_t, ScorixExtensionVersion, Ext_getversion, (std::uint32_t host), (host)) {
    if (!faulty("host version lost")) QorVersion = host;
    return faulty("kit version") ? host : kKitVersion;
}
ENTRY_POINT(int, ScorixExtensionInit, Ext_init, ([[maybe_unused]] void* unused, std::uint32_t* output),
            (unused, output)) {
    if (!faulty("output kept")) *output = 0;
    return 1;
}
ENTRY_POINT(int, ScorixExtensionEnumerate_UTF16, Ext_enumerate_UTF16,
            ([[maybe_unused]] void* unused, short command, ExtensionDescriptor* descriptor),
            (unused, command, descriptor)) {
    if (command > 0 && !faulty("second command")) return 0;
    for (auto* text : {descriptor->menuText, descriptor->commandName, descriptor->helpText}) {
        std::fill_n(text, kDescriptorTextUnits, u'x');
        if (!faulty("no terminator")) text[kDescriptorTextUnits - 1] = 0;
    }
    descriptor->reserved = 0;
    return 1;
}
ENTRY_POINT(int, ScorixExtensionInvoke, Ext_invoke,
            (SXWindow parent, short command, EREGION* first, EREGION* second),
            (parent, command, first, second)) {
    if (command == 0 && first && second && !faulty("no dialog"))
        host::SX_Dialog(20130, faulty("no procedure") ? nullptr : mainDialog, parent, 0, nullptr);
    return 0;
}
ENTRY_POINT(void, ScorixExtensionTerminate, Ext_terminate, (), ()) {
    if (faulty("abort at the end")) std::abort();
}
ENTRY_POINT(int, ScorixExtensionGetMenuStatus, Ext_getmenustatus, (), ()) {
    return !faulty("menu disabled");
}
