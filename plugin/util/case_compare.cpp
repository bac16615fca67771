// Comparison of 8-bit strings without regard to case.
#include "util/case_compare.h"

#include <cctype>
#include <limits>

int stricmp(const char* left, const char* right) {
    return strnicmp(left, right, std::numeric_limits<std::size_t>::max());
}

int strnicmp(const char* left, const char* right, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        // The library's mapping is defined for unsigned bytes only.
        const int a = std::toupper(static_cast<unsigned char>(left[i]));
        const int b = std::toupper(static_cast<unsigned char>(right[i]));
        if (a != b) return a < b ? -1 : 1;
        if (a == 0) break;
    }
    return 0;
}
