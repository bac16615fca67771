// The host functions behind every alert and dialog handler, served by the test program itself.
#pragma once

#include <new>
#include <string>
#include <vector>

#include "contract/records.h"
#include "host_function.h"

struct Alert {
    SXWindow parent;
    std::uint16_t style;
    std::uint32_t stringId;
    std::string text;
    std::uint32_t version;

    bool operator==(const Alert&) const = default;
};

inline std::vector<Alert> alerts;
inline short machOAnswer = 1;
inline bool alertThrows = false;

HOST_DOUBLE short SX_AlertMessage(SXWindow parent, std::uint16_t style, std::uint32_t stringId,
                                  const char* text, std::uint32_t version) {
    if (alertThrows) throw std::bad_alloc();
    alerts.push_back({parent, style, stringId, text, version});
    return 0;
}

HOST_DOUBLE short SX_IsMachO(std::uint32_t /*version*/) {
    return machOAnswer;
}
