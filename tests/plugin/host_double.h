// The host functions behind every alert and dialog handler, served by the test program itself.
#pragma once

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "contract/records.h"
#include "host_function.h"

inline std::vector<std::string> alerts;  // style and text
inline short machOAnswer = 1;
inline bool alertThrows = false;

HOST_DOUBLE short SX_AlertMessage(SXWindow parent, std::uint16_t style, std::uint32_t stringId,
                                  const char* text, std::uint32_t version) {
    if (alertThrows) throw std::bad_alloc();
    EXPECT_TRUE(parent == nullptr && stringId == 0 && version == kKitVersion);
    alerts.push_back(std::to_string(style) + " " + text);
    return 0;
}

HOST_DOUBLE short SX_IsMachO(std::uint32_t /*version*/) {
    return machOAnswer;
}
