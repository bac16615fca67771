// The dialogs around a retrograde: its options, and the report of the check before it.
#pragma once

#include <cstdint>

#include "contract/records.h"

// Lets the user edit the options of the retrograde; returns the new ones, after a cancel the old two bits.
unsigned int RetrogradeOptionsDialog(SXWindow window, unsigned int options);

// Shows what the check found and offers to repair it; always 0.
short RetrogradePreScanDialog(SXWindow window, unsigned int problems);

// Appends a string resource to a report, after a comma unless the report is empty. The report is a buffer of
// kReportUnits units; what does not fit is cut.
inline constexpr std::uint16_t kReportUnits = 256;
void errStrCat(char16_t* buffer, std::uint32_t stringId);
