// Numbers to text and back.
#pragma once

#include <cstdint>

#include "util/eu16string.h"

// Writes the value in decimal, terminated: the buffer holds 12 bytes or more.
void num2str(int value, char* buffer);

eu16string IntToEu16Str(std::int64_t value);

// The platform's integer reading of the text: leading digits count, text that starts with none is 0 and a
// number out of range is the nearest 32-bit one. The fallback is for the empty text alone.
std::int32_t StrToIntDef(const eu16string& text, std::int32_t fallback);
