#pragma once

#include <sys/stat.h>

#include "platform/FileMark.h"

namespace Vantor::Platform {

// What the system tells of a file, in the terms of the library.
FileTime LastWriteTimeOf(const struct stat& state);
FileMark MarkOf(const struct stat& state);

// The last-write time in the terms of the system.
timespec SystemTimeOf(const FileTime& time);

}  // namespace Vantor::Platform
