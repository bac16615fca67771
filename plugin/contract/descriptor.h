// The record in which the plug-in describes a command to its host.
#pragma once

#include <cstddef>
#include <cstdint>

// Units of each text, the terminator included.
inline constexpr std::uint16_t kDescriptorTextUnits = 128;

#pragma pack(push, 1)

// Texts are terminated UTF-16.
struct ExtensionDescriptor {
    char16_t menuText[kDescriptorTextUnits];  // 0x000: what the menu shows
    char16_t
        commandName[kDescriptorTextUnits];    // 0x100: name of the command outside the menu, as in "Undo ..."
    char16_t helpText[kDescriptorTextUnits];  // 0x200: one sentence on what the command does
    std::uint32_t reserved;                   // 0x300: 0
};

#pragma pack(pop)

static_assert(sizeof(ExtensionDescriptor) == 0x304);
static_assert(offsetof(ExtensionDescriptor, menuText) == 0x000 &&
              offsetof(ExtensionDescriptor, commandName) == 0x100 &&
              offsetof(ExtensionDescriptor, helpText) == 0x200 &&
              offsetof(ExtensionDescriptor, reserved) == 0x300);
