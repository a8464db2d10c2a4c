#pragma once

#include <string>

#include "platform/File.h"
#include "platform/windows/Handle.h"

namespace Vantor::Platform {

// Opens an existing disk file, readable by others and denied to writers. What is no disk file (a folder, a
// pipe, a device such as NUL) is kAccessDenied. Throws FileException.
Handle OpenExistingFile(const std::string& path, FileAccess access);

}  // namespace Vantor::Platform
