// The functions by which a host talks to the plug-in, each under a long name and a short alias.
#include "shell/entry_points.h"

#include "kit/engine_bundle.h"
#include "kit/string_resources.h"
#include "shell/main_dialog.h"

namespace {

bool isOffered(short command) {
    return command <= 0;
}

}  // namespace

std::uint32_t ScorixExtensionVersion(std::uint32_t hostVersion) noexcept {
    QorVersion = hostVersion;
    return kKitVersion;
}

int ScorixExtensionInit(void* /*unused*/, std::uint32_t* output) noexcept {
    *output = 0;
    return 1;
}

int ScorixExtensionEnumerate_UTF16(void* /*unused*/, short command, ExtensionDescriptor* descriptor) noexcept
    try {
    if (!isOffered(command)) return 0;
    const std::uint32_t menuText = makeStringId(kMenuTextTable, static_cast<short>(command + 1));
    PlugIn_GetStringResource(menuText, descriptor->menuText, kDescriptorTextUnits);
    PlugIn_GetStringResource(kCommandNameText, descriptor->commandName, kDescriptorTextUnits);
    PlugIn_GetStringResource(kCommandHelpText, descriptor->helpText, kDescriptorTextUnits);
    descriptor->reserved = 0;
    return 1;
} catch (...) {
    return 0;
}

int ScorixExtensionInvoke(SXWindow parent, short command, EREGION* first, EREGION* second) noexcept try {
    return isOffered(command) ? SUDialog(parent, first, second) : 0;
} catch (...) {
    return 0;
}

// The settings live as long as the plug-in stays loaded and nothing else is held: there is nothing to let go.
void ScorixExtensionTerminate() noexcept {}

int ScorixExtensionGetMenuStatus() noexcept {
    return 1;
}

std::uint32_t Ext_getversion(std::uint32_t hostVersion) noexcept {
    return ScorixExtensionVersion(hostVersion);
}

int Ext_init(void* unused, std::uint32_t* output) noexcept {
    return ScorixExtensionInit(unused, output);
}

int Ext_enumerate_UTF16(void* unused, short command, ExtensionDescriptor* descriptor) noexcept {
    return ScorixExtensionEnumerate_UTF16(unused, command, descriptor);
}

int Ext_invoke(SXWindow parent, short command, EREGION* first, EREGION* second) noexcept {
    return ScorixExtensionInvoke(parent, command, first, second);
}

void Ext_terminate() noexcept {
    ScorixExtensionTerminate();
}

int Ext_getmenustatus() noexcept {
    return ScorixExtensionGetMenuStatus();
}
