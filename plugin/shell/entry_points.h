// The functions by which a host talks to the plug-in, each under a long name and a short alias.
//
// A host calls main first (see bundle_main.cpp), then version, init and enumerate; for every use of the
// command menu status and invoke; terminate at the end. All on its main thread. There is one command, with
// index 0; a greater index is refused with 0 and a smaller one counts as 0. Results that are one 16-bit value
// are given int-wide, so that a host may read either width. None lets an exception out: a function that one
// interrupts fails.
#pragma once

#include <cstdint>

#include "contract/descriptor.h"
#include "contract/records.h"

#pragma GCC visibility push(default)
extern "C" {

// Takes the host's version, returns the kit's.
std::uint32_t ScorixExtensionVersion(std::uint32_t hostVersion) noexcept;
std::uint32_t Ext_getversion(std::uint32_t hostVersion) noexcept;

// Writes 0 to the output and returns 1.
int ScorixExtensionInit(void* unused, std::uint32_t* output) noexcept;
int Ext_init(void* unused, std::uint32_t* output) noexcept;

// Fills in the description of a command in the user's language and returns 1.
int ScorixExtensionEnumerate_UTF16(void* unused, short command, ExtensionDescriptor* descriptor) noexcept;
int Ext_enumerate_UTF16(void* unused, short command, ExtensionDescriptor* descriptor) noexcept;

// Runs the command's dialog over the host's window and returns the dialog's result, always 0.
int ScorixExtensionInvoke(SXWindow parent, short command, EREGION* first, EREGION* second) noexcept;
int Ext_invoke(SXWindow parent, short command, EREGION* first, EREGION* second) noexcept;

void ScorixExtensionTerminate() noexcept;
void Ext_terminate() noexcept;

// 1: the command is always enabled.
int ScorixExtensionGetMenuStatus() noexcept;
int Ext_getmenustatus() noexcept;
}
#pragma GCC visibility pop
