#pragma once

#include <string>

#include "platform/File.h"
#include "platform/posix/Descriptor.h"

namespace Vantor::Platform {

// Disk files opened under the sharing rules of the library: readers share a file, a writer has it alone. The
// rules are kept by locks on the whole file that belong to the descriptor, so that two opens in one process
// exclude each other like two processes do; they end when the descriptor is closed. They bind programs that
// ask for locks. On a file system that knows no locks the file counts as held by nobody.
//
// Only regular files are opened; a folder, a pipe or a device is kAccessDenied, and none of them is waited
// for. Both throw FileException, naming `path` as given.

// Opens an existing file. One opened for writing is the file that is at the path once it is locked, not one
// that somebody has replaced while it was being opened.
Descriptor OpenLocked(const std::string& path, FileAccess access);

// Creates a file or empties the one that is there, once it is held alone, open for reading and writing.
Descriptor CreateLocked(const std::string& path);

}  // namespace Vantor::Platform
