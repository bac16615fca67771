// Keys held down, read from a key map that the test supplies in place of the platform's.
#include "shell/keyboard.h"

#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <cstring>

namespace {
UInt8 heldKeys[16];
}

extern "C" __attribute__((visibility("default"))) void GetKeys(KeyMap keys) {
    std::memcpy(keys, heldKeys, sizeof heldKeys);
}

namespace {

TEST(Keyboard, ReadsOneBitPerKey) {
    heldKeys[0] = 0x80;   // key 7
    heldKeys[2] = 0x01;   // key 16
    heldKeys[15] = 0x80;  // key 127
    for (short key = -40; key <= 200; ++key) {
        EXPECT_EQ(KbdUtilKeyIsDown(key), key == 7 || key == 16 || key == 127 ? 1 : 0) << key;
    }
}

}  // namespace
