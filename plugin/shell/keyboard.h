// State of the keyboard.
#pragma once

// 1 while the key with this code, 0 to 127, is held down; 0 for every other code.
short KbdUtilKeyIsDown(short keyCode);
