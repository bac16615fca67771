// Addresses of files of the CoreFoundation subset: a path and whether it names a directory.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFURLRef = const struct __CFURL*;

CF_EXPORT CFTypeID CFURLGetTypeID();

/// Makes the address of the file whose path is the `count` bytes at `path`. A relative path belongs to the
/// working directory of this moment.
/// @return NULL for an empty path or one with a 0 inside.
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                           CFIndex count, Boolean isDirectory);

/// Writes the path as a 0-terminated text into a buffer of `size` bytes; an absolute path when
/// `resolveAgainstBase` is true, else the path as it was given.
/// @return false, with the buffer untouched, when the path does not fit.
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                                   CFIndex size);
