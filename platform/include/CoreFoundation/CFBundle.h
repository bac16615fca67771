// Bundles of the CoreFoundation subset: directories with an information dictionary, code and resources.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFURL.h>

using CFBundleRef = struct __CFBundle*;

/// Keys of the information dictionary.
CF_EXPORT const CFStringRef kCFBundleExecutableKey;
CF_EXPORT const CFStringRef kCFBundleIdentifierKey;
CF_EXPORT const CFStringRef kCFBundleDevelopmentRegionKey;

CF_EXPORT CFTypeID CFBundleGetTypeID();

/// The bundle of the running program: the one around its executable, or the executable's directory. Always
/// the same object, never NULL.
CF_EXPORT CFBundleRef CFBundleGetMainBundle();

/// The bundle with this identifier among those that are alive in the process, or NULL. Of several, one whose
/// code is loaded is preferred, then the oldest.
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);

/// The bundle at a directory: any directory will do, with or without content.
/// @return the same object as long as one for this directory is alive; NULL when there is no such directory.
CF_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);

/// The identifier that the information dictionary gives, or NULL.
CF_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);

/// A value of the information dictionary; the one in the InfoPlist table of the user's language comes first.
/// @return a string, number or boolean that lives as long as the bundle; NULL for an absent key and for
///         values of kinds that the subset lacks (lists, dictionaries, dates, data).
CF_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

/// The text of a key in a table of the user's language.
/// @param table name of the .strings file; NULL or empty for "Localizable".
/// @return on a miss `value`, or the key itself when `value` is NULL or empty.
CF_EXPORT CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                                  CFStringRef table);

/// The address of a resource file: one outside the language folders first, then by the user's languages.
/// @param type extension with or without its dot; may be NULL.
/// @param directory folder inside the resources; may be NULL.
/// @return NULL when there is no such file. Names match by exact case and cannot leave the bundle.
CF_EXPORT CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef name, CFStringRef type,
                                           CFStringRef directory);

CF_EXPORT CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);

/// The address of the bundle's code, or NULL when it has none.
CF_EXPORT CFURLRef CFBundleCopyExecutableURL(CFBundleRef bundle);

/// True when the bundle's code is in the process, no matter who loaded it.
CF_EXPORT Boolean CFBundleIsExecutableLoaded(CFBundleRef bundle);

/// Loads the bundle's code once. A loaded bundle stays alive without references until it is unloaded.
/// @return false when there is no code or the system's loader refuses it.
CF_EXPORT Boolean CFBundleLoadExecutable(CFBundleRef bundle);

/// Lets go of code that was loaded through this bundle; the main program's is never let go.
CF_EXPORT void CFBundleUnloadExecutable(CFBundleRef bundle);

/// The address of a function that the bundle's own code exports, loading the code first where needed. A name
/// that only the libraries it depends on define is not found; the main bundle finds what the program sees.
/// @return NULL when the name, or any code, is missing.
CF_EXPORT void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name);

/// As CFBundleGetFunctionPointerForName, for a variable.
CF_EXPORT void* CFBundleGetDataPointerForName(CFBundleRef bundle, CFStringRef name);
