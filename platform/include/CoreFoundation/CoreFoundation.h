// A small subset of the CoreFoundation interface, for systems that do not have that framework.
//
// Supplied: strings (immutable; Mac Roman, Windows and ISO Latin 1, ASCII, UTF-8, UTF-16), formatting,
// comparison, numbers and booleans, file addresses, bundles with their code, information dictionary,
// localised tables and resources. Reference counts, bundles and tables are thread-safe.
//
// Left out: everything else, among it mutable strings, collections, dates, data, locales, run loops and
// allocators. Values of those kinds in property lists are read over. Comparison is by UTF-16 unit, without
// canonical equivalence or locale. Octal escapes above \177 in .strings files are taken as ISO Latin 1.
//
// The languages of the user come from LC_ALL, LC_MESSAGES or LANG, with the list in LANGUAGE before them.
// On macOS the real framework takes the place of these headers.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
