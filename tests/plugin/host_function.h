// Defines a host function in the test program itself, where the plug-in looks it up by its name.
#pragma once

#define HOST_DOUBLE extern "C" __attribute__((visibility("default"), used)) inline
