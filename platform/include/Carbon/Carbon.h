// The two services of the Carbon interface that the project uses, for systems that do not have it.
//
// Supplied: the encoding of 8-bit text and the state of the keyboard. Left out: everything else.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// Number of a text encoding, with the values of CFStringEncoding.
using TextEncoding = UInt32;

/// A 32-bit word whose bytes lie in memory with the most significant first.
struct BigEndianUInt32 {
    UInt32 bigEndianValue;
};

/// One bit for each of the 128 key codes: bit (code mod 8) of byte (code / 8) is set while the key is down.
using KeyMap = BigEndianUInt32[4];
using KeyMapByteArray = UInt8[16];

/// The encoding of 8-bit text in this program: UTF-8 when the locale (LC_ALL, LC_CTYPE or LANG) names it,
/// else Mac Roman, the historical default.
CF_EXPORT TextEncoding GetApplicationTextEncoding();

/// Fills in the keys held down at this moment. No keyboard can be read here, so every key is reported up.
CF_EXPORT void GetKeys(KeyMap keys);
