// Comparison of 8-bit strings without regard to case.
#pragma once

#include <cstddef>

// Compares the upper-case forms byte by byte, as unsigned numbers: exactly -1, 0 or 1.
int stricmp(const char* left, const char* right);

// The same over at most `count` bytes.
int strnicmp(const char* left, const char* right, std::size_t count);
