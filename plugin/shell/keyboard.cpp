// State of the keyboard.
#include "shell/keyboard.h"

#include <Carbon/Carbon.h>

short KbdUtilKeyIsDown(short keyCode) {
    constexpr short kKeyCodes = 128;
    if (keyCode < 0 || keyCode >= kKeyCodes) return 0;
    KeyMap keys;
    GetKeys(keys);
    // The map is defined by its bytes in memory, not by the words that the type shows.
    const auto* bytes = reinterpret_cast<const UInt8*>(keys);
    return static_cast<short>(bytes[keyCode / 8] >> (keyCode % 8) & 1);
}
